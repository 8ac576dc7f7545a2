// SPDX-License-Identifier: ISC
// The graph's picture, read back from software GL at twice the design size.
#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <vector>

#include "gl/GLResources.h"
#include "gl/drawing.h"
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
    void Clear(float grey = 0.16f) {
        gl.Clear(grey);
        glScalef(kPixelsPerUnit, kPixelsPerUnit, 1.0f);
    }
    void Pass(void (GLView::*pass)()) {
        const MatrixScope matrix;
        (graph->*pass)();
    }
    Pixel At(float x, float y) const { return gl.At(x * kPixelsPerUnit, y * kPixelsPerUnit); }
    int BrightnessAt(float x, float y) const { return Brightness(At(x, y)); }
    float X(float freq_hz) const {
        return graph->hw * (2.0f * std::log(freq_hz / 20.0f) / std::log(1000.0f) - 1.0f);
    }
    float Y(float db) const { return db / 18.0f * graph->hh; }
    float M(float count) const { return count * page.pixelSize; }
    /// A height below the graph, in design pixels.
    float Below(float count) const { return -graph->hh - M(count); }
    /// The brightest pixel of a rectangle around a point, in design pixels.
    int Brightest(float x, float y, float halfWidth, float halfHeight) const {
        int brightest = 0;
        for (float dx = -halfWidth; dx <= halfWidth; dx += 0.5f) {
            for (float dy = -halfHeight; dy <= halfHeight; dy += 0.5f) {
                brightest = std::max(brightest, BrightnessAt(x + M(dx), y + M(dy)));
            }
        }
        return brightest;
    }
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
    GLView_ParametricEQ fresh;
    fresh.SetSize(2.0f * graph->hw, 2.0f * graph->hh);
    fresh.parent = &page;
    fresh.Draw();
    EXPECT_TRUE(std::isnan(LineHeight(X(1000.0f))));  // nothing is reported yet

    Clear();
    for (int band = 0; band < kBandCount; ++band) page.Report(Port(band, kEnable), 0.0f);
    Set(0, {1.0f, 5.0f, 6.0f, 400.0f, 1.0f});    // low shelf, flat below 100 Hz
    Set(1, {1.0f, 9.0f, -9.0f, 8000.0f, 2.0f});  // bell
    graph->DeleteChildren();                     // their discs would hide the line
    Pass(&GLView::Draw);
    EXPECT_NEAR(LineHeight(X(25.0f)), Y(6.0f), M(1.0f));
    EXPECT_NEAR(LineHeight(X(8000.0f)), Y(-9.0f), M(1.0f));
    EXPECT_NEAR(LineHeight(X(2200.0f)), 0.0f, Y(0.5f));
    // The area extends from the zero line to the curve and is brightest in between.
    EXPECT_GT(At(X(60.0f), Y(4.2f)).green, At(X(60.0f), Y(0.3f)).green + 80);
    EXPECT_LT(BrightnessAt(X(60.0f), Y(-1.0f)), 150);
}

TEST_F(GraphPicture, TheCurveEndsAtItsLastPointsAndOneUnitInsideTheEdges) {
    std::vector<float> heights(100, 0.5f * graph->hh);
    DrawResponse(heights, graph->Look());
    const float dx = 2.0f * graph->hw / 100.0f;
    const float first = dx / 2.0f - graph->hw;
    for (const auto& [end, inwards] : {std::pair(first, 1.0f), {first + 98.0f * dx, -1.0f}}) {
        EXPECT_EQ(At(end + M(0.75f) * inwards, heights[0] + M(1.0f)).red, 204) << end;
        EXPECT_LT(At(end - M(0.75f) * inwards, heights[0] + M(1.0f)).red, 60) << end;
    }
    Clear();
    heights.assign(800, 10.0f * graph->hh);
    std::fill_n(heights.begin(), 400, -10.0f * graph->hh);
    DrawResponse(heights, graph->Look());
    const int empty = BrightnessAt(0.0f, 0.9f);
    for (const float side : {-1.0f, 1.0f}) {
        const float x = side * graph->hw / 2.0f;
        EXPECT_NE(BrightnessAt(x, side * (graph->hh - M(1.75f))), empty);
        EXPECT_EQ(BrightnessAt(x, side * (graph->hh - M(0.25f))), empty);
    }
}

