// SPDX-License-Identifier: ISC
/// What is drawn, in pixels: one design point is one pixel, the origin is in the middle of the
/// picture.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "gl/GLAnimator.h"
#include "gl/GLResources.h"
#include "gl/GLView_DB60Meter.h"
#include "gl/GLView_Knob.h"
#include "gl/GLView_MenuSelector.h"
#include "gl/GLView_PresetButton.h"
#include "gl/GLView_Toggle.h"
#include "gl/drawing.h"
#include "gl/settings.h"
#include "tests/support/fake_page.h"
#include "tests/support/gl_context.h"

namespace brindle {
namespace {

constexpr int kSize = 200;

int Brightness(const Pixel& pixel) {
    return pixel.red + pixel.green + pixel.blue;
}

struct Pixels : ::testing::Test {
    GLContext context{kSize, kSize};
    std::unique_ptr<GLResources> resources;
    FakePage page;

    Pixels() {
        resourceDirectory = BRINDLE_BUNDLE "/";
        resources = std::make_unique<GLResources>(1.0f);
        page.resources = resources.get();
        page.interfaceScale = 1.0f;
        page.viewRight = page.viewTop = kSize / 2.0f;
        context.Clear();
    }
    ~Pixels() override {
        SetStyle(false, false);
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    }

