// SPDX-License-Identifier: ISC
// What handles write during drags, wheel steps and searches.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "graph/GLView_ParametricEQSelector.h"
#include "graph/GLView_ParametricFilterSelector.h"
#include "tests/graph/graph_fixture.h"

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

struct Handles : testing::Test, GraphFixture {
    /// The writes of a search: every enable but the handle's own is set to these values.
    static std::vector<HostCall> Enables(uint32_t own, const std::array<float, 10>& values) {
        const uint32_t ports[] = {42, 47, 2, 7, 12, 17, 22, 27, 32, 37};
        std::vector<HostCall> calls;
        for (size_t i = 0; i < 10; ++i) {
            if (ports[i] != own) calls.push_back(Wrote(ports[i], values[i]));
        }
        return calls;
    }
    static constexpr std::array<float, 10> kMuted = {};
    static constexpr std::array<float, 10> kBandsOn = {0, 0, 1, 1, 1, 1, 1, 1, 1, 1};

    std::vector<HostCall> TakeWrites() {
        std::vector<HostCall> writes;
        for (const HostCall& call : host.calls) {
            if (call.kind != HostCall::kTouch && call.kind != HostCall::kRelease) {
                writes.push_back(call);
            }
        }
        Echo();
        host.calls.clear();
        echoed = 0;
        return writes;
    }
};

TEST_F(Handles, FollowThePointer) {
    for (const float width : {1000.0f, 2000.0f}) {
        SCOPED_TRACE(width);
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
            ASSERT_NEAR(handle.x, pixel.x, 2.0f);
            ASSERT_NEAR(handle.y, pixel.y, 2.0f);
        }
        Release();
    }
}

TEST_F(Handles, GoOnFromTheLastPlaceInRange) {
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
    Drag({pixel.x + 5000.0f, pixel.y});
    EXPECT_EQ(Value(9, kFrequency), 15000.0f);
}

TEST_F(Handles, TheWheelStopsAtTheEndsOfQ) {
    page.modifiers = 1;
    for (const float delta : {-1.0f, 1000.0f, -1000.0f}) handles[3]->Scroll(delta);
    ASSERT_EQ(host.calls.size(), 3u);
    EXPECT_NEAR(host.calls[0].value, std::pow(1000.0f, -0.005f), 1e-4f);
    EXPECT_EQ(host.calls[1].value, 100.0f);
    EXPECT_EQ(host.calls[2].value, 0.1f);
}

TEST_F(Handles, ASearchKeepsTypesWithoutACentreAndLeavesSectionsAsTheyAre) {
    Set(0, {1.0f, 5.0f, 3.0f, 100.0f, 1.0f});
    PressMarker(0);
    EXPECT_THAT(TakeWrites()[0], Wrote(3, 5.0f));
    Release();
    EXPECT_THAT(TakeWrites()[0], Wrote(3, 5.0f));

    Set(0, {1.0f, 8.95f, 3.0f, 100.0f, 1.0f});  // a Bell, as the engine reads it
    PressMarker(0);
    EXPECT_THAT(TakeWrites()[0], Wrote(3, 10.0f));
    Release();
    EXPECT_THAT(TakeWrites()[0], Wrote(3, 9.0f));

    for (const float type : {99.75f, -3.0f}) {  // outside the ports' ranges
        Set(0, {1.0f, type, -1e6f, 100.0f, 1.0f});
        PressMarker(0);
        EXPECT_THAT(TakeWrites()[0], Wrote(3, type));
        Release();
        const auto writes = TakeWrites();
        EXPECT_THAT(writes[0], Wrote(3, type));
        EXPECT_THAT(writes[1], Wrote(4, -18.0f));
    }

    Set(8, {1.0f, 13.0f, 6.0f, 60.0f, 1.0f});
    PressMarker(8);
    EXPECT_THAT(TakeWrites(), ElementsAreArray(Enables(42, kMuted)));
    Release();
    EXPECT_THAT(TakeWrites(), ElementsAreArray(Enables(42, kBandsOn)));
}

TEST_F(Handles, OnlyTheMiddleOfTheMarkerStripSearches) {
    const float m = page.pixelSize;
    const float x = handles[2]->Place().x;
    for (const float y : {-35.0f, -49.0f, -53.0f}) {
        Press({x, -graph->hh + y * m});
        EXPECT_FALSE(handles[2]->IsSearching()) << y;
        Release();
    }
    EXPECT_THAT(TakeWrites(), ElementsAre());
    for (const float y : {-36.5f, -47.5f}) {
        Press({x, -graph->hh + y * m});
        EXPECT_TRUE(handles[2]->IsSearching()) << y;
        Release();
    }
}

/// However a search ends, it restores all values.
TEST_F(Handles, NoSearchLeavesThePluginMuted) {
    using Ending = void (*)(Handles&);
    const std::pair<const char*, Ending> endings[] = {
        {"another view takes the pointer", [](Handles& t) { t.graph->GLView::SetCaptured(true); }},
        {"the page takes all roles away", [](Handles& t) { t.page.ReleaseAll(); }},
        {"the editor closes", [](Handles& t) { t.page.Close(); }},
        {"a second button on the same marker",
         [](Handles& t) {
             t.PressMarker(2);
             t.Release();
         }},
        {"a second button on another marker",
         [](Handles& t) {
             t.PressMarker(5);
             t.Release();
         }},
    };
    for (const auto& [name, end] : endings) {
        SCOPED_TRACE(name);
        Set(2, {1.0f, 12.0f, -4.5f, 400.0f, 2.0f});
        Set(8, {1.0f, 2.0f, 0.0f, 30.0f, 1.0f});
        Set(9, {0.0f, 5.0f, 0.0f, 15000.0f, 1.0f});
        const auto before = page.parameters;
        PressMarker(2);
        Echo();
        EXPECT_TRUE(handles[2]->IsSearching());
        end(*this);
        Echo();
        EXPECT_EQ(page.parameters, before);
        page.ReleaseAll();
    }
}

TEST(TypeSelector, ShowsTheShortLabelNearestInTheTable) {
    FakePage page;
    auto* band = new GLView_ParametricEQSelector(0);
    auto* section = new GLView_ParametricFilterSelector(0);
    page.AddChild(band);
    page.AddChild(section);
    const std::pair<float, const char*> labels[] = {
        {5.0f, "Lo Sh"},
        {8.995f, "Bell"},
        {8.9f, "Hsh2"},
        {12.7f, "Notch"},
        {99.0f, kBandTypes.back().short_name},
        {-1.0f, "Flat"},
        {NAN, "Flat"},
    };
    for (const auto& [value, label] : labels) {
        page.Report(3, value);
        EXPECT_STREQ(band->ShortLabel(), label) << value;
    }
    page.Report(43, 17.0f);
    EXPECT_STREQ(section->ShortLabel(), "Wd Notch");
    page.Report(43, 1e30f);
    EXPECT_STREQ(section->ShortLabel(), "Wd Notch");
}

}  // namespace
}  // namespace brindle