TEST_F(GraphPicture, LinesHangBelowTheirLevelsAndEdgesAreShaded) {
    const int ground = BrightnessAt(0.0f, M(20.0f));
    DrawLevelLines(graph->Look());
    for (float db = -18.0f; db <= 18.0f; db += 3.0f) {
        for (const float m : {0.5f, -0.5f, -1.5f, -2.5f}) {
            EXPECT_EQ(BrightnessAt(0.0f, Y(db) + M(m)) > ground,
                      db != 0.0f && std::abs(m + 1.0f) < 1.0f)
                << db << " dB, " << m;
        }
    }
    Clear(1.0f);
    DrawEdgeShading(graph->Look());
    const float edge = graph->hh + 0.01f;
    for (const float side : {-1.0f, 1.0f}) {
        const auto redAt = [&](float fromSide) {
            return At(side * (graph->hw + fromSide), 0.0f).red;
        };
        EXPECT_NEAR(redAt(-0.01f), 128, 12);
        EXPECT_EQ(redAt(-0.022f), 255);
        EXPECT_EQ(redAt(0.002f), 255);
        EXPECT_NEAR(At(0.0f, side * 0.75f * edge).red, 128, 4);
        EXPECT_EQ(At(0.0f, side * 0.49f * edge).red, 255);
    }
}

TEST_F(GraphPicture, TheStripShowsRowsWhereTheyHaveLevels) {
    const auto at = [&](int bin, float below) {
        const float share = (static_cast<float>(bin) + 0.5f) / 241.0f;
        return BrightnessAt(graph->hw * (2.0f * share - 1.0f), Below(below));
    };
    const auto show = [&] {
        Clear();
        DrawSpectrum(MakeSpectrumImage(graph->spectrum), graph->Look());
    };
    show();
    const int dark = at(120, 56.0f);
    SpectrumHistory::Row row;
    row.fill(-120.0f);
    std::fill_n(row.begin() + 180, 20, 0.0f);
    graph->spectrum.Add(122, row.data());
    row.fill(-120.0f);
    std::fill_n(row.begin() + 100, 20, 10.0f);
    std::fill_n(row.begin() + 50, 20, -30.0f);
    row[10] = NAN;
    graph->spectrum.Add(1, row.data());  // seven rows newer
    show();
    for (const auto& [bin, below] :
         {std::pair(110, 53.0f), {140, 56.0f}, {190, 56.0f}, {10, 56.0f}}) {
        EXPECT_EQ(at(bin, below), dark) << bin;
    }
    for (const auto& [bin, below] :
         {std::pair(110, 56.0f), {100, 56.0f}, {119, 56.0f}, {190, 56.0f - 7 * 0.92f}}) {
        EXPECT_GT(at(bin, below), 500) << bin;
    }
    EXPECT_NEAR(at(60, 56.0f), dark + 110, 50);  // a quarter opaque

    row.fill(0.0f);
    for (int i = 0; i < kPlotRows; ++i) graph->spectrum.Add(i, row.data());
    const auto countTextures = [] {
        int count = 0;
        for (GLuint name = 1; name < 1000; ++name) count += glIsTexture(name);
        return count;
    };
    const int textures = countTextures();
    show();  // its oldest rows fade into the panel
    EXPECT_LT(at(120, 13.25f), 250);
    EXPECT_GT(at(120, 22.5f), 550);
    EXPECT_EQ(countTextures(), textures);
}

