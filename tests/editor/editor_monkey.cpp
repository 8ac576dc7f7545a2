// SPDX-License-Identifier: ISC
// A monkey uses several editors of the built bundle at once. Its actions on windows, pointer, keys
// and ports are random, and so are the hosts (docs/testing.md tells how to run it for hours).
#include <gtest/gtest.h>
#include <lv2/atom/forge.h>
#include <lv2/parameters/parameters.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <map>
#include <memory>
#include <set>

#include "contract/ports.h"
#include "editor/panel_layout.h"
#include "tests/support/hard_treatment.h"
#include "tests/support/ui_host.h"

namespace brindle::test {
namespace {

constexpr int kWidth = 1000;
constexpr int kHeight = 600;
constexpr size_t kMostEditors = 3;

/// A control port's range: minimum and maximum.
std::pair<float, float> RangeOf(uint32_t port) {
    if (port == kTrimPort) return {-20.0f, 20.0f};
    const ControlRows& rows = port >= section_port(0) ? kSectionControls : kBandControls;
    const ControlRow& row = rows[(port - band_port(0)) % kControlCount];
    return {row.minimum, row.maximum};
}

bool IsInRange(uint32_t port, float value) {
    const auto [low, high] = RangeOf(port);
    const float slack = 1e-4f * high;  // rounding of logarithmic scales
    return value >= low - std::min(slack, 1e-4f) && value <= high + slack;
}

/// Positions where controls were found, in pixels of a window of the design size. A monkey that
/// points at random misses most controls.
using Spots = std::vector<std::pair<int, int>>;

/// One editor and its host.
class Cage {
  public:
    Cage(Random& newRandom, Spots& newSpots)
        : random(newRandom), spots(newSpots), host(BuiltEditor()) {
        host.hasMap = !random.one_in(8);
        host.hasResize = !random.one_in(8);
        host.hasOptions = !random.one_in(4);
        const bool isTold = random.one_in(2);
        if (isTold) {
            host.AddOption(LV2_UI__backgroundColor, LV2_ATOM__Int, random.below(0xffffffffu));
            host.AddOption(LV2_UI_PREFIX "contrastingColor", LV2_ATOM__Int,
                           random.below(0xffffffffu));
            host.AddOption("http://ardour.org/lv2/theme/#styleBoxy", LV2_ATOM__Bool,
                           random.between(0, 1));
            host.AddOption("http://ardour.org/lv2/theme/#styleFlat", LV2_ATOM__Bool,
                           random.between(0, 1));
            host.AddOption(LV2_PARAMETERS__sampleRate, LV2_ATOM__Float,
                           random.one_in(4) ? 0.0f : random.real(8000.0f, 192000.0f));
        }
        host.kind = random.pick(kHostKinds);
        EXPECT_TRUE(host.Open());
    }

    void Act() {
        struct Habit {
            uint32_t share;
            void (Cage::*act)();
        };
        constexpr Habit kHabits[] = {
            {8, &Cage::Drag},        {6, &Cage::Click},      {4, &Cage::Scroll},
            {3, &Cage::Wander},      {1, &Cage::Type},       {1, &Cage::Resize},
            {1, &Cage::HideAndShow}, {3, &Cage::ReportAny},  {2, &Cage::ReportAll},
            {4, &Cage::DeliverRow},  {2, &Cage::DeliverJunk}};
        if (width != kWidth && random.one_in(3)) Resize();
        if (random.one_in(2)) ReleaseStuck();
        uint32_t draw = random.below(35);
        for (const Habit& habit : kHabits) {
            if (draw < habit.share) {
                (this->*habit.act)();
                break;
            }
            draw -= habit.share;
        }
        if (random.one_in(3)) {  // frames are slow, events are not
            Idle();
        }
    }

    void Idle() {
        EXPECT_EQ(host.Idle(), 0);
        TakeWrites();
    }

    /// Closes the editor, possibly after its window is destroyed or with a button still down.
    /// Returns the number of controls that it wrote.
    size_t Close() {
        if (random.one_in(8)) host.window.Destroy();
        host.Close();
        TakeWrites();
        ReleaseStuck();
        return controlWrites;
    }

    /// At its design size the editor shows a picture, whatever happened before.
    void ExpectPicture() {
        host.window.Resize(kWidth, kHeight);
        EXPECT_TRUE(WaitFor([&] { return host.window.HasSize(host.child, kWidth, kHeight); },
                            [&] { host.Idle(); }));
        host.IdleTimes(5);
        std::set<uint32_t> colors;
        for (int i = 0; i < kHeight; i += 3) {
            colors.insert(host.GetPixel(i * kWidth / kHeight, i));
            colors.insert(host.GetPixel(kWidth / 3, i));
        }
        EXPECT_GT(colors.size(), 12u);
    }