    void SetStyle(bool boxy, bool flat) {
        page.boxy = themeBoxy = boxy;
        page.flat = themeFlat = flat;
    }
    /// A picture of one view and nothing else, on grey.
    Picture Show(GLView& view) {
        view.parent = &page;
        context.Clear(0.2f);
        for (auto pass : {&GLView::DrawBack, &GLView::Draw, &GLView::DrawFront}) {
            const MatrixScope matrix;
            (view.*pass)();
        }
        return context.Read();
    }
    /// How many pixels around a point differ in brightness by more than `least`.
    static int CountChanged(const Picture& a, const Picture& b, int least, int middleX, int middleY,
                            int reach) {
        int changed = 0;
        for (int y = middleY - reach; y < middleY + reach; ++y) {
            for (int x = middleX - reach; x < middleX + reach; ++x) {
                const int change = Brightness(a.At(x, y)) - Brightness(b.At(x, y));
                changed += std::abs(change) > least ? 1 : 0;
            }
        }
        return changed;
    }
    int Red(float x, float y) const { return context.At(x, y).red; }
    int BrightnessAt(float x, float y) const { return Brightness(context.At(x, y)); }
    /// Where a green light stands out.
    bool IsLit(float x, float y) const {
        const Pixel pixel = context.At(x, y);
        return pixel.green > pixel.red + 40;
    }
    /// Darkest and brightest pixel from -x to x and from -y to y.
    std::pair<int, int> Extremes(float x, float y) const {
        std::pair<int, int> found{765, 0};
        for (float px = 0.5f - x; px < x; ++px) {
            for (float py = 0.5f - y; py < y; ++py) {
                found.first = std::min(found.first, BrightnessAt(px, py));
                found.second = std::max(found.second, BrightnessAt(px, py));
            }
        }
        return found;
    }
    /// The columns that are not black: x of the first one's left and of the last one's right edge.
    std::pair<int, int> InkColumns() const {
        const Picture picture = context.Read();
        std::pair<int, int> ink{kSize, -kSize};
        for (size_t i = 0; i < picture.pixels.size(); ++i) {
            if (picture.pixels[i].red <= 127) continue;
            const int x = static_cast<int>(i) % kSize - kSize / 2;
            ink = {std::min(ink.first, x), std::max(ink.second, x + 1)};
        }
        return ink;
    }
};

TEST_F(Pixels, TextStandsWhereItsAlignmentSays) {
    // With solid glyphs, ink begins one unit left of the first glyph's centre and ends one unit
    // right of the last one's. A digit is 0.946 wide.
    constexpr float kScale = 20.0f;
    for (GLResources::Glyph& glyph : resources->glyphs) glyph.texture = 0;
    struct Case {
        const char* text;
        int alignment;
        float firstMiddle, lastMiddle;
    };
    for (const Case& row :
         {Case{"10", kAlignLeft, 0.473f, 1.419f}, Case{"10", kAlignCentre, -0.473f, 0.473f},
          Case{"10", kAlignRight, -1.419f, -0.473f},
          // The text ends at a character without a glyph, but the following ones count as width.
          Case{"1\n0", kAlignRight, -1.419f, -1.419f}, Case{"1\x83", kAlignLeft, 0.473f, 0.473f},
          Case{"\x82", kAlignLeft, 0.65f, 0.65f}}) {
        context.Clear();
        glScalef(kScale, kScale, 1.0f);
        DrawText(resources.get(), row.text, row.alignment);
        const auto ink = InkColumns();
        EXPECT_NEAR(ink.first, (row.firstMiddle - 1.0f) * kScale, 1.0) << row.text;
        EXPECT_NEAR(ink.second, (row.lastMiddle + 1.0f) * kScale, 1.0) << row.text;
    }
    context.Clear();
    for (const char* nothing : {"", static_cast<const char*>(nullptr)}) {
        DrawText(resources.get(), nothing, kAlignRight);
        EXPECT_EQ(TextWidth(nothing), 0.0f);
    }
    DrawText(nullptr, "10", kAlignLeft);
    DrawGlyph(resources.get(), kGlyphCount);
    EXPECT_EQ(Extremes(20, 20).second, 0);
}

TEST_F(Pixels, LettersStandUprightInTheirAdvances) {
    constexpr float kScale = 40.0f;
    for (size_t k = 1; k < kGlyphCount; ++k) {
        context.Clear();
        glScalef(kScale, kScale, 1.0f);
        DrawGlyph(resources.get(), k);
        const auto [left, right] = InkColumns();
        EXPECT_LE(std::max(-left, right), kScale / 2 * kGlyphAdvances[k] + 3.5f) << kFirstGlyph + k;
    }
    context.Clear();
    glScalef(kScale, kScale, 1.0f);
    DrawText(resources.get(), "L", kAlignCentre);
    const float stem = -0.25f * kScale;  // left of the middle, from top to bottom
    EXPECT_GT(Red(stem, 0.5f * kScale), 127);
    EXPECT_GT(Red(stem, -0.5f * kScale), 127);
    EXPECT_GT(Red(0.2f * kScale, -0.52f * kScale), 127);  // its foot
    EXPECT_LT(Red(0.2f * kScale, 0.5f * kScale), 10);
}

TEST_F(Pixels, ShapesFillWhatTheySay) {
    struct Case {
        const char* name;
        std::function<void(const GLResources*)> draw;
        std::vector<GLPoint> inside, outside;
    };
    // The corner's circle of radius 16 is centred on (44, 24): (55, 35) is 15.6 away, (57, 37)
    // 18.4.
    const Case cases[] = {
        {"disc",
         [](const GLResources* r) { DrawDisc(r, 60, 40); },
         {{0, 0}, {57, 0}, {0, -38}, {40, 25}},
         {{45, 30}, {61, 0}, {0, 40.5f}}},
        {"bar",
         [](const GLResources* r) { DrawBar(r, 60, 20); },
         {{0, 19}, {40, -19}, {59, 0}, {-53, 13}},
         {{57, 17}, {-57, -17}, {0, 21}}},
        {"frame",
         [](const GLResources* r) { DrawRoundFrame(r, 60, 40, 16); },
         {{58, 0}, {-58, 0}, {0, 38}, {0, -38}, {53.5f, 33.5f}},
         {{0, 0}, {55, 0}, {0, -35}, {51, 31}, {57, 37}}},
        {"rim",
         [](const GLResources* r) { DrawRoundRect(r, 60, 40, 16, 8); },
         {{59, 0}, {-53, 0}, {0, 33}, {0, -33}, {54, 34}, {-45, 25}},
         {{0, 0}, {51, 0}, {0, -31}, {42, 22}, {57, 37}}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        context.Clear();
        row.draw(resources.get());
        for (const GLPoint& p : row.inside) EXPECT_GT(Red(p.x, p.y), 200) << p.x << ", " << p.y;
        for (const GLPoint& p : row.outside) EXPECT_LT(Red(p.x, p.y), 55) << p.x << ", " << p.y;
        context.Clear(1.0f);
        row.draw(resources.get());  // white on white: no picture is dark where it is transparent
        EXPECT_EQ(Extremes(70, 50).first, 765);
    }
    // Which side of a box is open: up, down, left, right.
    const GLPoint open[] = {{}, {0, 1}, {0, -1}, {-1, 0}, {1, 0}};
    for (int style = 0; style < 5; ++style) {
        SCOPED_TRACE(style);
        context.Clear();
        DrawFramedBox(resources.get(), style, 60, 40, 16);
        const auto isOpen = [&](float x, float y) {
            const GLPoint side = open[style];
            return (side.x != 0 && side.x == x) || (side.y != 0 && side.y == y);
        };
        for (const float sign : {-1.0f, 1.0f}) {
            EXPECT_EQ(Red(59 * sign, 0) > 200, !isOpen(sign, 0));
            EXPECT_EQ(Red(0, 39 * sign) > 200, !isOpen(0, sign));
            for (const float other : {-1.0f, 1.0f}) {
                EXPECT_EQ(Red(54 * sign, 34 * other) > 200, !isOpen(sign, other));
                EXPECT_LT(Red(57 * sign, 37 * other), 55);
            }
        }
    }
    DrawRoundRect(resources.get(), 60, 40, 16);
    for (float x = -57.5f; x < 58.0f; ++x) {
        EXPECT_GT(Red(x, 0.5f), 250) << x;  // without seams
        EXPECT_GT(Red(x, 24.5f), 250) << x;
    }
}

TEST_F(Pixels, EdgesAreShadedAndLit) {
    constexpr int kGround = 128;
    lightColor = kWhite;
    context.Clear(0.5f);
    DrawWell(resources.get(), 60, 40, 16, kRed);
    EXPECT_EQ(context.At(0, 0).green, 0);
    EXPECT_NEAR(context.At(0, -40.5f).green, 102, 3);  // 0.5 under 0.2 of black
    EXPECT_NEAR(context.At(0, 40.5f).green, 153, 3);   // 0.5 under 0.2 of white
    for (const bool flat : {false, true}) {
        SetStyle(false, flat);
        const int share = flat ? 0 : 1;
        context.Clear(0.5f);
        DrawShadow(resources.get(), 60, 40, 16, true);  // 2 inside the edges, 16 high
        EXPECT_EQ(Red(0, 39), kGround);
        EXPECT_NEAR(Red(0, 37.5f), kGround - share * kGround * 0.4, 4);
        EXPECT_NEAR(Red(0, 30.5f), kGround - share * kGround * 0.2, 4);
        EXPECT_NEAR(Red(0, 22.5f), kGround, 3);
        EXPECT_NEAR(Red(0, -37.5f), kGround + share * 127 * 0.3, 4);
        EXPECT_EQ(Red(-57, 37), kGround);  // the corner is round
        context.Clear(0.5f);
        DrawGloss(resources.get(), 60, 40);  // between 4 and 32 above the middle
        EXPECT_EQ(Red(0, 30) < Red(0, 10), !flat);
        EXPECT_EQ(Red(0, 2), kGround);
    }
    lightColor = GLColor(0.25f, 0.25f, 0.25f);
}

TEST_F(Pixels, AnimatorsEaseAlongEachSegmentInTurn) {
    GLAnimator_Translator slide({{0.25f, {0.0f, -10.0f}, {0.0f, 0.0f}},
                                 {0.0f, {9.0f, 9.0f}, {9.0f, 9.0f}},
                                 {1000.0f, {2.0f, 0.0f}, {4.0f, 0.0f}}});
    EXPECT_NEAR(slide.At(0.125f).progress, 0.7071f, 1e-4f);
    EXPECT_NEAR(slide.At(0.125f).position.y, -2.929f, 1e-3f);
    EXPECT_NEAR(slide.At(0.25f + 1000.0f / 3.0f).position.x, 3.0f, 1e-4f);
    slide.startTime -= 250;
    EXPECT_NEAR(slide.Apply(), 0.0f, 0.1f);
    glScalef(1.0f, 50.0f, 1.0f);
    DrawRect(1.0f, 1.0f);
    EXPECT_EQ(InkColumns(), std::pair(1, 3));
    slide.startTime -= 2'000'000;
    EXPECT_EQ(slide.Apply(), -1.0f);
    while (std::clock() < CLOCKS_PER_SEC / 5) {  // makes the rounding to milliseconds negligible
    }
    const auto used_ms = 1000.0f * static_cast<float>(std::clock()) / CLOCKS_PER_SEC;
    EXPECT_NEAR(Pulse(used_ms * 4.0f), 1.0f, 0.02f);  // a quarter of the period is over
}

TEST_F(Pixels, ViewsDrawAroundTheirCentreAtTheirScale) {
    struct Spot : GLView {
        void Draw() override {
            GLView::Draw();
            DrawRect(5.0f, 5.0f);
        }
    };
    GLView group;
    group.SetPosition(40.0f, 0.0f);
    group.SetScale(2.0f);
    for (const float x : {10.0f, 20.0f}) group.Add<Spot>().SetPosition(x, -10.0f);
    group.parent = &page;
    group.Draw();
    EXPECT_EQ(InkColumns(), std::pair(50, 90));
    EXPECT_EQ(Red(60, -11), 255);
    EXPECT_EQ(Red(60, -9), 0);
}

TEST_F(Pixels, PicturesAreLoadedOnceAndGapsAreLeftOut) {
    const auto widthAt = [](GLuint texture, int level) {
        int width = 0;
        glBindTexture(GL_TEXTURE_2D, texture);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_WIDTH, &width);
        return width;
    };
    EXPECT_EQ(widthAt(resources->mipTexture150, 5), 8);
    EXPECT_EQ(widthAt(resources->mipTexture318, 3), 16);
    // In a small disc, a pixel on the edge (x from -4 to -3, y from -2 to -1, radius 3.875) has the
    // share that is inside; the large level is opaque at its centre.
    DrawDisc(resources.get(), 4.0f, 4.0f);
    EXPECT_NEAR(Red(-3.5f, -1.5f), 255 * 0.56, 8);

    EXPECT_EQ(resources->Image(512), 0u);
    EXPECT_EQ(resources->Image(4'000'000'000u), 0u);
    resources->images[102] = 0;
    const GLuint again = resources->Image(102);
    EXPECT_TRUE(glIsTexture(again));
    EXPECT_EQ(resources->Image(102), again);

    // Levels 10 to 15 of this chain are pictures, and level 20, which is beyond a texture's levels.
    ::testing::internal::CaptureStdout();
    resources->LoadMipmappedTexture(140, 21);
    // A bundle with one letter, of another size. An earlier error is not its own.
    resourceDirectory = ::testing::TempDir() + "brindle_letters/";
    const std::string letters = resourceDirectory + "res/chars/char_";
    std::filesystem::remove_all(resourceDirectory);
    std::filesystem::create_directories(resourceDirectory + "res/chars");
    std::filesystem::copy(BRINDLE_BUNDLE "/res/images/img_161.bmp", letters + "65");
    glEnable(GL_NONE);
    const GLResources other(1.0f);
    EXPECT_THAT(::testing::internal::GetCapturedStdout(),
                ::testing::AllOf(::testing::HasSubstr(BRINDLE_BUNDLE "/res/images/img_140.bmp\n"),
                                 ::testing::HasSubstr("Error 1281 processing file " BRINDLE_BUNDLE
                                                      "/res/images/img_160.bmp\n"),
                                 ::testing::HasSubstr("File not found : " + resourceDirectory +
                                                      "res/images/img_102.bmp\n"),
                                 ::testing::HasSubstr(letters + "66\n"),
                                 ::testing::Not(::testing::HasSubstr("Error 1280"))));
    std::filesystem::remove_all(resourceDirectory);
    EXPECT_EQ(widthAt(other.glyphs['A' - kFirstGlyph].texture, 2), 32);
    DrawText(&other, "B", kAlignLeft);
    EXPECT_GT(Red(0, 0), 250);
    resources.reset();
    EXPECT_FALSE(glIsTexture(again));
}

TEST_F(Pixels, MeterFillsInDecibels) {
    GLView_DB60Meter meter;
    meter.SetSize(20.0f, 100.0f);
    const auto isBar = [&](float y) {
        const Pixel pixel = context.At(3.0f, y);
        return pixel.red > pixel.blue + 60;
    };
    // 100 pixels for 60 dB, from -50 on.
    for (const auto& [level, top] : {std::pair(0.0f, -50.0f),
                                     {0.5f, 39.97f},
                                     {0.0316228f, 0.0f},
                                     {2.0f, 50.0f},
                                     {-1.0f, -50.0f},
                                     {NAN, -50.0f},
                                     {INFINITY, 50.0f}}) {
        meter.level = level;
        EXPECT_NEAR(meter.GetFill(), (top + 50.0f) / 100.0f, 0.001f);
        Show(meter);
        for (float y = -53.5f; y < 55.0f; ++y) {
            if (std::abs(y - top) < 2.0f) continue;
            EXPECT_EQ(isBar(y), y > -50.0f && y < top) << level << ", " << y;
        }
    }
    meter.level = 0.0f;
    Show(meter);
    for (const float mark_db : {0.0f, -3.0f, -12.0f, -30.0f, -60.0f}) {
        const float y = (mark_db + 60.0f) / 60.0f * 100.0f - 50.0f;
        EXPECT_LT(4 * BrightnessAt(0.0f, y - 0.5f), 3 * BrightnessAt(8.0f, y - 0.5f)) << mark_db;
    }
    EXPECT_EQ(BrightnessAt(0.0f, -25.0f), BrightnessAt(8.0f, -25.0f));  // -45 dB has no mark
}

TEST_F(Pixels, LampsTellWhatIsOn) {
    GLView_Toggle toggle;
    toggle.SetSize(60.0f, 30.0f);
    toggle.SetPort({}, 5);
    const auto show = [&](float value) {
        page.parameters[5] = value;
        Show(toggle);
        return context.At(0.0f, -5.0f);
    };
    for (const bool flat : {false, true}) {
        SetStyle(false, flat);
        const Pixel off = show(0.0f);
        const Pixel on = show(1.0f);
        EXPECT_GT(on.green, off.green + 60);
        EXPECT_LT(2 * on.red, on.green);
        EXPECT_GT(Brightness(on), BrightnessAt(24.0f, -5.0f) + 50);  // brightest in the middle
        toggle.enabled = false;
        const Pixel withoutEffect = show(1.0f);
        EXPECT_EQ(withoutEffect.green, withoutEffect.red);
        toggle.enabled = true;
    }
    toggle.SetColor(kRed);
    SetStyle(false, false);
    const auto redness = [&] {  // at the outer edge of the lamp: 0.9 of 30
        show(0.0f);
        const Pixel pixel = context.At(26.5f, 0.0f);
        return pixel.red - pixel.green;
    };
    const int released = redness();
    page.capturedView = &toggle;
    EXPECT_LT(redness(), released - 20);  // a pressed lamp is smaller
    page.capturedView = nullptr;
    SetStyle(false, true);
    toggle.SetColor(kGrey);
    show(0.0f);
    const int bare = Extremes(7.0f, 8.0f).first;
    toggle.SetText("B");
    show(0.0f);
    EXPECT_LT(Extremes(7.0f, 8.0f).first, bare - 60);
    show(1.0f);
    EXPECT_GT(Extremes(7.0f, 8.0f).second, 600);

    GLView_PresetButton preset;
    preset.SetSize(60.0f, 30.0f);
    preset.parent = &page;
    preset.SetPresetValue(5, 2.0f);
    preset.SetPresetValue(7, 0.3f);
    for (const auto& [port, value, isLit] :
         {std::tuple(5u, 2.0f, false),
          {7, 0.3000002f, true},  // as a host that rounds reports it
          {6, 1.0f, true},        // not part of the preset
          {5, 2.1f, false}}) {
        page.parameters[port] = value;
        preset.ParameterChanged(port);
        Show(preset);
        EXPECT_EQ(IsLit(0.0f, 14.5f), isLit) << port << ' ' << value;
    }
}

TEST_F(Pixels, KnobsPointToTheirValues) {
    GLView_Knob round(false, 0.0f, 1.0f);
    round.SetSize(160.0f, 160.0f);
    GLView_Knob wide(false, -18.0f, 18.0f);
    wide.SetSize(90.0f, 30.0f);
    wide.SetColor(kGreen);
    const auto show = [&](GLView_Knob& knob, float value) {
        knob.parent = &page;
        page.parameters[0] = value;
        knob.ParameterChanged(0);
        Show(knob);
    };
    constexpr float kDiagonal = 0.70711f * 44.8f;  // the mark is 0.56 of the radius from the centre
    const std::pair<float, GLPoint> rows[] = {
        {0.0f, {-kDiagonal, -kDiagonal}}, {0.5f, {0.0f, 44.8f}}, {1.0f, {kDiagonal, -kDiagonal}}};
    for (const auto& [value, unused] : rows) {
        show(round, value);
        for (const auto& [other, place] : rows) {
            EXPECT_EQ(BrightnessAt(place.x, place.y) > 500, other == value) << value << other;
        }
    }
    for (const float value : {-15.0f, 0.0f, 15.0f}) {
        show(wide, value);
        // On the track, half way between its middle and its ends.
        EXPECT_EQ(IsLit(-20.0f, -9.3f), value < 0.0f) << value;
        EXPECT_EQ(IsLit(20.0f, -9.3f), value > 0.0f) << value;
    }
}

TEST_F(Pixels, OutlinesHaveFourSidesWhereverTheyStand) {
    page.interfaceScale = 0.75f;  // a window of the design size
    GLView_PresetButton button;
    button.SetSize(60.0f, 20.0f);
    const auto show = [&](GLView* selected, GLView* captured) {
        page.selectedView = selected;
        page.capturedView = captured;
        return Show(button);
    };
    for (const int style : {0, 1, 2}) {
        SetStyle(style == 1, style == 2);
        for (float part = 0.0f; part < 1.0f; part += 0.0625f) {
            SCOPED_TRACE(::testing::Message() << "style " << style << " at " << part);
            button.SetPosition(part, part);
            const Picture plain = show(nullptr, nullptr);
            const Picture hovered = show(&button, nullptr);
            const Picture held = show(nullptr, &button);
            for (const auto& [x, y] : {std::pair(70, 100), {130, 100}, {100, 90}, {100, 110}}) {
                EXPECT_GT(CountChanged(plain, hovered, style == 2 ? 60 : 100, x, y, 3), 0)
                    << x << ' ' << y;
            }
            EXPECT_GT(CountChanged(hovered, held, 60, 100, 100, 40), 60);
            EXPECT_LT(Brightness(held.At(100, 100)), Brightness(plain.At(100, 100)) - 20);
        }
    }
}

TEST_F(Pixels, AnOpenMenuDarkensThePageInThirtyFrames) {
    GLView_MenuSelector selector;
    selector.SetSize(60.0f, 30.0f);
    selector.SetLabelSize(12.0f);
    selector.parent = &page;
    for (const float value : {1.0f, 2.0f, 3.0f}) selector.AddItem(3, value, 80.0f, "HHHHH");
    SetStyle(false, true);  // without gloss and shadows
    for (const bool isEntry : {false, true}) {
        page.parameters[3] = isEntry ? 1.0f : 9.0f;
        Show(selector);
        EXPECT_EQ(Extremes(7.0f, 7.0f).second > 400, isEntry);
    }
    const auto frame = [&] {
        context.Clear(1.0f);
        const MatrixScope matrix;
        selector.menu.Draw();
    };
    for (int opening = 0; opening < 2; ++opening) {
        selector.MouseDown({}, {});
        frame();
        EXPECT_NEAR(context.At(-90.0f, 90.0f).red, 250, 1);  // 2 % darker
        EXPECT_NEAR(context.At(95.0f, -95.0f).red, 250, 1);
        for (int i = 1; i < 31; ++i) frame();
        EXPECT_NEAR(context.At(-90.0f, 90.0f).red, 102, 1);  // 60 %
        page.CloseDialog(true);
    }
    // The current entry has a tick, the hovered entry a bar.
    page.contrastColor = kBlue;
    page.selectedView = selector.menu.firstChild->nextSibling;
    frame();
    int ticks[3] = {};
    for (int entry = 0; entry < 3; ++entry) {
        const float y = 18.0f * static_cast<float>(entry);
        for (float x = -36.0f; x <= -26.0f; ++x) {
            ticks[entry] = std::max(ticks[entry], BrightnessAt(x, y - 1.0f));
        }
        EXPECT_EQ(context.At(36.0f, y).blue > 150, entry == 1);
    }
    EXPECT_GT(ticks[0], ticks[2] + 150);
}

}  // namespace
}  // namespace brindle
