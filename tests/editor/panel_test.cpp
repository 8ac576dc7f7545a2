// SPDX-License-Identifier: ISC
// The whole panel in a host: real pointer events at the places where a user sees the controls, the
// engine that hears of them, and what comes out of it.
#include <gmock/gmock.h>
#include <lv2/atom/util.h>

#include <cmath>
#include <functional>
#include <numbers>

#include "editor/GLView_StripEqView.h"
#include "editor/editor_instance.h"
#include "editor/preset_table.h"
#include "graph/GLView_ParametricEQ.h"
#include "graph/GLView_ParametricEQGrabber.h"
#include "lv2/ports.h"
#include "tests/support/ui_host.h"

LV2_SYMBOL_EXPORT const LV2UI_Descriptor* lv2ui_descriptor(uint32_t index);

namespace brindle {
namespace {

using test::PluginHost;
using test::UiHost;
using testing::ElementsAre;
using testing::Pair;

constexpr int kStrips = kBandCount + kSectionCount;
constexpr double kRate = 48000.0;
constexpr double kLn1000 = 6.9077554;
constexpr double kLn750 = 6.6200733;

/// A place on the panel in interface points from its lower left corner.
struct Spot {
    float x;
    float y;
};

/// Of the strips as a user sees them: 81 wide, 87 apart, a gap of 15 after each group.
Spot InStrip(int strip, float above_middle) {
    const float group = strip < 4 ? 0.0f : strip < 8 ? 1.0f : 2.0f;
    return {125.0f + 87.0f * static_cast<float>(strip) + 15.0f * group + 40.5f,
            134.0f + above_middle};
}
Spot KeyOf(int strip) {
    return InStrip(strip, 80.0f);
}
Spot ShapeOf(int strip) {
    return InStrip(strip, -77.0f);
}
Spot PresetAt(int number) {
    return {159.0f + 111.0f * static_cast<float>(number), 778.0f};
}
constexpr Spot kFlatAll = {2.0f * 800.0f * 5.0f / 6.0f - 23.0f, 778.0f};
constexpr Spot kTrim = {1124.0f, 84.0f};

uint32_t FirstPort(int strip) {
    return strip < kBandCount ? band_port(strip) : section_port(strip - kBandCount);
}

/// As a factor: differences far below what is heard count for little.
double Gain(const std::vector<double>& response, double hz) {
    return std::pow(10.0, test::gain_db(response, hz, kRate) / 20.0);
}

/// A host that passes the editor's writes on to the engine and, unless it is a silent one, reports
/// them back.
struct Panel : testing::Test {
    void SetUp() override {
        ASSERT_TRUE(host.Open());
        host.IdleTimes(2);
        for (int strip = 0; strip < kStrips; ++strip) {
            const auto& plan = strip < kBandCount
                                   ? kBandStrips[static_cast<size_t>(strip)]
                                   : kSectionStrips[static_cast<size_t>(strip - kBandCount)];
            for (uint32_t i = 0; i < kControlCount; ++i)
                Report(FirstPort(strip) + i, plan.defaults[i]);
        }
        Report(kTrimPort, 0.0f);
        Tick();
    }

