// SPDX-License-Identifier: ISC
// The graph in the panel: its handles, searches and analyser.
#include <gmock/gmock.h>
#include <lv2/atom/util.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "tests/editor/panel_fixture.h"
#include "tests/support/plot_message.h"

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::Pair;

TEST_F(Panel, TellsAHandlesValuesWhileItIsHeldOrTurned) {
    const uint32_t third = band_port(2);
    for (const auto& [control, value] :
         {std::pair(kFrequency, 1244.5f), {kGain, 6.5f}, {kQ, 0.7f}}) {
        Report(third + control, value);
    }
    Tick();
    const Spot handle = HandleAt(2);
    const std::string values = "Band 3:|1.24 kHz (D#6), +6.5 dB, Q 0.70";
    const std::string before = "Band 3|drag: frequency and gain, wheel: Q, hold the marker: solo";
    EXPECT_EQ(HelpAt(handle), before);
    PressAt(handle);
    EXPECT_EQ(Help(), values);
    for (const auto& [hz, text] : {std::pair(63.0f, "63.0 Hz (B1)"),
                                   {440.0f, "440 Hz (A4)"},
                                   {999.7f, "1.00 kHz (B5)"},
                                   {12345.0f, "12.3 kHz"}}) {
        Report(third + kFrequency, hz);
        EXPECT_EQ(Help(), std::string("Band 3:|") + text + ", +6.5 dB, Q 0.70");
    }
    Report(third + kFrequency, 1244.5f);
    host.window.Release();
    EXPECT_EQ(Help(), values);  // until the pointer goes elsewhere
    HelpAt({100.0f, 700.0f});
    EXPECT_EQ(HelpAt(handle), before);
    Click(handle, 4);
    EXPECT_EQ(Help(), "Band 3:|1.24 kHz (D#6), +6.5 dB, Q 0.99");
    EXPECT_EQ(HelpAt(HandleAt(2, 42.0f)), "Band 3|hold: solo, drag: frequency, wheel: Q");
    EXPECT_EQ(HelpAt(HandleAt(2, 51.0f)), "Band 3|drag: frequency and gain without solo, wheel: Q");
}

TEST_F(Panel, PointingAtAStripLightsItsHandleAndItsOutline) {
    for (const int band : {4, 5, 6}) Report(band_port(band) + kFrequency, 1000.0f);
    Tick();
    const Spot handle = HandleAt(5);
    /// The handle's number, inside its pulsing rings.
    const auto number = [&] {
        MoveTo({InStrip(5, 20.0f).x + 38.0f, 154.0f});  // beside the controls
        host.IdleTimes(3);
        EXPECT_EQ(Graph().selectedHandle, 5);
        std::vector<uint32_t> pixels;
        for (int i = 0; i < 25; ++i) {
            pixels.push_back(host.GetPixel(PixelX(handle) + i % 5 - 2, PixelY(handle) + i / 5 - 2));
        }
        return pixels;
    };
    const auto shown = number();
    for (const int band : {4, 6}) Report(band_port(band) + kEnable, 0.0f);
    EXPECT_TRUE(shown == number()) << "its neighbours are drawn over it";
    Report(band_port(5) + kEnable, 0.0f);
    EXPECT_TRUE(shown != number());

    // The outline is equally thick on all sides, also in windows of odd sizes.
    host.window.Resize(1090, 654);
    ASSERT_TRUE(WaitFor([&] { return Root().GetPageWidth() == 1090.0f; }, [&] { Tick(); }));
    pixelsPerPoint = 654.0f / 800.0f;
    MoveTo({InStrip(1, 20.0f).x + 38.0f, 154.0f});
    host.IdleTimes(2);
    // How many pixels are green inwards from an edge.
    const auto thickness = [&](const Spot& edge, int dx, int dy) {
        int count = 0;
        for (int step = -3; step < 12; ++step) {
            const uint32_t rgb = host.GetPixel(PixelX(edge) + step * dx, PixelY(edge) + step * dy);
            const bool isGreen = (rgb >> 8 & 255) > (rgb >> 16 & 255) + 60;
            if (count > 0 && !isGreen) break;
            count += isGreen ? 1 : 0;
        }
        return count;
    };
    const float x = InStrip(1, 0.0f).x;
    const int wanted = thickness({x - 40.5f, 100.0f}, 1, 0);
    EXPECT_GE(wanted, 2);
    EXPECT_EQ(thickness({x + 40.5f, 100.0f}, -1, 0), wanted);
    EXPECT_EQ(thickness({x, 230.0f}, 0, 1), wanted);
    EXPECT_EQ(thickness({x, 38.0f}, 0, -1), wanted);
}

TEST_F(Panel, HoldingAMarkerSearchesUntilTheEditorCloses) {
    Report(section_port(0) + kEnable, 1.0f);
    Report(band_port(2) + kType, 12.0f);
    Report(band_port(2) + kGain, -3.0f);
    Report(band_port(4) + kEnable, 0.0f);
    Tick();
    const Spot marker = HandleAt(2, 42.0f);
    EXPECT_THAT(During([&] { PressAt(marker); }), testing::SizeIs(11));
    EXPECT_THAT(host.touches, ElementsAre(Pair(15, true)));  // not the gain
    EXPECT_THAT(
        During([&] { host.Close(); }),
        ElementsAre(Pair(13, 12), Pair(14, -3), Pair(42, 1), Pair(47, 0), Pair(2, 1), Pair(7, 1),
                    Pair(17, 1), Pair(22, 0), Pair(27, 1), Pair(32, 1), Pair(37, 1)));
    EXPECT_EQ(host.writes.back().port, kControlPort);  // the analyser is switched off last
    host.window.Release();
}

TEST_F(Panel, ShowsTheSpectrumOfItsInput) {
    plugin.send_request(kEnableUiUri);
    test::Audio tone(1, std::vector<float>(48));  // one period at 1 kHz
    for (size_t i = 0; i < tone[0].size(); ++i) {
        tone[0][i] = 0.5f * static_cast<float>(
                                std::sin(2.0 * std::numbers::pi * static_cast<double>(i) / 48.0));
    }
    for (int block = 0; block < 1400; ++block) {
        plugin.process(tone);
        const auto* news = reinterpret_cast<const LV2_Atom_Sequence*>(plugin.notify.data());
        LV2_ATOM_SEQUENCE_FOREACH(news, event) {
            host.Deliver(kNotifyPort, plugin.map()(LV2_ATOM__eventTransfer), &event->body,
                         lv2_atom_total_size(&event->body));
        }
    }
    const SpectrumHistory& spectrum = Graph().spectrum;
    const auto row = [&](int later) {
        return spectrum.rows[static_cast<size_t>(spectrum.newest + later)];
    };
    // 20 Hz x 2^(i/24) is nearest to 1 kHz at i = 135; the loudest bin of a row is at -10 dB.
    const auto newest = row(0);
    EXPECT_EQ(std::ranges::max_element(newest) - newest.begin(), 135);
    EXPECT_NEAR(newest[135], -10.0f, 0.01f);
    // Earlier rows are kept; rows that have not arrived yet are silent.
    EXPECT_GT(row(-1)[135], -20.0f);
    EXPECT_EQ(row(1)[135], -120.0f);

    const auto message = test::PlotMessage(plugin.map(), 5, std::vector<float>(kPlotBins));
    host.Deliver(kNotifyPort, plugin.map()(LV2_ATOM__eventTransfer), message.data(),
                 static_cast<uint32_t>(4 * message.size()));
    EXPECT_EQ(spectrum.newest, 5);
}

}  // namespace
}  // namespace brindle
