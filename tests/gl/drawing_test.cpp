// SPDX-License-Identifier: ISC
/// Draws into a real GL context and reads the pixels. One unit is one pixel; the origin is in the
/// middle of the picture.
#include "gl/drawing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <span>
#include <string>

#include "gl/GLAnimator.h"
#include "gl/GLView.h"
#include "gl/settings.h"
#include "tests/support/gl_context.h"

namespace brindle {
namespace {

struct Drawing : ::testing::Test {
    GLContext context{200, 120};
    std::unique_ptr<GLResources> resources;

    Drawing() {
        resourceDirectory = BRINDLE_BUNDLE "/";
        shadeColor = kBlack;
        lightColor = kWhite;
        themeFlat = false;
        resources = std::make_unique<GLResources>(2.0f);
        context.Clear();
    }
    ~Drawing() override { EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR}); }

    int Red(float x, float y) { return context.At(x, y).red; }
    /// The columns that are not black: x of the first one's left and of the last one's right edge.
    std::pair<int, int> InkColumns() {
        const Picture picture = context.Read();
        std::pair<int, int> ink{1000, -1000};
        for (int x = 0; x < picture.width; ++x) {
            for (int y = 0; y < picture.height; ++y) {
                if (picture.At(x, y).red > 127) {
                    ink.first = std::min(ink.first, x - picture.width / 2);
                    ink.second = std::max(ink.second, x + 1 - picture.width / 2);
                }
            }
        }
        return ink;
    }
    bool IsBlank() { return InkColumns().second == -1000; }
};

std::array<float, 16> CurrentMatrix() {
    std::array<float, 16> matrix{};
    glGetFloatv(GL_MODELVIEW_MATRIX, matrix.data());
    return matrix;
}

int MatrixDepth() {
    int depth = 0;
    glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depth);
    return depth;
}

std::array<float, 4> CurrentColor() {
    std::array<float, 4> color{};
    glGetFloatv(GL_CURRENT_COLOR, color.data());
    return color;
}

TEST_F(Drawing, TextStandsWhereItsAlignmentSays) {
    // With solid glyphs, ink begins one unit left of the first glyph's centre and ends one unit
    // right of the last one's. A digit is 0.946 wide.
    constexpr float kScale = 20.0f;
    for (GLResources::Glyph& glyph : resources->glyphs) glyph.texture = 0;
    struct Case {
        const char* text;
        int alignment;
        float first_middle, last_middle;
    };
    for (const Case& row :
         {Case{"10", kAlignLeft, 0.473f, 1.419f}, Case{"10", kAlignCentre, -0.473f, 0.473f},
          Case{"10", kAlignRight, -1.419f, -0.473f}, Case{"10", 7, 0.473f, 1.419f},
          Case{"i", kAlignRight, -0.227f, -0.227f},
          // The text ends at a character without a glyph, but the following ones count as width.
          Case{"1\n0", kAlignRight, -1.419f, -1.419f}, Case{"1\x83", kAlignLeft, 0.473f, 0.473f},
          Case{"\x82", kAlignLeft, 0.65f, 0.65f}}) {
        SCOPED_TRACE(std::string(row.text) + " aligned " + std::to_string(row.alignment));
        context.Clear();
        glScalef(kScale, kScale, 1.0f);
        DrawText(resources.get(), row.text, row.alignment);
        const auto ink = InkColumns();
        EXPECT_NEAR(ink.first, (row.first_middle - 1.0f) * kScale, 1.0);
        EXPECT_NEAR(ink.second, (row.last_middle + 1.0f) * kScale, 1.0);
    }
    EXPECT_FLOAT_EQ(TextWidth("10"), 1.892f);
}

TEST_F(Drawing, TextWithNothingToDrawDrawsNothing) {
    DrawText(resources.get(), "", kAlignLeft);
    DrawText(resources.get(), nullptr, kAlignRight);
    DrawText(resources.get(), "\n10", kAlignLeft);
    DrawText(nullptr, "10", kAlignLeft);
    DrawGlyph(resources.get(), kGlyphCount);
    EXPECT_TRUE(IsBlank());
    EXPECT_EQ(TextWidth(nullptr), 0.0f);
}

TEST_F(Drawing, LettersStandUprightBetweenBaselineAndTop) {
    constexpr float kScale = 40.0f;
    glScalef(kScale, kScale, 1.0f);
    DrawText(resources.get(), "L", kAlignCentre);
    const float stem = -0.25f * kScale;  // left of the middle, from top to bottom
    EXPECT_GT(Red(stem, 0.5f * kScale), 127);
    EXPECT_GT(Red(stem, -0.5f * kScale), 127);
    EXPECT_GT(Red(0.2f * kScale, -0.52f * kScale), 127);  // its foot
    EXPECT_LT(Red(0.2f * kScale, 0.5f * kScale), 10);
}