    void Report(uint32_t port, float value) {
        plugin.port(port) = value;
        host.Report(port, value);
    }
    /// Handles all pointer events that are waiting, then answers what they have led to.
    void Tick() {
        host.IdleTimes(1);
        for (; answered < host.writes.size(); ++answered) {
            const auto& write = host.writes[answered];
            if (write.protocol != 0) continue;
            plugin.port(write.port) = write.AsFloat();
            if (echoes) host.Report(write.port, write.AsFloat());
        }
    }
    void MoveTo(const Spot& spot) {
        host.window.MovePointer(static_cast<int>(std::lround(spot.x * 0.75f)),
                                static_cast<int>(std::lround(600.0f - spot.y * 0.75f)));
    }
    /// What is written meanwhile.
    std::vector<test::UiWrite> During(const std::function<void()>& gesture) {
        host.touches.clear();
        const size_t before = host.writes.size();
        gesture();
        Tick();
        return {host.writes.begin() + static_cast<std::ptrdiff_t>(before), host.writes.end()};
    }
    std::vector<test::UiWrite> Click(const Spot& spot) {
        return During([&] {
            MoveTo(spot);
            host.window.Click();
        });
    }
    /// Presses close to each other would be a double click.
    void PressAt(const Spot& spot) {
        std::this_thread::sleep_for(std::chrono::milliseconds(210));
        MoveTo(spot);
        host.window.Press();
    }
    /// Drags by whole window pixels.
    std::vector<test::UiWrite> Drag(const Spot& from, int right, int up) {
        return During([&] {
            PressAt(from);
            MoveTo({from.x + static_cast<float>(right) / 0.75f,
                    from.y + static_cast<float>(up) / 0.75f});
            host.window.Release();
        });
    }
    /// Ports and values of writes to controls.
    static std::vector<std::pair<uint32_t, float>> Values(
        const std::vector<test::UiWrite>& writes) {
        std::vector<std::pair<uint32_t, float>> values;
        for (const auto& write : writes) {
            if (write.protocol == 0) values.emplace_back(write.port, write.AsFloat());
        }
        return values;
    }

    std::vector<double> Response() {
        Tick();  // the curve is computed for a frame
        plugin.settle();
        return plugin.impulse_response(1 << 14);
    }
    GLView_StripEqView& Root() { return *static_cast<EditorInstance*>(host.handle)->rootView; }
    GLView_ParametricEQ& Graph() {
        for (GLView* child = Root().firstChild; child != nullptr; child = child->nextSibling) {
            if (auto* graph = dynamic_cast<GLView_ParametricEQ*>(child)) return *graph;
        }
        throw std::logic_error("no graph");
    }
    /// Where a handle stands, or its marker below the graph.
    Spot HandleAt(int number, bool marker = false) {
        GLView* child = Graph().firstChild;
        for (; number > 0; --number) child = child->nextSibling;
        GLPoint at = dynamic_cast<GLView_ParametricEQGrabber&>(*child).Place();
        if (marker) at.y = -Graph().hh - 42.0f * Root().GetPixelSize();
        const float s = Root().GetInterfaceScale();
        return {(Graph().x + at.x - Root().GetViewLeft()) / s,
                (Graph().y + at.y - Root().GetViewBottom()) / s};
    }
    /// What the drawn curve says.
    double CurveDb(double hz) {
        const auto heights = Graph().Heights();
        const auto i = static_cast<size_t>(800.0 * std::log(hz / 20.0) / kLn1000);
        return static_cast<double>(heights[i] / Graph().hh) * 18.0;
    }
    /// Away from Nyquist, which the curve knows nothing of.
    void ExpectTheSoundThatIsDrawn(double tolerance_db) {
        const auto response = Response();
        for (const double hz : {40.0, 100.0, 300.0, 700.0, 1000.0, 1500.0, 3000.0}) {
            SCOPED_TRACE(hz);
            EXPECT_NEAR(test::gain_db(response, hz, kRate), CurveDb(hz), tolerance_db);
        }
    }

