// SPDX-License-Identifier: ISC
// Which curves the graph evaluates and sums, what takes the pointer, and what handles write.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "graph/GLView_ParametricEQSelector.h"
#include "graph/scales.h"
#include "tests/graph/graph_fixture.h"

namespace brindle {
namespace {

using testing::Each;

struct Graph : testing::Test, GraphFixture {
    /// Level in dB at a frequency.
    float LevelAt(float freq_hz) const {
        return graph->Heights()[GridIndex(graph->grid, freq_hz).value()] * 18.0f / graph->hh;
    }
};

TEST_F(Graph, AChangeMarksItsBandAndThoseAboveIt) {
    for (const auto& [port, first, sections] : {std::tuple(band_port(5) + kGain, 5, false),
                                                {band_port(0) + kEnable, 0, false},
                                                {42u, 8, true},
                                                {51u, 8, true},
                                                {1u, 8, false},
                                                {52u, 8, false},
                                                {4000000000u, 8, false}}) {
        graph->MarkAllDirty(false);
        page.Report(port, 1.0f);
        for (int band = 0; band < kBandCount; ++band) {
            EXPECT_EQ(graph->bandDirty[static_cast<size_t>(band)], band >= first) << port;
        }
        EXPECT_EQ(graph->filtersDirty, sections) << port;
    }
}

TEST_F(Graph, TheCurveIsTheSumOfAllThatIsOn) {
    Set(3, {1.0f, 9.0f, 9.0f, 1000.0f, 4.0f});
    Set(4, {1.0f, 9.0f, -3.0f, 1000.0f, 4.0f});
    Set(5, {0.0f, 9.0f, 18.0f, 1000.0f, 4.0f});
    EXPECT_NEAR(LevelAt(1000.0f), 6.0f, 1e-4f);
    // 24 and 12 dB/oct are 3 dB down at their corner; the grid point is next to 1 kHz.
    Set(8, {1.0f, 2.0f, 0.0f, 1000.0f, 1.0f});
    Set(9, {1.0f, 5.0f, 0.0f, 1000.0f, 1.0f});
    EXPECT_NEAR(LevelAt(1000.0f), 6.0f - 2.0f * 3.01f, 0.2f);
    for (const int strip : {3, 4, 8, 9}) page.Report(Port(strip, kEnable), 0.0f);
    graph->UpdateCurves();
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

    const float other = handles[6]->Place().x;
    EXPECT_TRUE(hit(other - 0.99f * reach, -graph->hh - 44.0f * m));
    EXPECT_EQ(graph->selectedHandle, 6);
    EXPECT_FALSE(hit(other - 1.01f * reach, -graph->hh - 44.0f * m));
    for (const float y : {34.5f, 53.5f}) EXPECT_TRUE(hit(other, -graph->hh - y * m)) << y;
    for (const float y : {33.5f, 54.5f}) EXPECT_FALSE(hit(other, -graph->hh - y * m)) << y;
    page.Report(Port(6, kEnable), 0.0f);
    EXPECT_FALSE(hit(other, -graph->hh - 44.0f * m));
    page.Report(Port(3, kGain), 9.0f);
    EXPECT_TRUE(hit(place.x, 0.5f * graph->hh)) << "before it is drawn there";
    // Beyond its margin the graph hit-tests no handle.
    Set(7, {1.0f, 9.0f, 0.0f, 20000.0f, 1.0f});
    handles[7]->SetWidth(1.0f);
    EXPECT_TRUE(hit(graph->hw + 0.079f, 0.0f));
    EXPECT_FALSE(hit(graph->hw + 0.081f, 0.0f));
}

TEST_F(Graph, HandlesFollowThePointerAtAnySize) {
    for (const float width : {1000.0f, 2000.0f}) {
        page.pageWidth = width;
        page.pageHeight = 0.6f * width;
        page.modifiers = 4;  // Alt, which is not fine
        Set(3, {1.0f, 9.0f, 0.0f, 800.0f, 1.0f});
        GLPoint pixel = PressHandle(3);
        for (int step = 0; step < 60; ++step) {
            pixel.x += step < 40 ? 5.0f : -5.0f;
            pixel.y -= step < 40 ? 1.0f : -1.0f;
            Drag(pixel);
            const GLPoint handle = InPixels(handles[3]->Place());
            ASSERT_NEAR(handle.x, pixel.x, 2.0f) << width;
            ASSERT_NEAR(handle.y, pixel.y, 2.0f) << width;
        }
        Release();
    }
}

TEST_F(Graph, HandlesStopAtTheEndsAndGoOnFromTheLastPlaceInRange) {
    GLPoint pixel = PressHandle(3);
    Drag({pixel.x - 5000.0f, pixel.y + 5000.0f});
    EXPECT_EQ(Value(3, kFrequency), 20.0f);
    EXPECT_EQ(Value(3, kGain), -18.0f);
    Drag({pixel.x + 10.0f, pixel.y - 6.0f});
    EXPECT_NEAR(Value(3, kFrequency), 20.0f * std::pow(1000.0f, 0.0108f), 0.01f);
    EXPECT_NEAR(Value(3, kGain), -18.0f + 0.024f * 36.0f, 1e-4f);
    Release();
    Set(9, {1.0f, 5.0f, 0.0f, 14000.0f, 1.0f});
    pixel = PressHandle(9);
    Drag({pixel.x + 20.0f, pixel.y});
    EXPECT_EQ(Value(9, kFrequency), 15000.0f);
    Release();

    page.modifiers = 1;
    for (const auto& [delta, q] :
         {std::pair(-1.0f, std::pow(1000.0f, -0.005f)), {1000.0f, 100.0f}, {-1000.0f, 0.1f}}) {
        page.Report(Port(3, kQ), 1.0f);
        handles[3]->Scroll(delta);
        EXPECT_NEAR(host.calls.back().value, q, 1e-4f);
    }
}

TEST_F(Graph, SearchesAndModifiersMakeDragsFiner) {
    struct Row {
        uint32_t modifiers;
        float below;  // design pixels, under the graph
        float share;
    };
    for (const auto& [modifiers, below, share] :
         {Row{0, 51.0f, 1.0f}, {0, 42.0f, 0.25f}, {1, 51.0f, 0.1f}, {2, 42.0f, 0.025f}}) {
        page.modifiers = modifiers;
        Set(3, {1.0f, 9.0f, 0.0f, 800.0f, 1.0f});
        const GLPoint pixel = Press({handles[3]->Place().x, -graph->hh - below * page.pixelSize});
        Drag({pixel.x + 100.0f, pixel.y});
        EXPECT_NEAR(Value(3, kFrequency), 800.0f * std::pow(1000.0f, 0.108f * share), 0.1f)
            << share;
        Release();
    }
}

TEST_F(Graph, ASearchKeepsTypesWithoutACentre) {
    for (const auto& [type, searched, restored] : {std::tuple(5.0f, 5.0f, 5.0f),
                                                   {8.95f, 10.0f, 9.0f},  // as the engine reads it
                                                   {99.75f, 99.75f, 99.75f},
                                                   {-3.0f, -3.0f, -3.0f}}) {
        Set(0, {1.0f, type, -1e6f, 100.0f, 1.0f});
        PressMarker(0);
        const auto begun = Echo();
        EXPECT_EQ(begun[0], Wrote(3, searched));
        EXPECT_EQ(begun[1], Wrote(4, 10.0f));
        const auto writes = Release();
        EXPECT_EQ(writes[0], Wrote(3, restored));
        EXPECT_EQ(writes[1], Wrote(4, -18.0f));
    }
    // Only the middle of the marker's strip searches.
    for (const auto& [y, searches] :
         {std::pair(35.0f, false), {36.5f, true}, {47.5f, true}, {49.0f, false}, {53.0f, false}}) {
        Press({handles[2]->Place().x, -graph->hh - y * page.pixelSize});
        EXPECT_EQ(handles[2]->IsSearching(), searches) << y;
        Release();
    }
}

/// However a search ends, it restores all values.
TEST_F(Graph, NoSearchLeavesThePluginMuted) {
    using Ending = void (*)(Graph&, int);
    const std::pair<const char*, Ending> endings[] = {
        {"the marker is released", [](Graph& t, int) { t.Release(); }},
        {"another view takes the pointer",
         [](Graph& t, int) { t.graph->GLView::SetCaptured(true); }},
        {"the editor closes", [](Graph& t, int) { t.page.Close(); }},
        {"a second button on the same marker",
         [](Graph& t, int handle) {
             t.PressMarker(handle);
             t.Release();
         }},
        {"a second button on another marker",
         [](Graph& t, int) {
             t.PressMarker(5);
             t.Release();
         }},
    };
    Set(2, {1.0f, 12.0f, -4.5f, 400.0f, 2.0f});
    Set(8, {1.0f, 13.0f, 6.0f, 30.0f, 1.0f});
    Set(9, {0.0f, 5.0f, 0.0f, 15000.0f, 1.0f});
    const auto before = page.parameters;
    for (const auto& [name, end] : endings) {
        for (const int handle : {2, 8}) {
            SCOPED_TRACE(testing::Message() << name << ", handle " << handle);
            PressMarker(handle);
            Echo();
            EXPECT_TRUE(handles[static_cast<size_t>(handle)]->IsSearching());
            for (int strip = 0; strip < kStripCount; ++strip) {
                EXPECT_EQ(Value(strip, kEnable), strip == handle ? 1.0f : 0.0f);
            }
            EXPECT_EQ(Value(8, kType), 13.0f);  // sections are heard as they are
            EXPECT_EQ(Value(8, kGain), 6.0f);
            end(*this, handle);
            Echo();
            EXPECT_EQ(page.parameters, before);
            page.ReleaseAll();
        }
    }
}

TEST(Scales, NotesAreNamedAsMusiciansDo) {
    const std::pair<float, const char*> notes[] = {
        {440.0f, "A4"}, {261.63f, "C4"}, {246.94f, "B3"}, {20.0f, "D#0"},
        {452.8f, "A4"}, {453.0f, "A#4"}, {9397.0f, "D9"}, {9700.0f, ""},
        {20000.0f, ""}, {0.0f, ""},      {NAN, ""}};
    for (const auto& [freq_hz, name] : notes) EXPECT_EQ(NoteName(freq_hz), name) << freq_hz;
    EXPECT_EQ(PositionOfGainDb(40.0f), 1.0f);  // beyond its range
    EXPECT_FLOAT_EQ(SectionHzAt(PositionOfSectionHz(300.0f)), 300.0f);
}

TEST(TypeSelector, ShowsTheShortLabelNearestInTheTable) {
    FakePage page;
    auto& band = page.Add<GLView_ParametricEQSelector>(0);
    const std::pair<float, const char*> labels[] = {
        {8.995f, "Bell"}, {8.9f, "Hsh2"}, {99.0f, kBandTypes.back().short_name}, {NAN, "Flat"}};
    for (const auto& [value, label] : labels) {
        page.Report(3, value);
        EXPECT_STREQ(band.ShortLabel(), label) << value;
    }
}

}  // namespace
}  // namespace brindle
