// SPDX-License-Identifier: ISC
// A monkey uses several editors of the built bundle at once. Its actions on windows, pointer, keys
// and ports are random, and so are the hosts (docs/testing.md tells how to run it for hours).
#include <limits>
#include <map>
#include <memory>

#include "tests/support/hard_treatment.h"
#include "tests/support/plot_message.h"
#include "tests/support/ui_host.h"

namespace brindle::test {
namespace {

constexpr int kWidth = 1000;
constexpr int kHeight = 600;
constexpr size_t kMostEditors = 3;

/// One editor and its host.
class Cage {
  public:
    explicit Cage(Random& newRandom) : random(newRandom) {
        host.hasMap = !random.one_in(8);
        host.hasResize = !random.one_in(8);
        host.kind = random.pick(kHostKinds);
        EXPECT_TRUE(host.Open());
    }

    void Act() {
        using Habit = void (Cage::*)();
        constexpr Habit kHabits[] = {
            &Cage::Drag,      &Cage::Drag,      &Cage::Drag,       &Cage::Drag,
            &Cage::Click,     &Cage::Click,     &Cage::Click,      &Cage::Scroll,
            &Cage::Scroll,    &Cage::Type,      &Cage::Resize,     &Cage::HideAndShow,
            &Cage::ReportAll, &Cage::ReportAll, &Cage::DeliverRow, &Cage::DeliverRow};
        if (width != kWidth && random.one_in(3)) Resize();
        if (random.one_in(2)) Release();
        (this->*random.pick(kHabits))();
        if (random.one_in(3)) Idle();  // frames are slow, events are not
    }
    void Idle() {
        EXPECT_EQ(host.Idle(), 0);
        CheckCalls();
    }
    /// Closes the editor, possibly after its window is destroyed or with a button still down.
    /// Returns the number of controls that it wrote.
    size_t Close() {
        if (random.one_in(8)) host.window.Destroy();
        host.Close();
        CheckCalls();
        for (const auto& [port, isHeld] : held) EXPECT_FALSE(isHeld) << "port " << port;
        Release();
        return controlWrites;
    }

  private:
    /// Mostly at the strips of a window that has its design size.
    void Point() {
        if (random.one_in(3)) {
            host.window.MovePointer(random.between(-30, width + 30),
                                    random.between(-30, height + 30));
        } else {
            host.window.MovePointer(random.between(94, 775), random.between(428, 571));
        }
    }
    unsigned PickButton() {
        return random.one_in(4) ? static_cast<unsigned>(random.between(1, 9)) : 1u;
    }
    void Drag() {
        Point();
        Release();
        host.window.Press(stuck = PickButton());
        for (int i = random.between(0, 5); i > 0; --i) {
            if (random.one_in(4)) Idle();
            if (random.one_in(12)) ReportAll();
            if (random.one_in(20)) host.window.Click(PickButton());
            Point();
        }
        if (!random.one_in(10)) Release();
    }
    void Release() {
        if (stuck != 0) host.window.Release(std::exchange(stuck, 0u));
    }
    void Click() {
        Point();
        const unsigned button = PickButton();
        for (int i = random.between(1, 3); i > 0; --i) host.window.Click(button);
    }
    void Scroll() {
        Point();
        Idle();
        const auto button = static_cast<unsigned>(random.between(4, 7));
        for (int i = random.between(1, 6); i > 0; --i) host.window.Click(button);
    }
    void Type() {
        constexpr KeySym kKeys[] = {XK_a, XK_Escape, XK_Return, XK_Delete, XK_F1, XK_Left};
        constexpr KeySym kModifiers[] = {XK_Shift_L, XK_Control_L, XK_Alt_L};
        const KeySym modifier = random.pick(kModifiers);
        const KeySym key = random.pick(kKeys);
        for (const bool press : {true, false}) {
            host.window.Key(modifier, press);
            host.window.Key(key, press);
            if (press) Drag();
        }
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

    float AnyValue() {
        constexpr float kInf = std::numeric_limits<float>::infinity();
        constexpr float kValues[] = {0.0f, -1.0f, 0.4f, 9.0f, 1e30f, -1e30f, 1e-30f, kInf, -kInf};
        return random.one_in(9) ? std::nanf("") : random.pick(kValues);
    }
    /// Sane values for all controls, or any values for any ports.
    void ReportAll() {
        const bool isSane = !random.one_in(3);
        for (uint32_t port = band_port(0); port <= kTrimPort; ++port) {
            host.Report(isSane ? port : random.below(300),
                        isSane ? any_value(random, port) : AnyValue());
        }
        for (const uint32_t meter : {kMeterInPort, kMeterOutPort}) host.Report(meter, AnyValue());
    }
    /// Delivers a row as the engine sends it, with any index and any values.
    void DeliverRow() {
        std::vector<float> row(kPlotBins);
        for (float& bin : row) bin = random.one_in(50) ? AnyValue() : random.real(-90.0f, 0.0f);
        const auto words = PlotMessage(host.map, random.between(-2, 130), row);
        host.Deliver(kNotifyPort, host.map(LV2_ATOM__eventTransfer), words.data(),
                     static_cast<uint32_t>(4 * words.size()));
    }

    /// Checks what the editor has written and touched since the last call.
    void CheckCalls() {
        for (const UiWrite& write : std::exchange(host.writes, {})) {
            if (write.port == kControlPort) continue;
            ++controlWrites;
            EXPECT_GE(write.port, band_port(0));
            EXPECT_LE(write.port, kTrimPort);
            EXPECT_EQ(write.protocol, 0u);
            EXPECT_EQ(write.bytes.size(), sizeof(float));
            EXPECT_TRUE(std::isfinite(write.AsFloat())) << "port " << write.port;
        }
        for (const auto& [port, isHeld] : std::exchange(host.touches, {})) {
            EXPECT_LE(port, kTrimPort);
            EXPECT_NE(std::exchange(held[port], isHeld), isHeld)
                << "port " << port << " touched or released twice";
        }
    }

    Random& random;
    UiHost host{BuiltEditor()};
    int width = kWidth;
    int height = kHeight;
    unsigned stuck = 0;  // button that is still down
    size_t controlWrites = 0;
    std::map<uint32_t, bool> held;
};

TEST(Monkey, BreaksNothing) {
    live(1, [](Random& random) {
        std::vector<std::unique_ptr<Cage>> cages;
        size_t writes = 0;
        for (int step = 0; step < 250 && !testing::Test::HasFailure(); ++step) {
            const bool opens = cages.size() < kMostEditors && random.one_in(20);
            if (cages.empty() || opens) {
                cages.push_back(std::make_unique<Cage>(random));
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
    });
}

}  // namespace
}  // namespace brindle::test
