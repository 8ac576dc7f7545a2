// SPDX-License-Identifier: ISC
// Which curves the graph evaluates, how it sums them, and what takes the pointer.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "graph/scales.h"
#include "tests/graph/graph_fixture.h"

namespace brindle {
namespace {

using testing::Each;
using testing::ElementsAre;

struct Graph : testing::Test, GraphFixture {
    /// Level in dB at a frequency.
    float LevelAt(float freq_hz) const {
        return graph->Heights()[GridIndex(graph->grid, freq_hz).value()] * 18.0f / graph->hh;
    }
};

TEST_F(Graph, AChangeMarksItsBandAndThoseAboveIt) {
    graph->MarkAllDirty(false);
    page.Report(band_port(5) + kGain, 3.0f);
    EXPECT_THAT(graph->bandDirty, ElementsAre(false, false, false, false, false, true, true, true));
    EXPECT_FALSE(graph->filtersDirty);

    graph->MarkAllDirty(false);
    page.Report(band_port(0) + kEnable, 1.0f);
    EXPECT_THAT(graph->bandDirty, Each(true));

    for (const uint32_t port : {42u, 46u, 47u, 51u}) {
        graph->MarkAllDirty(false);
        page.Report(port, 1.0f);
        EXPECT_THAT(graph->bandDirty, Each(false)) << port;
        EXPECT_TRUE(graph->filtersDirty) << port;
    }
    graph->MarkAllDirty(false);
    for (const uint32_t port : {0u, 1u, 52u, 53u, 4000000000u}) page.Report(port, 1.0f);
    EXPECT_THAT(graph->bandDirty, Each(false));
    EXPECT_FALSE(graph->filtersDirty);
}

TEST_F(Graph, TheCurveIsTheSumOfAllThatIsOn) {
    Set(3, {1.0f, 9.0f, 9.0f, 1000.0f, 4.0f});
    Set(4, {1.0f, 9.0f, -3.0f, 1000.0f, 4.0f});
    Set(5, {0.0f, 9.0f, 18.0f, 1000.0f, 4.0f});
    EXPECT_NEAR(LevelAt(1000.0f), 6.0f, 1e-4f);
    Set(8, {1.0f, 2.0f, 0.0f, 1000.0f, 1.0f});                 // 24 dB/oct: 3 dB down at its corner
    Set(9, {1.0f, 5.0f, 0.0f, 1000.0f, 1.0f});                 // 12 dB/oct: 3 dB down too
    EXPECT_NEAR(LevelAt(1000.0f), 6.0f - 2.0f * 3.01f, 0.2f);  // the grid point is next to 1 kHz
    Set(3, {0.0f, 9.0f, 9.0f, 1000.0f, 4.0f});
    Set(4, {0.0f, 9.0f, 9.0f, 1000.0f, 4.0f});
    Set(8, {0.0f, 2.0f, 0.0f, 1000.0f, 1.0f});
    Set(9, {0.0f, 2.0f, 0.0f, 1000.0f, 1.0f});
    EXPECT_THAT(graph->Heights(), Each(0.0f));
}

TEST_F(Graph, HandlesStandOnTheCurve) {
    Set(2, {1.0f, 9.0f, -9.0f, 2000.0f, 1.0f});
    const GLPoint place = handles[2]->Place();
    EXPECT_NEAR(place.x, graph->hw * (2.0f / 3.0f * 2.0f - 1.0f), 1e-4f);  // 20 Hz x 1000^(2/3)
    EXPECT_NEAR(place.y, -graph->hh / 2.0f, 1e-5f);
    Set(2, {1.0f, 12.0f, 0.0f, 2000.0f, 1.0f});
    EXPECT_EQ(handles[2]->Place().y, -graph->hh);  // a notch is no deeper than the graph
    for (const float bad : {0.0f, -5.0f, NAN, INFINITY}) {
        Set(2, {1.0f, 9.0f, 0.0f, bad, 1.0f});
        EXPECT_LE(std::abs(handles[2]->Place().x), graph->hw) << bad;
    }
}

TEST_F(Graph, OnlyHandlesAndTheirMarkersTakeThePointer) {
    const float m = page.pixelSize;
    const float reach = handles[0]->hw + 0.01f;
    const GLPoint place = handles[3]->Place();
    const auto hit = [&](float x, float y) { return graph->HitTest(OnPage({x, y})); };
    EXPECT_TRUE(hit(place.x, place.y));
    EXPECT_EQ(graph->selectedHandle, 3);
    EXPECT_TRUE(hit(place.x + 0.7f * reach, place.y + 0.69f * reach));
    EXPECT_FALSE(hit(place.x + 0.8f * reach, place.y + 0.8f * reach));
    EXPECT_FALSE(hit(place.x, place.y - 0.3f));

    const float marker = -graph->hh - 44.0f * m;
    const float other = handles[6]->Place().x;
    EXPECT_TRUE(hit(other - 0.99f * reach, marker));
    EXPECT_EQ(graph->selectedHandle, 6);
    EXPECT_FALSE(hit(other - 1.01f * reach, marker));
    for (const float y : {34.5f, 53.5f}) EXPECT_TRUE(hit(other, -graph->hh - y * m)) << y;
    for (const float y : {33.5f, 54.5f}) EXPECT_FALSE(hit(other, -graph->hh - y * m)) << y;

    page.Report(Port(6, kEnable), 0.0f);
    EXPECT_FALSE(hit(other, marker));
    // Beyond its margin the graph hit-tests no handle.
    Set(7, {1.0f, 9.0f, 0.0f, 20000.0f, 1.0f});
    handles[7]->SetWidth(1.0f);
    EXPECT_TRUE(hit(graph->hw + 0.079f, 0.0f));
    EXPECT_FALSE(hit(graph->hw + 0.081f, 0.0f));
}

TEST(Scales, HoldGainsBeyondTheRangeAtItsEnds) {
    EXPECT_EQ(PositionOfGainDb(-40.0f), 0.0f);
    EXPECT_EQ(PositionOfGainDb(40.0f), 1.0f);
}

TEST(Scales, NotesAreNamedAsMusiciansDo) {
    const std::pair<float, const char*> notes[] = {
        {440.0f, "A4"}, {261.63f, "C4"}, {246.94f, "B3"}, {27.5f, "A0"},   {20.0f, "D#0"},
        {452.8f, "A4"}, {453.0f, "A#4"}, {4186.0f, "C8"}, {9397.0f, "D9"}, {9700.0f, ""},
        {20000.0f, ""}, {0.0f, ""},      {-1.0f, ""},     {NAN, ""}};
    for (const auto& [freq_hz, name] : notes) EXPECT_EQ(NoteName(freq_hz), name) << freq_hz;
}

}  // namespace
}  // namespace brindle
