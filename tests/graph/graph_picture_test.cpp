// SPDX-License-Identifier: ISC
// The graph's picture, read back from software GL at twice the design size.
#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <vector>

#include "gl/GLResources.h"
#include "gl/settings.h"
#include "tests/graph/graph_fixture.h"
#include "tests/support/gl_context.h"

namespace brindle {
namespace {

constexpr float kPixelsPerUnit = 600.0f;

int Brightness(Pixel p) {
    return p.red + p.green + p.blue;
}

/// Draws with the graph's centre in the middle of the picture, in the graph's coordinates.
struct GraphPicture : testing::Test, GraphFixture {
    GraphPicture() {
        resourceDirectory = BRINDLE_BUNDLE "/";
        resources = std::make_unique<GLResources>(page.interfaceScale);
        page.resources = resources.get();
        graph->SetPosition(0.0f, 0.0f);
        Clear();
    }
    void Clear() {
        gl.Clear(0.16f);
        glScalef(kPixelsPerUnit, kPixelsPerUnit, 1.0f);
    }
    static void ClearToWhite() {
        glClearColor(1.0f, 1.0f, 1.0f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    void Pass(void (GLView::*pass)()) {
        glPushMatrix();
        (graph->*pass)();
        glPopMatrix();
    }
    Pixel At(float x, float y) const { return gl.At(x * kPixelsPerUnit, y * kPixelsPerUnit); }
    float X(float freq_hz) const {
        return graph->hw * (2.0f * std::log(freq_hz / 20.0f) / std::log(1000.0f) - 1.0f);
    }
    float M(float count) const { return count * page.pixelSize; }
    /// Height of the centre of the curve's line in a column.
    float LineHeight(float x) const {
        std::vector<float> heights;
        for (float y = -graph->hh; y < graph->hh; y += 1.0f / kPixelsPerUnit) {
            const Pixel p = At(x, y);
            if (p.red > 190 && p.blue > 160 && p.blue < p.red) heights.push_back(y);
        }
        if (heights.empty()) return NAN;
        return std::accumulate(heights.begin(), heights.end(), 0.0f) /
               static_cast<float>(heights.size());
    }

    GLContext gl{2000, 1200};
    std::unique_ptr<GLResources> resources;
};

TEST_F(GraphPicture, TheCurveIsDrawnAtItsHeight) {
    for (int band = 0; band < kBandCount; ++band) page.Report(Port(band, kEnable), 0.0f);
    Set(0, {1.0f, 5.0f, 6.0f, 400.0f, 1.0f});    // low shelf, flat below 100 Hz
    Set(1, {1.0f, 9.0f, -9.0f, 8000.0f, 2.0f});  // bell
    graph->DeleteChildren();                     // their discs would hide the line
    Pass(&GLView::Draw);
    const float step = graph->hh / 18.0f;
    EXPECT_NEAR(LineHeight(X(25.0f)), 6.0f * step, M(1.0f));
    EXPECT_NEAR(LineHeight(X(8000.0f)), -9.0f * step, M(1.0f));
    EXPECT_NEAR(LineHeight(X(2200.0f)), 0.0f, 0.5f * step);
    // The area extends from the zero line to the curve and is brightest in between.
    const Pixel zero = At(X(60.0f), 0.3f * step);
    const Pixel bright = At(X(60.0f), 0.7f * 6.0f * step);
    EXPECT_GT(bright.green, zero.green + 80);
    EXPECT_LT(Brightness(At(X(60.0f), -1.0f * step)), 150);
}

TEST_F(GraphPicture, TheLineEndsAtItsLastPointsAndTheScaleShowsOnTheArea) {
    const GraphLook look = graph->Look();
    std::vector<float> heights(100, 0.5f * graph->hh);
    DrawResponse(heights, look);
    const float dx = 2.0f * graph->hw / 100.0f;
    const float first = dx / 2.0f - graph->hw;
    for (const auto& [end, inwards] : {std::pair(first, 1.0f), {first + 98.0f * dx, -1.0f}}) {
        EXPECT_EQ(At(end + M(0.75f) * inwards, heights[0] + M(1.0f)).red, 204) << end;
        EXPECT_LT(At(end - M(0.75f) * inwards, heights[0] + M(1.0f)).red, 60) << end;
    }
    for (const float hz : {70.0f, 200.0f, 3000.0f}) {
        const auto area = [&](float besideM) { return At(X(hz) + M(besideM), M(40.0f)).green; };
        EXPECT_LT(area(0.0f), 0.95f * static_cast<float>(area(4.0f))) << hz;
    }
}

TEST_F(GraphPicture, LinesHangBelowTheirLevelsAndEdgesAreShaded) {
    const GraphLook look = graph->Look();
    const float step = graph->hh / 18.0f;
    const int ground = Brightness(At(0.0f, M(20.0f)));
    DrawLevelLines(look);
    for (float db = -18.0f; db <= 18.0f; db += 3.0f) {
        const auto isLine = [&](float m) {
            return Brightness(At(0.0f, db * step + M(m))) > ground;
        };
        EXPECT_EQ(isLine(-0.5f), db != 0.0f) << db;
        EXPECT_EQ(isLine(-1.5f), db != 0.0f) << db;
        EXPECT_FALSE(isLine(0.5f) || isLine(-2.5f)) << db;
    }
    ClearToWhite();
    DrawEdgeShading(look);
    const float edge = graph->hh + 0.01f;
    for (const float side : {-1.0f, 1.0f}) {
        const auto redAt = [&](float fromSide, float y) {
            return At(side * (graph->hw + fromSide), y).red;
        };
        EXPECT_NEAR(redAt(-0.01f, 0.0f), 128, 12);
        EXPECT_EQ(redAt(-0.022f, 0.0f), 255);
        EXPECT_EQ(redAt(0.002f, 0.0f), 255);
        EXPECT_LT(redAt(-0.001f, graph->hh + 0.048f), 30);
        EXPECT_EQ(redAt(-0.001f, graph->hh + 0.052f), 255);
        EXPECT_NEAR(At(0.0f, side * 0.75f * edge).red, 128, 4);
        EXPECT_EQ(At(0.0f, side * 0.49f * edge).red, 255);
    }
}

TEST_F(GraphPicture, NothingIsPlottedBeforeTheFirstChange) {
    GLView_ParametricEQ fresh;
    fresh.SetSize(2.0f * graph->hw, 2.0f * graph->hh);
    fresh.parent = &page;
    fresh.Draw();
    EXPECT_TRUE(std::isnan(LineHeight(X(1000.0f))));
    fresh.MarkAllDirty(true);
    glLoadIdentity();
    glScalef(kPixelsPerUnit, kPixelsPerUnit, 1.0f);
    fresh.Draw();
    EXPECT_NEAR(LineHeight(X(1000.0f)), 0.0f, M(1.0f));
}

TEST_F(GraphPicture, TheCurveIsClippedOneUnitInsideTheEdges) {
    std::vector<float> heights(800, 10.0f * graph->hh);
    std::fill_n(heights.begin(), 400, -10.0f * graph->hh);
    const GraphLook look = graph->Look();
    DrawResponse(heights, look);
    const Pixel empty = At(0.0f, 0.9f);
    for (const float side : {-1.0f, 1.0f}) {
        const float x = side * graph->hw / 2.0f;
        EXPECT_NE(Brightness(At(x, side * (graph->hh - M(1.75f)))), Brightness(empty));
        EXPECT_EQ(Brightness(At(x, side * (graph->hh - M(0.25f)))), Brightness(empty));
    }
}

TEST_F(GraphPicture, TheStripShowsRowsWhereTheyHaveLevels) {
    const GraphLook look = graph->Look();
    const float newest = -graph->hh - M(56.0f);
    const auto column = [&](int i) {
        return graph->hw * (2.0f * (static_cast<float>(i) + 0.5f) / 241.0f - 1.0f);
    };
    const int dark = Brightness(At(0.0f, newest));
    DrawSpectrum(MakeSpectrumImage(graph->spectrum), look);
    for (int i = 0; i < 241; ++i) {
        for (float y = 23.0f; y < 58.0f; y += 0.5f) {
            ASSERT_EQ(Brightness(At(column(i), -graph->hh - M(y))), dark) << i << ' ' << y;
        }
    }
    SpectrumHistory::Row row;
    row.fill(-120.0f);
    std::fill_n(row.begin() + 180, 20, 0.0f);
    graph->spectrum.Add(122, row.data());
    row.fill(-120.0f);
    std::fill_n(row.begin() + 100, 20, 0.0f);
    std::fill_n(row.begin() + 50, 20, -30.0f);
    row[10] = NAN;
    graph->spectrum.Add(1, row.data());  // seven rows newer
    Clear();
    DrawSpectrum(MakeSpectrumImage(graph->spectrum), look);
    EXPECT_GT(Brightness(At(column(110), newest)), 500);
    EXPECT_EQ(Brightness(At(column(110), newest + M(3.0f))), dark);
    EXPECT_EQ(Brightness(At(column(140), newest)), dark);
    const int faint = Brightness(At(column(60), newest));
    EXPECT_GT(faint, dark + 60);  // a quarter opaque
    EXPECT_LT(faint, dark + 160);
    EXPECT_EQ(Brightness(At(column(190), newest)), dark);
    EXPECT_GT(Brightness(At(column(190), newest + M(7 * 0.92f))), 500);

    row.fill(0.0f);
    for (int i = 0; i < kPlotRows; ++i) graph->spectrum.Add(i, row.data());
    Clear();
    DrawSpectrum(MakeSpectrumImage(graph->spectrum), look);  // its oldest rows fade into the panel
    EXPECT_LT(Brightness(At(0.0f, -graph->hh - M(13.25f))), 250);
    EXPECT_GT(Brightness(At(0.0f, -graph->hh - M(22.5f))), 550);
}

TEST_F(GraphPicture, KeysStandUnderTheirFrequencies) {
    const GraphLook look = graph->Look();
    DrawKeyboard(look);
    const auto isBlackKey = [](Pixel p) { return p.red < 36; };
    const float y = -graph->hh - M(67.25f);  // the lower border of the black keys
    constexpr bool kBlack[] = {false, true,  false, true,  false, false,
                               true,  false, true,  false, true,  false};  // from C
    for (int note = 16; note <= 134; ++note) {
        const float freq_hz = 440.0f * std::exp2(static_cast<float>(note - 69) / 12.0f);
        EXPECT_EQ(isBlackKey(At(X(freq_hz), y)), kBlack[note % 12]) << freq_hz << " Hz";
    }
    // White keys fill the space between the black keys' tops and their own lower ends.
    EXPECT_GT(At(X(440.0f), -graph->hh - M(72.0f)).red, 90);
    EXPECT_LT(At(X(440.0f), -graph->hh - M(79.0f)).red, 50);
}

TEST_F(GraphPicture, FrameLabelsAndRingsStandAroundWhatTheyBelongTo) {
    const float top = graph->hh + M(32.0f);
    const float bottom = -graph->hh - M(112.0f);
    graph->selectedHandle = 3;
    ClearToWhite();
    Pass(&GLView::DrawBack);
    for (const float side : {-1.0f, 1.0f}) {
        EXPECT_LT(At(side * (graph->hw + M(31.0f)), 0.0f).red, 60);
        EXPECT_EQ(At(side * (graph->hw + M(33.0f)), 0.0f).red, 255);
    }
    EXPECT_LT(At(0.0f, top - M(1.0f)).red, 60);
    EXPECT_EQ(At(0.0f, top + M(1.0f)).red, 255);
    EXPECT_LT(At(0.0f, bottom + M(1.0f)).red, 60);
    EXPECT_EQ(At(0.0f, bottom - M(1.0f)).red, 255);
    // The bottom of the white key A4, which is between black keys.
    EXPECT_GT(At(X(440.0f), -graph->hh - M(77.5f)).red, 120);  // its border
    EXPECT_LT(At(X(440.0f), -graph->hh - M(78.5f)).red, 60);

    Clear();
    Pass(&GLView::Draw);
    const float line_y = -9.0f / 18.0f * graph->hh - M(1.0f);
    EXPECT_LT(2 * Brightness(At(M(2.0f) - graph->hw, line_y)), Brightness(At(0.0f, line_y)));
    const float label_y = 6.0f / 18.0f * graph->hh;
    const auto textWidth = [&](float from_m, float to_m) {
        int lit = 0;
        for (float x = from_m; x < to_m; x += 0.5f) {
            int brightest = 0;
            for (float y = -5.0f; y < 5.0f; y += 0.5f) {
                brightest = std::max(brightest, Brightness(At(M(x), label_y + M(y))));
            }
            lit += brightest > 250 ? 1 : 0;
        }
        return lit;
    };
    const float edge_m = graph->hw / M(1.0f);
    EXPECT_GT(textWidth(edge_m + 6.0f, edge_m + 16.0f), 5);
    EXPECT_EQ(textWidth(edge_m + 16.0f, edge_m + 30.0f), 0);
    EXPECT_GT(textWidth(-edge_m - 16.0f, -edge_m - 6.0f), 5);
    EXPECT_EQ(textWidth(-edge_m - 30.0f, -edge_m - 16.0f), 0);

    Clear();
    Pass(&GLView::DrawFront);
    const GLPoint place = handles[3]->Place();
    const auto ring = [&](float fromRim) {
        return Brightness(At(place.x, place.y + handles[3]->hh - M(fromRim)));
    };
    const int ground = Brightness(At(0.0f, graph->hh / 2.0f));
    EXPECT_GT(ring(-1.0f), ground + 40);  // outside of the rim, which is as light
    EXPECT_EQ(ring(0.5f), ground);
    EXPECT_EQ(ring(2.5f), ground);
    EXPECT_GT(ring(4.5f), ground + 40);
    EXPECT_GT(Brightness(At(place.x + M(0.9f), place.y)), 400);  // the number, over the inner ring
}

TEST_F(GraphPicture, HandlesAndMarkersAreDrawnForWhatIsOn) {
    Set(3, {1.0f, 9.0f, 9.0f, 700.0f, 1.0f});
    Set(8, {1.0f, 2.0f, 0.0f, 40.0f, 1.0f});
    page.Report(Port(5, kEnable), 0.0f);
    graph->selectedHandle = 3;
    Pass(&GLView::Draw);
    Pass(&GLView::DrawFront);
    const auto isSage = [](Pixel p) { return p.green > p.red + 30 && p.green > 150; };
    const auto isAmber = [](Pixel p) { return p.red > p.green + 40 && p.green > p.blue + 40; };
    const auto rim = [&](int handle) {
        auto& view = *handles[static_cast<size_t>(handle)];
        return At(view.Place().x + view.hw - M(0.5f), view.Place().y);
    };
    const auto marker = [&](int handle) {
        const float x = handles[static_cast<size_t>(handle)]->Place().x;
        return At(x, -graph->hh - M(37.0f));  // the marker's upper side
    };
    EXPECT_TRUE(isSage(rim(3)));
    EXPECT_TRUE(isSage(marker(3)));
    EXPECT_TRUE(isSage(marker(4)));
    EXPECT_TRUE(isAmber(rim(8)));
    EXPECT_TRUE(isAmber(marker(8)));
    EXPECT_FALSE(isSage(marker(5)));
    EXPECT_FALSE(isAmber(marker(9)));
    // A line connects only the selected handle with its marker.
    EXPECT_TRUE(At(handles[3]->Place().x, -graph->hh - M(30.0f)).green > 90);
    EXPECT_FALSE(At(handles[4]->Place().x, -graph->hh - M(30.0f)).green > 90);
    // Only the selected handle has a note and, below it, a frequency, in the foreground colour.
    const auto hasText = [&](int handle, float m) {
        int brightest = 0;
        for (float x = -8.0f; x < 8.0f; x += 0.25f) {
            const Pixel p =
                At(handles[static_cast<size_t>(handle)]->Place().x + M(x), -graph->hh - M(m));
            brightest = std::max(brightest, Brightness(p));
        }
        return brightest > 450;
    };
    for (const float line : {88.0f, 99.9f}) {
        EXPECT_TRUE(hasText(3, line)) << line;
        EXPECT_FALSE(hasText(4, line)) << line;
    }
    for (const float gap : {82.0f, 94.0f, 106.0f}) EXPECT_FALSE(hasText(3, gap)) << gap;
}

TEST_F(GraphPicture, LeavesTheStateOfGLAsItWas) {
    const std::vector<float> levels_db(kPlotBins, -10.0f);
    graph->AddSpectrumRow(0, levels_db.data());
    graph->selectedHandle = 0;
    for (auto pass : {&GLView::DrawBack, &GLView::Draw, &GLView::DrawFront}) {
        Pass(pass);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
        EXPECT_FALSE(glIsEnabled(GL_CLIP_PLANE0));
        EXPECT_FALSE(glIsEnabled(GL_CLIP_PLANE1));
        float width = 0.0f;
        glGetFloatv(GL_LINE_WIDTH, &width);
        EXPECT_EQ(width, 1.0f);
        GLint depth = 0;
        glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depth);
        EXPECT_EQ(depth, 1);
    }
}

}  // namespace
}  // namespace brindle