TEST_F(Drawing, ShapesFillWhatTheySay) {
    struct Case {
        const char* name;
        std::function<void(const GLResources*)> draw;
        std::vector<GLPoint> inside, outside;
    };
    // The corner's circle of radius 16 is centred on (44, 24): (55, 35) is 15.6 away, (57, 37)
    // 18.4.
    const Case cases[] = {
        {"rect",
         [](const GLResources*) { DrawRect(60, 40); },
         {{59, 39}, {-59, -39}},
         {{61, 0}, {0, -41}}},
        {"disc",
         [](const GLResources* r) { DrawDisc(r, 60, 40); },
         {{0, 0}, {57, 0}, {0, -38}, {40, 25}},
         {{45, 30}, {61, 0}, {0, 40.5f}}},
        {"bar",
         [](const GLResources* r) { DrawBar(r, 60, 20); },
         {{0, 19}, {40, -19}, {59, 0}, {-53, 13}},
         {{57, 17}, {-57, -17}, {0, 21}}},
        {"round",
         [](const GLResources* r) { DrawRoundRect(r, 60, 40, 16); },
         {{0, 0}, {59, 0}, {-59, 0}, {0, 39}, {0, -39}, {54, 34}},
         {{57, 37}, {-57, 37}, {57, -37}, {-57, -37}, {61, 0}}},
        {"frame",
         [](const GLResources* r) { DrawRoundFrame(r, 60, 40, 16); },
         {{58, 0}, {-58, 0}, {0, 38}, {0, -38}, {53.5f, 33.5f}},
         {{0, 0}, {55, 0}, {0, -35}, {51, 31}, {57, 37}}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        context.Clear();
        row.draw(resources.get());
        for (const GLPoint& p : row.inside) EXPECT_GT(Red(p.x, p.y), 200) << p.x << ", " << p.y;
        for (const GLPoint& p : row.outside) EXPECT_LT(Red(p.x, p.y), 55) << p.x << ", " << p.y;
    }
}

TEST_F(Drawing, ABoxLeavesOutItsOpenSideAndShowsNoSeams) {
    // Which side is open: up, down, left, right.
    const GLPoint open[] = {{}, {0, 1}, {0, -1}, {-1, 0}, {1, 0}};
    for (int style = 0; style < 5; ++style) {
        SCOPED_TRACE(style);
        context.Clear();
        DrawFramedBox(resources.get(), style, 60, 40, 16);
        EXPECT_GT(Red(0, 0), 200);
        for (const GLPoint& side : std::span(open).subspan(1)) {
            const bool isOpen = side.x == open[style].x && side.y == open[style].y;
            EXPECT_EQ(Red(59 * side.x, 39 * side.y) > 200, !isOpen) << side.x << ", " << side.y;
            // It ends straight, as wide as the box.
            const GLPoint end = {43 * side.x + 58 * side.y, 23 * side.y + 38 * side.x};
            EXPECT_TRUE(!isOpen || Red(end.x, end.y) > 200);
        }
        for (const GLPoint& corner : {GLPoint{57, 37}, {57, -37}, {-57, 37}, {-57, -37}}) {
            EXPECT_LT(Red(corner.x, corner.y), 55) << corner.x << ", " << corner.y;
        }
    }
    DrawRoundRect(resources.get(), 60, 40, 16);
    for (float x = -59.5f; x < 60.0f; ++x) {
        EXPECT_GT(Red(x, 0.5f), 250) << x;
        EXPECT_GT(Red(x, 24.5f), std::abs(x) < 58.0f ? 250 : 128) << x;
    }
}

TEST_F(Drawing, AWellIsShadedBelowAndLitAbove) {
    context.Clear(0.5f);
    DrawWell(resources.get(), 60, 40, 16, kRed);
    EXPECT_EQ(context.At(0, 0).red, 255);
    EXPECT_EQ(context.At(0, 0).green, 0);
    EXPECT_NEAR(context.At(0, -41).green, 102, 3);  // 0.5 under 0.2 of black
    EXPECT_NEAR(context.At(61, 0).green, 102, 3);
    EXPECT_NEAR(context.At(0, 41).green, 153, 3);  // 0.5 under 0.2 of white
    EXPECT_NEAR(context.At(-61, 0).green, 153, 3);
}

TEST_F(Drawing, ShadowsFadeInwards) {
    constexpr int kGround = 128;
    context.Clear(0.5f);
    DrawShadow(resources.get(), 60, 40, 16, true);  // 4 inside the edges, 16 high
    EXPECT_EQ(Red(0, 38), kGround);
    EXPECT_NEAR(Red(0, 35.5f), kGround * 0.6, 4);
    EXPECT_NEAR(Red(0, 28.5f), kGround * 0.8, 4);
    EXPECT_NEAR(Red(0, 20.5f), kGround, 3);
    EXPECT_NEAR(Red(0, -35.5f), kGround + 127 * 0.3, 4);
    EXPECT_NEAR(Red(0, -20.5f), kGround, 3);
    EXPECT_EQ(Red(-55, 35), kGround);  // the corner is round
    EXPECT_LT(Red(-44, 33), kGround - 20);

    context.Clear(0.5f);
    DrawShadow(resources.get(), 60, 40, 16, false);
    EXPECT_EQ(Red(0, -35.5f), kGround);

    context.Clear(0.5f);
    DrawGloss(resources.get(), 60, 40);  // between 4 and 32 above the middle
    EXPECT_LT(Red(0, 30), Red(0, 20));
    EXPECT_LT(Red(0, 20), Red(0, 10));
    EXPECT_EQ(Red(0, 34), kGround);
    EXPECT_EQ(Red(0, 2), kGround);

    themeFlat = true;
    context.Clear(0.5f);
    DrawShadow(resources.get(), 60, 40, 16, true);
    DrawGloss(resources.get(), 60, 40);
    for (const float y : {35.5f, -35.5f, 25.0f}) EXPECT_EQ(Red(0, y), kGround) << y;
}

TEST_F(Drawing, EveryRoutineLeavesMatrixAndTexturingAsTheyWere) {
    GLResources* r = resources.get();
    const std::function<void()> routines[] = {
        [r] { DrawGlyph(r, 40); },
        [r] { DrawText(r, "a\nb", kAlignCentre); },
        [r] { DrawImage(r, 102); },
        [] { DrawRect(3, 4); },
        [r] { DrawDisc(r, 3, 4); },
        [r] { DrawBar(r, 3, 4); },
        [r] { DrawRoundRect(r, 3, 4, 1); },
        [r] { DrawFramedBox(r, 3, 3, 4, 1); },
        [r] { DrawRoundFrame(r, 3, 4, 1); },
        [r] { DrawWell(r, 3, 4, 1, kRed); },
        [r] { DrawShadow(r, 3, 4, 1, true); },
        [r] { DrawGloss(r, 3, 4); },
    };
    glTranslatef(8.0f, 4.0f, 0.0f);
    const auto matrix = CurrentMatrix();
    for (size_t i = 0; i < std::size(routines); ++i) {
        SCOPED_TRACE(i);
        routines[i]();
        EXPECT_EQ(CurrentMatrix(), matrix);
        EXPECT_EQ(MatrixDepth(), 1);
        EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
    }
    // Only the text's shadow leaves the matrix moved.
    DrawTextShadow(r, "", kAlignLeft);
    EXPECT_FLOAT_EQ(CurrentMatrix()[12], matrix[12] + 0.1f);
    EXPECT_FLOAT_EQ(CurrentMatrix()[13], matrix[13] - 0.1f);
    EXPECT_THAT(CurrentColor(), ::testing::ElementsAre(0.0f, 0.0f, 0.0f, 0.6f));
}

TEST_F(Drawing, ColoursApplyPlainDimmedAndFaded) {
    using ::testing::ElementsAre;
    using ::testing::FloatEq;
    kCream.Apply();
    EXPECT_THAT(CurrentColor(), ElementsAre(0.8f, 0.8f, 0.7f, 1.0f));
    kCream.ApplyDimmed(0.5f);
    EXPECT_THAT(CurrentColor(), ElementsAre(0.4f, 0.4f, 0.35f, 1.0f));
    kCream.ApplyFaded(0.5f);
    EXPECT_THAT(CurrentColor(), ElementsAre(0.8f, 0.8f, 0.7f, 0.5f));
}

TEST_F(Drawing, AnAnimatorMovesTheMatrixUntilItsPathEnds) {
    GLAnimator_Translator slide({{1000.0f, {0.0f, -10.0f}, {0.0f, 0.0f}}});
    EXPECT_NEAR(slide.Apply(), 0.0f, 0.1f);
    EXPECT_NEAR(CurrentMatrix()[13], -10.0f, 1.0f);
    slide.startTime -= 2'000'000;
    glLoadIdentity();
    EXPECT_EQ(slide.Apply(), -1.0f);
    EXPECT_EQ(CurrentMatrix()[13], 0.0f);
}

TEST_F(Drawing, ViewsDrawAroundTheirCentreAtTheirScale) {
    struct Spot : GLView {
        void Draw() override {
            GLView::Draw();
            DrawRect(5.0f, 5.0f);
        }
    };
    GLView group;
    group.SetPosition(40.0f, 0.0f);
    group.SetScale(2.0f);
    auto* spot = new Spot;
    spot->SetPosition(10.0f, -10.0f);  // the page's (60, -20), 20 wide
    group.AddChild(spot);
    group.AddChild(new GLView);
    group.Draw();
    EXPECT_EQ(InkColumns(), std::pair(50, 70));
    EXPECT_EQ(Red(60, -11), 255);
    EXPECT_EQ(Red(60, -9), 0);
    EXPECT_EQ(MatrixDepth(), 1);
}

TEST_F(Drawing, ImagesAreLoadedOnceAndOnlyBelow512) {
    EXPECT_EQ(resources->defaultImage, resources->images[102]);
    EXPECT_EQ(resources->mipTexture150, resources->images[150]);
    EXPECT_NE(resources->images[155], 0u);
    EXPECT_EQ(resources->Image(512), 0u);
    EXPECT_EQ(resources->Image(4'000'000'000u), 0u);
    resources->images[102] = 0;
    const GLuint again = resources->Image(102);
    EXPECT_TRUE(glIsTexture(again));
    EXPECT_EQ(resources->Image(102), again);
    DrawImage(resources.get(), 150);  // over the square from -1 to 1
    EXPECT_EQ(InkColumns(), std::pair(-1, 1));
    resources.reset();
    EXPECT_FALSE(glIsTexture(again));
}

TEST_F(Drawing, ChainsAreLevelsOfOneTextureAndGapsAreLeftOut) {
    const auto width_at = [](GLuint texture, int level) {
        int width = 0;
        glBindTexture(GL_TEXTURE_2D, texture);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_WIDTH, &width);
        return width;
    };
    EXPECT_EQ(width_at(resources->mipTexture150, 5), 8);
    EXPECT_EQ(width_at(resources->mipTexture160, 5), 8);
    EXPECT_EQ(width_at(resources->mipTexture250, 3), 16);
    EXPECT_EQ(width_at(resources->mipTexture318, 3), 16);
    // In a small disc, a pixel on the edge (x from -4 to -3, y from -2 to -1, radius 3.875) has the
    // share that is inside; the large level is opaque at its centre.
    DrawDisc(resources.get(), 4.0f, 4.0f);
    EXPECT_NEAR(Red(-3.5f, -1.5f), 255 * 0.56, 8);

    // Levels 10 to 15 of this chain are pictures, and level 20, which is beyond a texture's levels.
    ::testing::internal::CaptureStdout();
    const GLuint sparse = resources->LoadMipmappedTexture(140, 21);
    const std::string said = ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(width_at(sparse, 0), 0);
    EXPECT_NE(said.find("File not found : " BRINDLE_BUNDLE "/res/images/img_140.bmp\n"),
              std::string::npos);
    EXPECT_NE(said.find("ConvertBitmapToGLTexture, Error 1281 processing file " BRINDLE_BUNDLE
                        "/res/images/img_160.bmp\n"),
              std::string::npos);
    EXPECT_EQ(resources->images[140], sparse);
}

TEST_F(Drawing, MissingPicturesAreReportedAndDrawnPlain) {
    resourceDirectory = "/nowhere/";
    ::testing::internal::CaptureStdout();
    GLResources none(2.0f);
    const std::string said = ::testing::internal::GetCapturedStdout();
    const std::string missing = "File not found : /nowhere/res/images/img_102.bmp\n";
    const size_t at = said.find(missing);
    EXPECT_NE(at, std::string::npos);
    EXPECT_EQ(said.find(missing, at + 1), std::string::npos);
    EXPECT_EQ(said.find("img_103.bmp"), std::string::npos);
    EXPECT_NE(said.find("File not found : /nowhere/res/chars/char_65\n"), std::string::npos);
    DrawText(&none, "A", kAlignLeft);
    DrawRoundRect(&none, 60, 40, 16);
    EXPECT_GT(Red(0, 0), 250);
}

}  // namespace
}  // namespace brindle