  private:
    // Actions with the pointer
    void Point() {
        constexpr auto kPixels = [](float points) { return static_cast<int>(0.75f * points); };
        if (!spots.empty() && random.one_in(2)) {
            const auto& spot = random.pick(spots);
            x = spot.first + random.between(-4, 4);
            y = spot.second + random.between(-4, 4);
        } else if (!random.one_in(3)) {
            x = random.between(kPixels(layout::StripLeft(0)), kPixels(layout::StripLeft(10)));
            y = kHeight - random.between(kPixels(layout::kStripBottom), kPixels(layout::kStripTop));
        } else {
            x = random.between(-30, width + 30);
            y = random.between(-30, height + 30);
        }
        host.window.MovePointer(x, y);
    }
    void Press(unsigned button) {
        host.window.Press(button);
        const size_t touches = host.touches.size();
        if (random.one_in(4)) Idle();
        if (host.touches.size() > touches && width == kWidth && height == kHeight) {
            spots.emplace_back(x, y);
        }
    }
    unsigned PickButton() {
        return random.one_in(4) ? static_cast<unsigned>(random.between(1, 9)) : 1u;
    }
    void Drag() {
        Point();
        const unsigned button = PickButton();
        Press(button);
        for (int i = random.between(0, 5); i > 0; --i) {
            if (random.one_in(4)) Idle();
            if (random.one_in(12)) ReportAll();
            if (random.one_in(20)) host.window.Click(PickButton());
            Point();
        }
        stuck = button;
        if (!random.one_in(10)) ReleaseStuck();
    }
    void ReleaseStuck() {
        if (stuck != 0) {
            host.window.Release(stuck);
            stuck = 0;
        }
    }
    void Click() {
        Point();
        const unsigned button = PickButton();
        for (int i = random.between(1, 3); i > 0; --i) {
            Press(button);
            host.window.Release(button);
        }
    }
    void Scroll() {
        Point();
        Idle();
        const auto button = static_cast<unsigned>(random.between(4, 7));
        for (int i = random.between(1, 6); i > 0; --i) host.window.Click(button);
    }
    void Wander() {
        for (int i = random.between(1, 10); i > 0; --i) Point();
    }
    void Type() {
        const KeySym keys[] = {XK_a, XK_Escape, XK_Return, XK_Delete, XK_F1, XK_Left, XK_Tab};
        const KeySym modifiers[] = {XK_Shift_L, XK_Control_L, XK_Alt_L};
        const KeySym modifier = random.pick(modifiers);
        const KeySym key = random.pick(keys);
        host.window.Key(modifier, true);
        host.window.Key(key, true);
        host.window.Key(key, false);
        Drag();
        host.window.Key(modifier, false);
    }
    void Resize() {
        const int sizes[][2] = {{1, 1}, {2000, 1200}, {3, 900}, {random.between(1, 1400), 200}};
        const bool isOdd = width != kWidth;
        width = isOdd ? kWidth : random.pick(sizes)[0];
        height = isOdd ? kHeight : random.pick(sizes)[1];
        host.window.Resize(width, height);
    }
    /// The editor's window or its parent, which the host may hide while a button is down.
    void HideAndShow() {
        const uintptr_t hidden = random.one_in(2) ? host.child : host.window.GetId();
        host.window.Hide(hidden);
        if (random.one_in(2)) Idle();
        host.window.Show(hidden);
    }

