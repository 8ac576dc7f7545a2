// SPDX-License-Identifier: ISC
// The graph in the panel: its handles, searches and analyser.
#include <gmock/gmock.h>
#include <lv2/atom/util.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "tests/editor/panel_fixture.h"

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::Pair;

struct PanelGraph : Panel {
    /// Only far below Nyquist, which has no effect on the curve.
    void ExpectTheSoundThatIsDrawn(double tolerance_db) {
        const auto response = Response();
        for (const double hz : {40.0, 100.0, 300.0, 700.0, 1000.0, 1500.0, 3000.0}) {
            SCOPED_TRACE(hz);
            EXPECT_NEAR(test::gain_db(response, hz, kRate), CurveDb(hz), tolerance_db);
        }
    }
};

TEST_F(PanelGraph, DraggingAHandleSoundsAsTheCurveSays) {
    // A low shelf is drawn as it sounds; a bell's curve is wider, but has the right peak.
    const uint32_t shelf = band_port(0);
    Report(shelf + kFrequency, 250.0f);
    ExpectTheSoundThatIsDrawn(0.02);
    // At 0 dB: the middle of the graph's height. The graph is 920 pixels wide, from 40 on.
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

TEST_F(PanelGraph, HandlesStopAtTheirEndsMoveFinelyWithShiftAndTurnTheirQ) {
    const uint32_t third = band_port(3);
    Drag(HandleAt(3), 900, 500);
    EXPECT_EQ(plugin.port(third + kFrequency), 20000.0f);
    EXPECT_EQ(plugin.port(third + kGain), 18.0f);
    Report(third + kGain, 0.0f);
    Tick();  // the handle returns from the window's edge
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

TEST_F(PanelGraph, TellsAHandlesValuesWhileItIsHeldOrTurned) {
    const auto told = [&] {
        Tick();
        return std::string(Root().infoTitle) + " " + Root().infoText;
    };
    const uint32_t third = band_port(2);
    for (const auto& [control, value] :
         {std::pair(kFrequency, 1244.5f), {kGain, 6.5f}, {kQ, 0.7f}}) {
        Report(third + control, value);
    }
    Tick();
    const std::string values = "Band 3: 1.24 kHz (D#6), +6.5 dB, Q 0.70";
    const std::string before = "Band 3 drag: frequency and gain, wheel: Q, hold the marker: solo";
    MoveTo(HandleAt(2));
    EXPECT_EQ(told(), before);
    PressAt(HandleAt(2));
    EXPECT_EQ(told(), values);
    for (const auto& [hz, text] : {std::pair(63.0f, "63.0 Hz (B1)"),
                                   {440.0f, "440 Hz (A4)"},
                                   {999.7f, "1.00 kHz (B5)"},
                                   {12345.0f, "12.3 kHz"}}) {
        Report(third + kFrequency, hz);
        EXPECT_EQ(told(), std::string("Band 3: ") + text + ", +6.5 dB, Q 0.70");
    }
    Report(third + kFrequency, 1244.5f);
    Tick();
    host.window.Release();
    EXPECT_EQ(told(), values);  // until the pointer goes elsewhere
    MoveTo({100.0f, 700.0f});
    Tick();
    MoveTo(HandleAt(2));
    EXPECT_EQ(told(), before);
    host.window.Click(4);
    Tick();
    EXPECT_EQ(told(), "Band 3: 1.24 kHz (D#6), +6.5 dB, Q 0.99");
    MoveTo(HandleAt(2, 42.0f));
    EXPECT_EQ(told(), "Band 3 hold: solo, drag: frequency, wheel: Q");
    MoveTo(HandleAt(2, 51.0f));
    EXPECT_EQ(told(), "Band 3 drag: frequency and gain without solo, wheel: Q");
}

TEST_F(PanelGraph, DrawsTheSelectedHandleOverItsNeighbours) {
    for (const int band : {4, 5, 6}) Report(band_port(band) + kFrequency, 1000.0f);
    Tick();
    const Spot handle = HandleAt(5);
    /// The handle's number, inside its pulsing rings.
    const auto number = [&] {
        MoveTo({125.0f + 15.0f + 87.0f * 5.0f + 40.0f, 154.0f});  // in the strip, beside controls
        host.IdleTimes(3);
        EXPECT_EQ(Graph().selectedHandle, 5);
        std::vector<uint32_t> pixels;
        for (int y = -2; y <= 2; ++y) {
            for (int x = -2; x <= 2; ++x) {
                pixels.push_back(
                    host.GetPixel(static_cast<int>(std::lround(handle.x * 0.75f)) + x,
                                  static_cast<int>(std::lround(600.0f - handle.y * 0.75f)) + y));
            }
        }
        return pixels;
    };
    const auto shown = number();
    for (const int band : {4, 6}) Report(band_port(band) + kEnable, 0.0f);
    EXPECT_TRUE(shown == number());
    Report(band_port(5) + kEnable, 0.0f);
    EXPECT_TRUE(shown != number());
}

TEST_F(PanelGraph, HoldingAMarkerSearchesUntilItIsReleasedOrTheEditorCloses) {
    Report(section_port(0) + kEnable, 1.0f);
    Report(section_port(1) + kEnable, 0.0f);
    for (const bool closes : {false, true}) {
        SCOPED_TRACE(closes);
        Report(band_port(2) + kType, 12.0f);
        Report(band_port(2) + kGain, -3.0f);
        Report(band_port(2) + kFrequency, 400.0f);
        const float fifth = closes ? 0.0f : 1.0f;  // switched off right after a search
        Report(band_port(4) + kEnable, fifth);
        Tick();
        const Spot marker = HandleAt(2, 42.0f);
        EXPECT_THAT(Values(During([&] { PressAt(marker); })),
                    ElementsAre(Pair(13, 10), Pair(14, 10), Pair(42, 0), Pair(47, 0), Pair(2, 0),
                                Pair(7, 0), Pair(17, 0), Pair(22, 0), Pair(27, 0), Pair(32, 0),
                                Pair(37, 0)));
        EXPECT_THAT(host.touches, ElementsAre(Pair(15, true)));  // not the gain
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
                                Pair(7, 1), Pair(17, 1), Pair(22, fifth), Pair(27, 1), Pair(32, 1),
                                Pair(37, 1)));
    }
    EXPECT_EQ(host.writes.back().port, kControlPort);  // the analyser is switched off last
}

TEST_F(PanelGraph, ShowsTheSpectrumOfItsInputWhileItIsOpen) {
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
    // 20 Hz x 2^(i/24) is nearest to 1 kHz at i = 135; the loudest bin of a row is at -10 dB.
    EXPECT_EQ(std::max_element(newest.begin(), newest.end()) - newest.begin(), 135);
    EXPECT_NEAR(newest[135], -10.0f, 0.01f);
    // Earlier rows are kept; rows that have not arrived yet are silent.
    EXPECT_GT(spectrum.rows[static_cast<size_t>(spectrum.newest - 1)][135], -20.0f);
    EXPECT_EQ(spectrum.rows[static_cast<size_t>(spectrum.newest + 1)][135], -120.0f);

    host.Close();
    run_block();
    rows = 0;
    run_block();
    EXPECT_EQ(rows, 0);
}

}  // namespace
}  // namespace brindle