TEST_F(GraphPicture, FrameKeysAndLabelsStandWhereTheyBelong) {
    Clear(1.0f);
    Pass(&GLView::DrawBack);
    for (const float side : {-1.0f, 1.0f}) {
        const float middle = M(-40.0f);
        EXPECT_LT(At(side * (graph->hw + M(31.0f)), 0.0f).red, 60);
        EXPECT_EQ(At(side * (graph->hw + M(33.0f)), 0.0f).red, 255);
        EXPECT_LT(At(0.0f, middle + side * (graph->hh + M(71.0f))).red, 60);
        EXPECT_EQ(At(0.0f, middle + side * (graph->hh + M(73.0f))).red, 255);
    }
    constexpr bool kBlack[] = {false, true,  false, true,  false, false,
                               true,  false, true,  false, true,  false};  // from C
    for (int note = 16; note <= 134; ++note) {
        const float freq_hz = 440.0f * std::exp2(static_cast<float>(note - 69) / 12.0f);
        // The lower border of the black keys.
        EXPECT_EQ(At(X(freq_hz), Below(67.25f)).red < 50, kBlack[note % 12]) << freq_hz << " Hz";
    }
    EXPECT_GT(At(X(440.0f), Below(77.5f)).red, 120);  // the border of the white key A4
    EXPECT_LT(At(X(440.0f), Below(78.5f)).red, 60);

    Clear();
    Pass(&GLView::Draw);
    const float edge = graph->hw / M(1.0f);
    for (const float side : {-1.0f, 1.0f}) {
        EXPECT_GT(Brightest(M(side * (edge + 9.0f)), Y(6.0f), 3.0f, 5.0f), 250);
        EXPECT_LT(Brightest(M(side * (edge + 23.0f)), Y(6.0f), 7.0f, 5.0f), 250);
    }
}

TEST_F(GraphPicture, HandlesAndMarkersAreDrawnForWhatIsOn) {
    Set(3, {1.0f, 9.0f, 9.0f, 700.0f, 1.0f});
    Set(8, {1.0f, 2.0f, 0.0f, 40.0f, 1.0f});
    page.Report(Port(5, kEnable), 0.0f);
    graph->selectedHandle = 3;
    Pass(&GLView::Draw);
    Pass(&GLView::DrawFront);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    const auto place = [&](int handle) { return handles[static_cast<size_t>(handle)]->Place(); };
    const auto isSage = [](Pixel p) { return p.green > p.red + 30 && p.green > 150; };
    const auto isAmber = [](Pixel p) { return p.red > p.green + 40 && p.green > p.blue + 40; };
    for (const int handle : {3, 4, 5, 8, 9}) {
        SCOPED_TRACE(handle);
        const Pixel rim = At(place(handle).x + handles[3]->hw - M(0.5f), place(handle).y);
        const Pixel marker = At(place(handle).x, Below(37.0f));  // its upper side
        for (const Pixel p : {rim, marker}) {
            EXPECT_EQ(isSage(p), handle < 5);
            EXPECT_EQ(isAmber(p), handle == 8);
        }
        // Only the selected handle has a line to its marker, a note and, below it, a frequency.
        const bool isSelected = handle == 3;
        EXPECT_EQ(At(place(handle).x, Below(30.0f)).green > 90, isSelected);
        for (const float text : {88.0f, 99.9f}) {
            EXPECT_EQ(Brightest(place(handle).x, Below(text), 8.0f, 0.0f) > 450, isSelected);
        }
    }
    for (const float gap : {82.0f, 94.0f, 106.0f}) {
        EXPECT_LT(Brightest(place(3).x, Below(gap), 8.0f, 0.0f), 450) << gap;
    }

    Clear();
    Pass(&GLView::DrawFront);
    const int ground = BrightnessAt(0.0f, graph->hh / 2.0f);
    // Rings outside of the rim, which is as light, and inside of the disc.
    for (const auto& [inwards, isRing] :
         {std::pair(-1.0f, true), {0.5f, false}, {2.5f, false}, {4.5f, true}}) {
        const int ring = BrightnessAt(place(3).x, place(3).y + handles[3]->hh - M(inwards));
        EXPECT_EQ(ring > ground + 40, isRing) << inwards;
    }
    EXPECT_GT(Brightest(place(3).x, place(3).y, 2.0f, 2.0f), 400);  // the number, over the rings
}

}  // namespace
}  // namespace brindle