    // Actions on the ports
    float AnyValue() {
        constexpr float kInf = std::numeric_limits<float>::infinity();
        const float values[] = {0.0f,   1.0f,    -1.0f,    0.4f, 5.0f,  9.0f,
                                12.4f,  17.0f,   -18.0f,   1e9f, 1e30f, -1e30f,
                                1e-30f, 1000.0f, 20000.0f, kInf, -kInf, std::nanf("")};
        return random.pick(values);
    }
    void Tell(uint32_t port, float value) {
        if (std::isfinite(value)) toldValues.insert(value);
        host.Report(port, value);
    }
    void ReportAny() { Tell(random.below(random.one_in(8) ? 300 : 60), AnyValue()); }
    void ReportAll() {
        const bool isSane = !random.one_in(3);
        for (uint32_t port = band_port(0); port <= kTrimPort; ++port) {
            const auto [low, high] = RangeOf(port);
            Tell(port, isSane ? random.real(low, high) : AnyValue());
        }
        host.Report(kMeterInPort, AnyValue());
        host.Report(kMeterOutPort, AnyValue());
    }
    /// Sends a row as the engine does, with any index and any values.
    void DeliverRow() {
        LV2_Atom_Forge forge;
        lv2_atom_forge_init(&forge, host.map.get());
        alignas(8) uint8_t bytes[2048];
        lv2_atom_forge_set_buffer(&forge, bytes, sizeof bytes);
        std::vector<float> row(random.one_in(10) ? 1 + random.below(300) : kPlotBins);
        std::generate(row.begin(), row.end(),
                      [&] { return random.one_in(50) ? AnyValue() : random.real(-90.0f, 0.0f); });
        LV2_Atom_Forge_Frame frame;
        lv2_atom_forge_object(&forge, &frame, 1, host.map(kMessageUri));
        lv2_atom_forge_key(&forge, host.map(kSampleRateUri));
        lv2_atom_forge_int(&forge, random.one_in(10) ? random.between(-1, 1) : 48000);
        lv2_atom_forge_key(&forge, host.map(kPlotIdUri));
        lv2_atom_forge_int(&forge, random.between(-2, 130));
        lv2_atom_forge_key(&forge, host.map(kPlotArrayUri));
        lv2_atom_forge_vector(&forge, sizeof(float), forge.Float, static_cast<uint32_t>(row.size()),
                              row.data());
        lv2_atom_forge_pop(&forge, &frame);
        host.Deliver(kNotifyPort, host.map(LV2_ATOM__eventTransfer), bytes, forge.offset);
    }
    void DeliverJunk() {
        // On the heap and of exact size: the sanitizers report reads beyond it.
        const uint32_t size = random.below(64);
        const std::unique_ptr<uint32_t[]> words(new uint32_t[size / 4 + 1]);
        for (uint32_t i = 0; i <= size / 4; ++i) {
            words[i] = random.one_in(2) ? random.below(40) : random.below(0xffffffffu);
        }
        const auto value = std::bit_cast<float>(words[0]);
        if (std::isfinite(value)) toldValues.insert(value);
        const uint32_t formats[] = {0, host.map(LV2_ATOM__eventTransfer), 4711};
        host.Deliver(random.below(60), random.pick(formats),
                     random.one_in(8) ? nullptr : words.get(), size);
    }

    /// Checks what the editor has written since the last call.
    void TakeWrites() {
        for (; seen < host.writes.size(); ++seen) {
            const UiWrite write = host.writes[seen];
            if (write.port == kControlPort) {
                EXPECT_EQ(write.bytes.size(), 16u);
                continue;
            }
            ++controlWrites;
            EXPECT_GE(write.port, band_port(0));
            EXPECT_LE(write.port, kTrimPort);
            EXPECT_EQ(write.protocol, 0u);
            EXPECT_EQ(write.bytes.size(), sizeof(float));
            // A search restores the host's type codes as it has found them.
            const bool isCode = write.port % kControlCount == band_port(0) + kType &&
                                toldValues.contains(write.AsFloat());
            EXPECT_TRUE(isCode || IsInRange(write.port, write.AsFloat()))
                << "port " << write.port << " value " << write.AsFloat();
        }
        for (; touchesSeen < host.touches.size(); ++touchesSeen) {
            const auto [port, isHeld] = host.touches[touchesSeen];
            EXPECT_LE(port, kTrimPort);
            EXPECT_NE(held[port], isHeld) << "port " << port << " touched or released twice";
            held[port] = isHeld;
        }
    }

    Random& random;
    Spots& spots;
    UiHost host;
    int width = kWidth;
    int height = kHeight;
    unsigned stuck = 0;  // button that is still down
    int x = 0;           // the pointer's position
    int y = 0;
    size_t seen = 0;  // number of the host's writes checked
    size_t controlWrites = 0;
    size_t touchesSeen = 0;  // number of its touches checked
    std::map<uint32_t, bool> held;
    std::set<float> toldValues;
};

TEST(Monkey, BreaksNothing) {
    live(1, [](Random& random) {
        std::vector<std::unique_ptr<Cage>> cages;
        Spots spots;
        size_t writes = 0;
        for (int step = 0; step < 250 && !testing::Test::HasFailure(); ++step) {
            const bool opens = cages.size() < kMostEditors && random.one_in(20);
            if (cages.empty() || opens) {
                cages.push_back(std::make_unique<Cage>(random, spots));
            } else if (random.one_in(40)) {
                const size_t place = random.below(static_cast<uint32_t>(cages.size()));
                writes += cages[place]->Close();
                cages.erase(cages.begin() + static_cast<std::ptrdiff_t>(place));
                continue;
            }
            // The newest window is on top and gets the pointer.
            (random.one_in(3) ? random.pick(cages) : cages.back())->Act();
        }
        for (const auto& cage : cages) writes += cage->Close();
        EXPECT_GT(writes, 0u) << "the monkey has missed all controls";
        cages.clear();
        Cage(random, spots).ExpectPicture();
    });
}

}  // namespace
}  // namespace brindle::test
