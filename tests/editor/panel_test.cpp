// SPDX-License-Identifier: ISC
// The panel's strips, presets and trim: what they write, tell and show.
#include <gmock/gmock.h>

#include <set>
#include <typeindex>

#include "contract/presets.h"
#include "gl/settings.h"
#include "tests/editor/panel_fixture.h"

// Included last: Xlib defines words that the others use.
#include <X11/cursorfont.h>
#include <X11/extensions/Xfixes.h>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::FloatNear;
using testing::IsEmpty;
using testing::Pair;

constexpr double kLn750 = 6.6200733;

TEST_F(Panel, PresetsAndFlatAllWriteTheirValuesInOrder) {
    EXPECT_STREQ(Root().infoTitle, "");     // nothing is touched yet
    std::set<std::vector<uint32_t>> lines;  // the help line's pictures
    const auto expect_writes = [&](const Spot& place, const std::string& help,
                                   const PortValues& wanted) {
        SCOPED_TRACE(help);
        EXPECT_EQ(HelpAt(place), help);
        const auto picture = Picture();
        std::vector<uint32_t> line;
        for (auto row = picture.begin() + 10000; row < picture.begin() + 24000; row += 1000) {
            line.insert(line.end(), row + 594, row + 966);
        }
        EXPECT_TRUE(lines.insert(line).second) << "shown as another one";
        EXPECT_EQ(Click(place), wanted);
        Tick();
        EXPECT_STREQ(Root().infoTitle, "");  // until the pointer moves
        EXPECT_STREQ(Root().infoText, "");
    };
    for (size_t i = 0; i < kPresets.size(); ++i) {
        PortValues wanted;
        for (uint32_t n = 0; n < 51; ++n) wanted.emplace_back(2 + n, kPresets[i].values[n]);
        expect_writes(PresetAt(static_cast<int>(i)), std::string("Preset|") + kPresets[i].name,
                      wanted);
    }
    PortValues flat;
    for (uint32_t port = 2; port <= 52; port += 5) flat.emplace_back(port, 0.0f);
    expect_writes(kFlatAll, "Flat|All bands and sections off, no trim", flat);
}

TEST_F(Panel, EachControlWritesItsPortAndTellsItsName) {
    const auto expect_touched = [&](uint32_t port) {
        EXPECT_THAT(host.touches, ElementsAre(Pair(port, true), Pair(port, false)));
    };
    const auto expect_knob = [&](const Spot& spot, const std::string& title, uint32_t port,
                                 int right, int up, float from, double to, float maximum,
                                 float reset) {
        SCOPED_TRACE(title);
        Report(port, from);
        EXPECT_THAT(HelpAt(spot), testing::StartsWith(title + "|"));
        const auto writes = During([&] {
            PressAt(spot);
            // The name of what is held, not of what is pointed at.
            EXPECT_THAT(HelpAt({spot.x + static_cast<float>(right) / 0.75f,
                                spot.y + static_cast<float>(up) / 0.75f}),
                        testing::StartsWith(title + "|"));
            host.window.Release();
        });
        EXPECT_THAT(writes, ElementsAre(Pair(port, FloatNear(static_cast<float>(to),
                                                             1e-3f * static_cast<float>(to)))));
        expect_touched(port);
        Report(port, 0.999f * maximum);
        EXPECT_THAT(Drag(spot, right, up), ElementsAre(Pair(port, maximum)));
        EXPECT_THAT(PressTwice(spot, 1000, 1100), ElementsAre(Pair(port, reset)));
        MoveTo(kOutside);
        Tick();
    };
    for (int strip = 0; strip < kStripCount; ++strip) {
        const StripRow& row = strip_row(strip);
        const std::string name = row.name;
        const uint32_t port = strip_port(strip);
        const float on = row.defaults[kEnable];
        EXPECT_EQ(HelpAt(KeyOf(strip)), name + " on/off|");
        EXPECT_EQ(HelpAt(ShapeOf(strip)), name + " EQ Shape|");
        for (const float wanted : {1.0f - on, on}) {
            EXPECT_THAT(Click(KeyOf(strip)), ElementsAre(Pair(port + kEnable, wanted)));
            expect_touched(port + kEnable);
        }
        const auto maximum = [&](Control control) {
            return strip_controls(strip)[control].maximum;
        };
        const double octaves = strip < kBandCount ? kLn1000 : kLn750;
        expect_knob(InStrip(strip, 40.0f), name + " Gain", port + kGain, 0, 40, 3.0f,
                    3.0 + 36.0 * 0.003 * 40.0, maximum(kGain), row.defaults[kGain]);
        expect_knob(InStrip(strip, 0.0f), name + " Q", port + kQ, 0, 40, 1.0f,
                    std::exp(kLn1000 * 0.003 * 40.0), maximum(kQ), row.defaults[kQ]);
        expect_knob(InStrip(strip, -40.0f), name + " Frequency", port + kFrequency, 0, 40, 500.0f,
                    500.0 * std::exp(octaves * 0.0005 * 40.0), maximum(kFrequency),
                    row.defaults[kFrequency]);
    }
    expect_knob(kTrim, "Output Trim", kTrimPort, 50, 0, 1.0f, 1.0 + 40.0 * 0.003 * 50.0, 20.0f,
                0.0f);
}