    PluginHost plugin{1, kRate};
    UiHost host{lv2ui_descriptor(0), &plugin.map()};
    bool echoes = true;
    size_t answered = 0;
};

TEST_F(Panel, EachPresetIsWrittenInOrderAndHeard) {
    for (size_t i = 0; i < kPresetCount; ++i) {
        SCOPED_TRACE(kPresets[i].name);
        const auto writes = Click(PresetAt(static_cast<int>(i)));
        ASSERT_EQ(writes.size(), 51u);
        PluginHost wanted(1, kRate);
        for (uint32_t n = 0; n < 51; ++n) {
            EXPECT_EQ(writes[n].port, 2 + n);
            EXPECT_EQ(writes[n].protocol, 0u);
            EXPECT_EQ(writes[n].bytes.size(), 4u);
            EXPECT_EQ(writes[n].AsFloat(), kPresets[i].values[n]);
            wanted.port(2 + n) = kPresets[i].values[n];
        }
        wanted.settle();
        const auto reference = wanted.impulse_response(1 << 14);
        const auto heard = Response();
        for (double hz = 25.0; hz < 20000.0; hz *= 1.5) {
            EXPECT_NEAR(Gain(heard, hz), Gain(reference, hz), 0.002) << hz;
        }
    }
}

TEST_F(Panel, FlatAllSwitchesEverythingOff) {
    Click(PresetAt(4));
    Report(kTrimPort, 6.0f);
    EXPECT_GT(std::abs(test::gain_db(Response(), 100.0, kRate)), 6.0);
    std::vector<uint32_t> ports;
    for (const auto& write : Click(kFlatAll)) {
        ports.push_back(write.port);
        EXPECT_EQ(write.AsFloat(), 0.0f);
    }
    EXPECT_THAT(ports, ElementsAre(2, 7, 12, 17, 22, 27, 32, 37, 42, 47, 52));
    const auto response = Response();
    for (double hz = 25.0; hz < 20000.0; hz *= 2.0) {
        EXPECT_NEAR(test::gain_db(response, hz, kRate), 0.0, 0.01) << hz;
        EXPECT_NEAR(CurveDb(hz), 0.0, 0.01);
    }
}

TEST_F(Panel, EachKeySwitchesItsStrip) {
    for (int strip = 0; strip < kStrips; ++strip) {
        SCOPED_TRACE(strip);
        const uint32_t port = FirstPort(strip);
        const bool on = plugin.port(port) != 0.0f;
        for (const float wanted : {on ? 0.0f : 1.0f, on ? 1.0f : 0.0f}) {
            const auto writes = Click(KeyOf(strip));
            ASSERT_EQ(writes.size(), 1u);
            EXPECT_EQ(writes[0].port, port);
            EXPECT_EQ(writes[0].AsFloat(), wanted);
            EXPECT_THAT(host.touches, ElementsAre(std::pair(port, true), std::pair(port, false)));
        }
    }
}

TEST_F(Panel, EachMenuOffersItsShapesInOrderInsideThePanel) {
    const std::vector<float> band = {1, 2, 3, 4, 5, 6, 9, 12};
    const std::vector<float> sections[] = {{17, 1, 2, 3, 4, 13, 14, 15, 16},
                                           {17, 5, 6, 7, 8, 9, 10, 11, 12}};
    for (int strip = 0; strip < kStrips; ++strip) {
        const auto& shapes = strip < kBandCount ? band : sections[strip - kBandCount];
        for (size_t entry = 0; entry < shapes.size(); ++entry) {
            SCOPED_TRACE(testing::Message() << strip << ", entry " << entry);
            const Spot shape = ShapeOf(strip);
            // The entries stack upwards from the key, so that nothing has to give way to an edge.
            const Spot place = {shape.x, shape.y + 18.0f * static_cast<float>(entry)};
            const auto writes = During([&] {
                MoveTo(shape);
                host.window.Click();
                MoveTo(place);
                host.window.Click();
            });
            ASSERT_EQ(writes.size(), 2u);  // with the press and the release
            for (const auto& write : writes) {
                EXPECT_EQ(write.port, FirstPort(strip) + kType);
                EXPECT_EQ(write.AsFloat(), shapes[entry]);
            }
        }
    }
}

TEST_F(Panel, EachKnobMovesItsControlByItsMeasure) {
    constexpr int kUp = 40;  // pixels
    for (int strip = 0; strip < kStrips; ++strip) {
        Report(FirstPort(strip) + kEnable, 1.0f);
        const double octaves = strip < kBandCount ? kLn1000 : kLn750;
        struct Row {
            float above;
            uint32_t control;
            float value;
            double moved;
        };
        for (const Row& row :
             {Row{40.0f, kGain, 3.0f, 3.0 + 36.0 * 0.003 * kUp},
              Row{0.0f, kQ, 1.0f, std::exp(kLn1000 * 0.003 * kUp)},
              Row{-40.0f, kFrequency, 500.0f, 500.0 * std::exp(octaves * 0.0005 * kUp)}}) {
            SCOPED_TRACE(testing::Message() << strip << ", control " << row.control);
            const uint32_t port = FirstPort(strip) + row.control;
            Report(port, row.value);
            const auto writes = Drag(InStrip(strip, row.above), 0, kUp);
            ASSERT_FALSE(writes.empty());
            EXPECT_EQ(writes.back().port, port);
            EXPECT_NEAR(static_cast<double>(writes.back().AsFloat()), row.moved, 1e-3 * row.moved);
            EXPECT_THAT(host.touches, ElementsAre(std::pair(port, true), std::pair(port, false)));
        }
    }
    const auto trim = Drag(kTrim, 50, 0);
    ASSERT_FALSE(trim.empty());
    EXPECT_EQ(trim.back().port, kTrimPort);
    EXPECT_NEAR(trim.back().AsFloat(), 40.0f * 0.003f * 50.0f, 1e-3f);
}

TEST_F(Panel, DraggingAHandleSoundsAsTheCurveSays) {
    // A low shelf is drawn as it sounds; a bell's curve is wider, but has the same peak.
    const uint32_t shelf = band_port(0);
    Report(shelf + kFrequency, 250.0f);
    ExpectTheSoundThatIsDrawn(0.02);
    // At 0 dB, in the middle of the graph's height, which is 920 pixels wide from 40 on.
    const double x = 40.0 + 920.0 * std::log(250.0 / 20.0) / kLn1000;
    const Spot handle = {static_cast<float>(x / 0.75), 800.0f - 78.0f - 171.0f};
    EXPECT_EQ(Drag(handle, 60, 60).size(), 2u);
    EXPECT_THAT(host.touches,
                ElementsAre(std::pair(shelf + kFrequency, true), std::pair(shelf + kGain, true),
                            std::pair(shelf + kGain, false), std::pair(shelf + kFrequency, false)));
    EXPECT_NEAR(static_cast<double>(plugin.port(shelf + kFrequency)),
                250.0 * std::exp(kLn1000 * 60.0 * 0.003 * 0.3 * 1.2), 0.5);
    EXPECT_NEAR(plugin.port(shelf + kGain), 36.0f * 60.0f * 0.003f * 800.0f / 600.0f, 0.01f);
    ExpectTheSoundThatIsDrawn(0.15);
    EXPECT_NEAR(CurveDb(25.0), 8.64, 0.1);
}

TEST_F(Panel, HandlesStopAtTheirEndsMoveFinelyWithShiftAndTurnTheirQ) {
    const uint32_t third = band_port(3);
    Drag(HandleAt(3), 900, 500);
    EXPECT_EQ(plugin.port(third + kFrequency), 20000.0f);
    EXPECT_EQ(plugin.port(third + kGain), 18.0f);
    Report(third + kGain, 0.0f);
    Tick();  // the handle comes down from where the window ends
    Drag(HandleAt(3), -1000, -300);
    EXPECT_EQ(plugin.port(third + kFrequency), 20.0f);
    EXPECT_EQ(plugin.port(third + kGain), -18.0f);

    const uint32_t fourth = band_port(4);
    Report(fourth + kFrequency, 1000.0f);
    host.window.Key(XK_Shift_L, true);
    Drag(HandleAt(4), 200, 0);
    host.window.Key(XK_Shift_L, false);
    EXPECT_NEAR(static_cast<double>(plugin.port(fourth + kFrequency)),
                1000.0 * std::exp(kLn1000 * 200.0 * 0.003 * 0.3 * 1.2 * 0.1), 0.5);

    Report(fourth + kQ, 1.0f);
    const auto wheel = [&](const Spot& spot) {
        return Values(During([&] {
            MoveTo(spot);
            host.window.Click(4);
        }));
    };
    EXPECT_THAT(
        wheel(HandleAt(4)),
        ElementsAre(Pair(fourth + kQ, testing::FloatNear(std::pow(1000.0f, 0.05f), 1e-3f))));
    EXPECT_THAT(wheel({30.0f, 780.0f}), testing::IsEmpty());
}

TEST_F(Panel, HoldingAMarkerSearchesUntilItIsReleasedOrTheEditorCloses) {
    Report(section_port(0) + kEnable, 1.0f);
    Report(section_port(1) + kEnable, 0.0f);
    for (const bool closes : {false, true}) {
        SCOPED_TRACE(closes);
        Report(band_port(2) + kType, 12.0f);
        Report(band_port(2) + kGain, -3.0f);
        Report(band_port(2) + kFrequency, 400.0f);
        Tick();
        const Spot marker = HandleAt(2, true);
        EXPECT_THAT(Values(During([&] { PressAt(marker); })),
                    ElementsAre(Pair(13, 10), Pair(14, 10), Pair(42, 0), Pair(47, 0), Pair(2, 0),
                                Pair(7, 0), Pair(17, 0), Pair(22, 0), Pair(27, 0), Pair(32, 0),
                                Pair(37, 0)));
        const auto moved = During([&] { MoveTo({marker.x + 80.0f / 0.75f, marker.y + 50.0f}); });
        ASSERT_EQ(moved.size(), 1u);
        EXPECT_EQ(moved[0].port, 15u);
        EXPECT_NEAR(static_cast<double>(moved[0].AsFloat()),
                    400.0 * std::exp(kLn1000 * 80.0 * 0.003 * 0.3 * 1.2 * 0.25), 1.0);
        const auto before = static_cast<std::ptrdiff_t>(host.writes.size());
        if (closes) host.Close();
        host.window.Release();
        if (!closes) Tick();
        EXPECT_THAT(Values({host.writes.begin() + before, host.writes.end()}),
                    ElementsAre(Pair(13, 12), Pair(14, -3), Pair(42, 1), Pair(47, 0), Pair(2, 1),
                                Pair(7, 1), Pair(17, 1), Pair(22, 1), Pair(27, 1), Pair(32, 1),
                                Pair(37, 1)));
    }
    EXPECT_EQ(host.writes.back().port, kControlPort);  // the analyser is switched off last
}

TEST_F(Panel, ShowsTheSpectrumOfItsInputWhileItIsOpen) {
    double phase = 0.0;
    int rows = 0;
    size_t sent = 0;
    const auto run_block = [&] {
        auto* requests = reinterpret_cast<LV2_Atom_Sequence*>(plugin.control.data());
        lv2_atom_sequence_clear(requests);
        for (; sent < host.writes.size(); ++sent) {
            if (host.writes[sent].port != kControlPort) continue;
            alignas(8) uint8_t event[64] = {};
            const auto& bytes = host.writes[sent].bytes;
            std::copy(bytes.begin(), bytes.end(), event + 8);
            lv2_atom_sequence_append_event(requests, static_cast<uint32_t>(plugin.control.size()),
                                           reinterpret_cast<const LV2_Atom_Event*>(event));
        }
        test::Audio in(1, std::vector<float>(1024));
        for (float& sample : in[0]) {
            sample = 0.5f * static_cast<float>(std::sin(phase));
            phase += 2.0 * std::numbers::pi * 1000.0 / kRate;
        }
        plugin.process(in);
        const auto* news = reinterpret_cast<const LV2_Atom_Sequence*>(plugin.notify.data());
        LV2_ATOM_SEQUENCE_FOREACH(news, event) {
            ++rows;
            if (host.handle == nullptr) continue;
            host.Deliver(kNotifyPort, plugin.map()(LV2_ATOM__eventTransfer), &event->body,
                         lv2_atom_total_size(&event->body));
        }
    };
    for (int block = 0; block < 64; ++block) run_block();
    EXPECT_GT(rows, 30);
    const SpectrumHistory& spectrum = Graph().spectrum;
    const auto& newest = spectrum.rows[static_cast<size_t>(spectrum.newest)];
    // 20 Hz x 2^(i/24) comes nearest to 1 kHz at i = 135; the loudest bin of a row reads -10 dB.
    EXPECT_EQ(std::max_element(newest.begin(), newest.end()) - newest.begin(), 135);
    EXPECT_NEAR(newest[135], -10.0f, 0.01f);
    // Rows that were there before are kept, those that are still to come are silent.
    EXPECT_GT(spectrum.rows[static_cast<size_t>(spectrum.newest - 1)][135], -20.0f);
    EXPECT_EQ(spectrum.rows[static_cast<size_t>(spectrum.newest + 1)][135], -120.0f);

    host.Close();
    run_block();
    rows = 0;
    run_block();
    EXPECT_EQ(rows, 0);
}

TEST_F(Panel, DrawsAnewForNewsOnly) {
    const auto draws_anew = [&](uint32_t port, float value) {
        host.IdleTimes(2);
        EXPECT_FALSE(Root().IsStale());
        host.Report(port, value);
        EXPECT_EQ(Root().GetParameter(port), port < 128 ? value : 0.0f);
        return Root().IsStale();
    };
    EXPECT_TRUE(draws_anew(127, 0.0f));  // told for the first time
    EXPECT_FALSE(draws_anew(127, 0.0f));
    EXPECT_TRUE(draws_anew(kTrimPort, -1.0f));
    EXPECT_TRUE(draws_anew(200, 1.0f));
    EXPECT_FALSE(draws_anew(kMeterInPort, 0.5f));
    EXPECT_FALSE(draws_anew(kMeterOutPort, 0.25f));
}

TEST_F(Panel, ShowsTheSameWhetherDrawnInPartsOrWhole) {
    const auto shown = [&] {
        host.IdleTimes(2);
        return host.window.GetPixels(host.child, 1000, 600);
    };
    const auto shown_in_parts = [&] {
        auto parts = shown();
        Root().redrawNeeded = true;
        EXPECT_TRUE(parts == shown());
        return parts;
    };
    auto before = shown();
    for (int strip = 0; strip < kStrips; strip += 3) {
        const bool wasOn = plugin.port(FirstPort(strip)) != 0.0f;
        const float values[] = {wasOn ? 0.0f : 1.0f, 4.0f, 9.0f, 3000.0f, 4.0f};
        for (uint32_t control = 0; control < kControlCount; ++control) {
            SCOPED_TRACE(testing::Message() << strip << ", control " << control);
            Report(FirstPort(strip) + kEnable, 1.0f);
            Report(FirstPort(strip) + control, values[control]);
            const auto parts = shown_in_parts();
            EXPECT_TRUE(parts != before);
            before = parts;
        }
    }
    Report(kTrimPort, 5.0f);
    EXPECT_TRUE(shown_in_parts() != before);
    for (int band = 0; band < kBandCount; ++band) Report(band_port(band) + kGain, 18.0f);
    shown_in_parts();  // with handles above the graph
    for (GLView* view = Root().firstChild; view != nullptr; view = view->nextSibling) {
        SCOPED_TRACE(typeid(*view).name());
        GLView* held = view->firstChild != nullptr ? view->firstChild : view;
        held->SetCaptured(true);
        shown_in_parts();
        held->SetCaptured(false);
        shown_in_parts();
    }
}

TEST_F(Panel, WorksInAHostThatReportsNothingBack) {
    echoes = false;
    const auto wait_for = [&](uint32_t port, float value) {
        return WaitFor([&] { return std::abs(Root().GetParameter(port) - value) < 1e-3f; },
                       [&] { Tick(); });
    };
    EXPECT_EQ(Click(KeyOf(2)).back().AsFloat(), 0.0f);
    EXPECT_TRUE(wait_for(band_port(2), 0.0f));
    EXPECT_EQ(Click(KeyOf(2)).back().AsFloat(), 1.0f);
    const Spot gain = InStrip(5, 40.0f);
    EXPECT_NEAR(Drag(gain, 0, 40).back().AsFloat(), 4.32f, 0.01f);
    EXPECT_TRUE(wait_for(band_port(5) + kGain, 4.32f));
    EXPECT_NEAR(Drag(gain, 0, 40).back().AsFloat(), 8.64f, 0.01f);
}

}  // namespace
}  // namespace brindle