TEST_F(Panel, TellsDoubleClicksByTheTimesOfTheEvents) {
    const struct {
        uint32_t first_ms, second_ms;
        bool isDouble;
    } cases[] = {{5000, 5001, true},    {10000, 10199, true},    {20000, 20200, false},
                 {30000, 30000, false}, {0xffffffc0u, 30, true}, {40000, 39999, false}};
    for (const auto& c : cases) {
        Report(kTrimPort, 3.0f);
        EXPECT_EQ(PressTwice(kTrim, c.first_ms, c.second_ms).size(), c.isDouble ? 1u : 0u)
            << c.first_ms << " ms, " << c.second_ms << " ms";
    }
}

TEST_F(Panel, ControlsWithoutEffectAreGrey) {
    const struct {
        int strip;
        float type;
        bool isOn, gain, q;
    } cases[] = {{2, 9.0f, true, true, true},     {2, 9.0f, false, false, false},
                 {2, 12.0f, true, false, true},   {2, 2.0f, true, false, false},
                 {0, 5.0f, true, true, false},    {8, 17.0f, true, false, true},
                 {8, 13.0f, true, true, false},   {9, 6.0f, true, false, false},
                 {9, 17.0f, false, false, false}, {9, 9.0f, true, true, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        Report(strip_port(c.strip) + kEnable, c.isOn ? 1.0f : 0.0f);
        Report(strip_port(c.strip) + kType, c.type);
        const auto is_enabled = [&](const Spot& spot) {
            HelpAt(spot);
            return Root().GetSelectedView()->enabled;
        };
        EXPECT_TRUE(is_enabled(KeyOf(c.strip)));
        EXPECT_EQ(is_enabled(InStrip(c.strip, 40.0f)), c.gain);
        EXPECT_EQ(is_enabled(InStrip(c.strip, 0.0f)), c.q);
        EXPECT_EQ(is_enabled(InStrip(c.strip, -40.0f)), c.isOn);
        EXPECT_EQ(is_enabled(ShapeOf(c.strip)), c.isOn);
    }
}

TEST_F(Panel, EachMenuOffersItsShapesInOrderInsideThePanel) {
    const std::vector<float> band = {1, 2, 3, 4, 5, 6, 9, 12};
    const std::vector<float> sections[] = {{17, 1, 2, 3, 4, 13, 14, 15, 16},
                                           {17, 5, 6, 7, 8, 9, 10, 11, 12}};
    for (int strip = 0; strip < kStripCount; ++strip) {
        // The entries stack upwards from the button; no edge of the panel moves the menu.
        Spot entry = ShapeOf(strip);
        for (const float shape : strip < kBandCount ? band : sections[strip - kBandCount]) {
            Click(ShapeOf(strip));
            // One for the press, one for the release.
            const auto write = Pair(strip_port(strip) + kType, shape);
            EXPECT_THAT(Click(entry), ElementsAre(write, write)) << strip;
            entry.y += 18.0f;
        }
    }
}

TEST_F(Panel, ShapesThePointerByWhatItIsOver) {
    const std::unique_ptr<Display, int (*)(Display*)> display(XOpenDisplay(nullptr), XCloseDisplay);
    const auto shape = [&](const Spot& spot) {
        HelpAt(spot);
        const std::unique_ptr<XFixesCursorImage, int (*)(void*)> image(
            XFixesGetCursorImage(display.get()), XFree);
        return std::vector<unsigned long>(image->pixels,
                                          image->pixels + image->width * image->height);
    };
    const Spot handle = HandleAt(2);
    const Spot nothing = InStrip(3, 60.0f);
    // A shape of the parent's window, up and down, sideways, four ways, hand.
    const std::pair<unsigned, std::vector<Spot>> alike[] = {
        {XC_pirate, {nothing}},
        {XC_sb_v_double_arrow, {InStrip(2, 40.0f), InStrip(2, 0.0f), InStrip(8, -40.0f)}},
        {XC_sb_h_double_arrow, {kTrim, {handle.x, 328.0f}}},
        {XC_fleur, {handle, {handle.x, 316.0f}}},
        {XC_hand2, {KeyOf(2), ShapeOf(8), PresetAt(2), kFlatAll}}};
    for (const auto& [name, spots] : alike) {
        XDefineCursor(display.get(), DefaultRootWindow(display.get()),
                      XCreateFontCursor(display.get(), name));
        const auto wanted = shape(kOutside);
        for (const Spot& spot : spots) EXPECT_TRUE(shape(spot) == wanted) << name << ' ' << spot.x;
    }
    const auto upDown = shape(InStrip(2, 0.0f));
    PressAt(InStrip(2, 0.0f));
    EXPECT_TRUE(shape(nothing) == upDown);  // while it is held
    EXPECT_EQ(Root().GetPressedButton(), 1);
    host.window.Release();
    Tick();
    EXPECT_TRUE(shape(nothing) == shape(kOutside));
}

TEST_F(Panel, DrawsAnewForNewsOnly) {
    const auto draws_anew = [&](uint32_t port, float value) {
        host.IdleTimes(2);
        EXPECT_FALSE(Root().IsStale());
        Report(port, value);
        EXPECT_EQ(Root().GetParameter(port), port < 128 ? value : 0.0f);
        return Root().IsStale();
    };
    EXPECT_TRUE(draws_anew(kTrimPort, -1.0f));
    EXPECT_FALSE(draws_anew(kTrimPort, -1.0f));
    Report(kTrimPort, std::nanf(""));
    EXPECT_EQ(Root().GetParameter(kTrimPort), -1.0f);
    EXPECT_TRUE(draws_anew(band_port(3) + kEnable, 0.0f));
    for (const uint32_t port : {127u, 128u, 0xffffffffu}) {  // no view shows these
        EXPECT_FALSE(draws_anew(port, 1.0f));
    }
    EXPECT_FALSE(draws_anew(kMeterInPort, 0.5f));
    EXPECT_FALSE(draws_anew(kMeterOutPort, 0.25f));

    // The moving parts need frames only.
    const auto needs_frame = [&](auto change) {
        host.IdleTimes(2);
        EXPECT_FALSE(Root().IsFrameDue());
        change();
        return Root().IsFrameDue();
    };
    const auto adds_row = [&](float level_db) {
        const std::vector<float> row(kPlotBins, level_db);
        return needs_frame([&] { Graph().AddSpectrumRow(5, row.data()); });
    };
    EXPECT_TRUE(needs_frame([&] { Report(kMeterInPort, 0.4f); }));
    EXPECT_FALSE(needs_frame([&] { Report(kMeterInPort, 0.4f); }));
    EXPECT_FALSE(adds_row(-90.0f));
    EXPECT_FALSE(adds_row(-41.0f));
    EXPECT_TRUE(adds_row(-30.0f));
    EXPECT_FALSE(adds_row(-30.0f));
    MoveTo(InStrip(4, 40.0f));  // its handle's rings pulse
    host.IdleTimes(2);
    EXPECT_TRUE(Root().IsFrameDue());
}

TEST_F(Panel, ShowsTheSameWhetherDrawnInPartsOrWhole) {
    const auto shown = [&] {
        EXPECT_TRUE(WaitFor([&] { return !Root().IsFrameDue(); }, [&] { host.Idle(); }));
        host.window.Sync();
        return host.window.GetPixels(host.child, 1000, 600);
    };
    auto before = shown();
    const auto draws_anew = [&](const auto& change) {
        change();
        Tick();
        const auto parts = shown();
        Root().redrawNeeded = true;
        const auto whole = shown();
        EXPECT_TRUE(AreAlike(parts, whole));
        return !AreAlike(whole, std::exchange(before, whole));
    };
    for (const int strip : {2, 9}) {
        const float on = strip_row(strip).defaults[kEnable];
        const float values[] = {1.0f - on, 4.0f, 9.0f, 3000.0f, 4.0f};
        for (uint32_t control = 0; control < kControlCount; ++control) {
            SCOPED_TRACE(testing::Message() << strip << ", control " << control);
            EXPECT_TRUE(draws_anew([&] {
                Report(strip_port(strip) + kEnable, 1.0f);
                Report(strip_port(strip) + control, values[control]);
            }));
        }
    }
    EXPECT_TRUE(draws_anew([&] { Report(kTrimPort, 5.0f); }));
    EXPECT_TRUE(draws_anew([&] {  // with handles above the graph
        for (int band = 0; band < kBandCount; ++band) Report(band_port(band) + kGain, 18.0f);
    }));
    std::set<std::type_index> kinds;
    const std::function<void(GLView&)> move_each_kind = [&](GLView& parent) {
        for (GLView* view = parent.firstChild; view != nullptr; view = view->nextSibling) {
            if (kinds.insert(typeid(*view)).second) {
                SCOPED_TRACE(typeid(*view).name());
                for (const bool held : {true, false}) {
                    draws_anew([&] {
                        view->SetCaptured(held);
                        view->SetPosition(view->x + 0.01f, view->y);
                    });
                }
            }
            move_each_kind(*view);
        }
    };
    move_each_kind(Root());
    // What moves over the layers. The strip is off, or its handle would pulse.
    Report(strip_port(9) + kEnable, 0.0f);
    Graph().DeleteChildren();
    before = shown();
    const std::vector<float> row(kPlotBins, -10.0f);
    const std::function<void()> changes[] = {
        [&] { Report(kMeterInPort, 0.3f); },
        [&] { Graph().AddSpectrumRow(7, row.data()); },
        [&] { MoveTo(InStrip(9, 40.0f)); },
        [&] { MoveTo(InStrip(9, 0.0f)); },
        [&] { host.window.Press(); },
        [&] { host.window.Release(); },
        [&] { MoveTo(kOutside); },
        [&] { Click(ShapeOf(9)); },
        [&] { Click(InStrip(9, 0.0f)); },
        [&] { Root().ShowMessage("One", "two", "three", "four", "five"); },
        [&] { host.window.Click(); },
        [&] { hostContrastColor = kRed; },
        [&] { themeFlat = true; },  // as another editor of the process may set it
    };
    for (const auto& change : changes) {
        SCOPED_TRACE(&change - changes);
        EXPECT_TRUE(draws_anew(change));
    }
    hostContrastColor = kAmber;
    themeFlat = false;
}

}  // namespace
}  // namespace brindle
