// SPDX-License-Identifier: ISC
/// What the controls show, in pixels: one design point is one pixel.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <utility>

#include "gl/GLResources.h"
#include "gl/GLView_DB60Meter.h"
#include "gl/GLView_MenuSelector.h"
#include "gl/GLView_PresetButton.h"
#include "gl/GLView_Toggle.h"
#include "gl/GLView_TrimSlider.h"
#include "gl/drawing.h"
#include "gl/settings.h"
#include "tests/support/fake_page.h"
#include "tests/support/gl_context.h"

namespace brindle {
namespace {

constexpr int kSize = 200;
constexpr float kGround = 0.2f;  // grey behind the controls

int Brightness(const Pixel& pixel) {
    return pixel.red + pixel.green + pixel.blue;
}

struct ControlPixels : ::testing::Test {
    GLContext context{kSize, kSize};
    std::unique_ptr<GLResources> resources;
    FakePage page;

    ControlPixels() {
        resourceDirectory = BRINDLE_BUNDLE "/";
        resources = std::make_unique<GLResources>(1.0f);
        page.resources = resources.get();
        page.interfaceScale = 1.0f;
        page.viewRight = page.viewTop = kSize / 2.0f;
    }
    ~ControlPixels() override { SetStyle(false, false); }

    void SetStyle(bool boxy, bool flat) {
        page.boxy = themeBoxy = boxy;
        page.flat = themeFlat = flat;
    }
    /// A picture of one view and nothing else.
    Picture Show(GLView& view) {
        view.parent = &page;
        context.Clear(kGround);
        for (auto pass : {&GLView::DrawBack, &GLView::Draw, &GLView::DrawFront}) {
            const MatrixScope matrix;
            (view.*pass)();
        }
        return context.Read();
    }
    int BrightnessAt(float x, float y) const { return Brightness(context.At(x, y)); }
};

/// Height of the meter's bar above its bottom edge at -50, in pixels.
int BarHeight(const GLContext& context) {
    int height = 0;
    for (int y = -50; y < 60; ++y) {
        const Pixel pixel = context.At(3.0f, static_cast<float>(y) + 0.5f);
        height += pixel.red > pixel.blue + 60 ? 1 : 0;
    }
    return height;
}

TEST_F(ControlPixels, MeterFillsInDecibels) {
    GLView_DB60Meter meter;
    meter.SetSize(20.0f, 100.0f);
    // Height of 100 pixels for 60 dB.
    for (const auto& [level, height] : {std::pair(0.001f, 0.0f),
                                        {0.0f, 0.0f},
                                        {0.5f, 89.97f},
                                        {0.0316228f, 50.0f},
                                        {1.0f, 100.0f},
                                        {2.0f, 100.0f},
                                        {-1.0f, 0.0f},
                                        {NAN, 0.0f},
                                        {INFINITY, 100.0f}}) {
        for (const bool flat : {false, true}) {
            SCOPED_TRACE(::testing::Message() << level << (flat ? " flat" : ""));
            SetStyle(false, flat);
            meter.level = level;
            Show(meter);
            EXPECT_NEAR(static_cast<float>(BarHeight(context)), height, 1.0f);
            EXPECT_NEAR(meter.GetFill(), height / 100.0f, 0.001f);
        }
    }
}

TEST_F(ControlPixels, MeterMarksItsScaleAndFlatStyleHasNoGlass) {
    GLView_DB60Meter meter;
    meter.SetSize(20.0f, 100.0f);
    Show(meter);
    const int glass = BrightnessAt(0.0f, 53.5f);     // in the well above the scale
    EXPECT_LT(BrightnessAt(8.0f, -5.0f), 3 * 0x48);  // dark, as no part of it is lit
    for (const float mark_db : {0.0f, -3.0f, -12.0f, -30.0f, -60.0f}) {
        SCOPED_TRACE(mark_db);
        const float y = (mark_db + 60.0f) / 60.0f * 100.0f - 50.0f;
        EXPECT_LT(4 * BrightnessAt(0.0f, y - 0.5f), 3 * BrightnessAt(8.0f, y - 0.5f));
    }
    const int below_mark = BrightnessAt(0.0f, -25.0f);  // -45 dB has no mark
    EXPECT_EQ(below_mark, BrightnessAt(8.0f, -25.0f));
    SetStyle(false, true);
    Show(meter);
    EXPECT_GT(BrightnessAt(0.0f, 53.5f), glass + 20);
    EXPECT_EQ(BrightnessAt(0.0f, -25.0f), below_mark);
}

TEST_F(ControlPixels, AToggleThatIsOnGlowsInItsColourAndShrinksWhenPressed) {
    GLView_Toggle toggle;
    toggle.SetSize(60.0f, 30.0f);
    toggle.SetPort({}, 5);
    for (const bool flat : {false, true}) {
        SetStyle(false, flat);
        page.parameters[5] = 0.0f;
        Show(toggle);
        const Pixel off = context.At(0.0f, -5.0f);
        page.parameters[5] = 1.0f;
        Show(toggle);
        const Pixel on = context.At(0.0f, -5.0f);
        EXPECT_GT(on.green, off.green + 60);
        EXPECT_LT(2 * on.red, on.green);
        EXPECT_GT(Brightness(on), BrightnessAt(24.0f, -5.0f) + 50);  // brightest in the middle
        toggle.enabled = false;
        Show(toggle);
        const Pixel without_effect = context.At(0.0f, -5.0f);
        EXPECT_EQ(without_effect.green, without_effect.red);
        toggle.enabled = true;
    }
    toggle.SetColor(kRed);
    const auto redness = [&] {  // at the outer edge of the lamp's well: 0.9 of 30
        Show(toggle);
        const Pixel pixel = context.At(26.5f, 0.0f);
        return pixel.red - pixel.green;
    };
    SetStyle(false, false);
    page.parameters[5] = 0.0f;
    const int released = redness();
    page.capturedView = &toggle;
    EXPECT_LT(redness(), released - 20);
}

TEST_F(ControlPixels, TextsTellWhatIsOnAndWhatIsChosen) {
    const auto extremes = [&](GLView& view) {  // darkest and brightest pixel around the middle
        Show(view);
        std::pair<int, int> found{765, 0};
        for (float x = -6.0f; x < 7.0f; ++x) {
            for (float y = -8.0f; y < -2.0f; ++y) {
                found.first = std::min(found.first, BrightnessAt(x, y));
                found.second = std::max(found.second, BrightnessAt(x, y));
            }
        }
        return found;
    };
    SetStyle(false, true);  // without gloss and shadows
    GLView_Toggle toggle;
    toggle.SetSize(60.0f, 30.0f);
    toggle.SetPort({}, 5);
    toggle.SetColor(kGrey);
    const auto dark = extremes(toggle);
    toggle.SetText("B");
    EXPECT_LT(extremes(toggle).first, dark.first - 60);
    page.parameters[5] = 1.0f;
    EXPECT_GT(extremes(toggle).second, 600);

    GLView_MenuSelector selector;
    selector.SetSize(60.0f, 30.0f);
    selector.SetLabelSize(12.0f);
    selector.parent = &page;
    selector.AddItem(5, 1.0f, 80.0f, "HH");
    EXPECT_GT(extremes(selector).second, 450);
    page.parameters[5] = 2.0f;  // no entry has this value
    EXPECT_LT(extremes(selector).second, 300);

    GLView_PresetButton preset;
    preset.SetSize(60.0f, 30.0f);
    preset.parent = &page;
    preset.SetPresetValue(5, 2.0f);
    preset.SetPresetValue(7, 0.3f);
    const auto lit_by = [&](uint32_t port, float value) {
        page.parameters[port] = value;
        preset.ParameterChanged(port);
        Show(preset);
        const Pixel rim = context.At(0.0f, 14.5f);
        return rim.green > rim.red + 40;
    };
    EXPECT_FALSE(lit_by(5, 2.0f));
    EXPECT_TRUE(lit_by(7, 0.3000002f));  // as a host that rounds reports it
    EXPECT_TRUE(lit_by(6, 1.0f));        // not part of the preset
    EXPECT_FALSE(lit_by(5, 2.1f));
}

TEST_F(ControlPixels, RoundKnobPointsFromLowerLeftOverTheTopToLowerRight) {
    GLView_Knob knob(false, 0.0f, 1.0f);
    knob.SetSize(160.0f, 160.0f);
    knob.parent = &page;
    constexpr float kDiagonal = 0.70711f;
    const std::pair<float, GLPoint> rows[] = {
        {0.0f, {-kDiagonal, -kDiagonal}}, {0.5f, {0.0f, 1.0f}}, {1.0f, {kDiagonal, -kDiagonal}}};
    for (const auto& [value, unused] : rows) {
        page.parameters[0] = value;
        knob.ParameterChanged(0);
        Show(knob);
        for (const auto& [other, place] : rows) {
            // The mark's centre is 0.56 of the radius (80) away from the knob's centre.
            const int brightness = BrightnessAt(44.8f * place.x, 44.8f * place.y);
            if (other == value) {
                EXPECT_GT(brightness, 600) << value;
            } else {
                EXPECT_LT(brightness, 400) << value << ' ' << other;
            }
        }
    }
}

TEST_F(ControlPixels, AWideKnobFillsItsTrackFromZeroToTheValue) {
    GLView_Knob knob(false, -18.0f, 18.0f);
    knob.SetSize(90.0f, 30.0f);
    knob.SetColor(kGreen);
    knob.parent = &page;
    // Positions on the track at -9 and +9 dB: half way between the middle and the ends.
    const auto lit = [&](float x) {
        const Pixel pixel = context.At(x, -0.62f * 15.0f);
        return pixel.green > pixel.red + 80;
    };
    for (const float value : {-15.0f, 0.0f, 15.0f}) {
        SCOPED_TRACE(value);
        page.parameters[0] = value;
        knob.ParameterChanged(0);
        Show(knob);
        EXPECT_EQ(lit(-20.0f), value < 0.0f);
        EXPECT_EQ(lit(20.0f), value > 0.0f);
    }
}

TEST_F(ControlPixels, EveryStateLooksDifferent) {
    GLView_Knob knob(false, 0.0f, 1.0f);
    GLView_PresetButton button;
    GLView_Toggle toggle;
    const auto difference = [](const Picture& a, const Picture& b) {
        int changed = 0;
        for (size_t i = 0; i < a.pixels.size(); ++i) {
            changed += std::abs(Brightness(a.pixels[i]) - Brightness(b.pixels[i])) > 30;
        }
        return changed;
    };
    for (GLView* view : std::initializer_list<GLView*>{&knob, &button, &toggle}) {
        view->SetSize(60.0f, 22.0f);
        for (const int style : {0, 1, 2}) {
            SCOPED_TRACE(style);
            SetStyle(style == 1, style == 2);
            const Picture plain = Show(*view);
            page.selectedView = view;
            const Picture hovered = Show(*view);
            page.capturedView = view;
            const Picture held = Show(*view);
            page.selectedView = page.capturedView = nullptr;
            view->enabled = false;
            EXPECT_GT(difference(plain, Show(*view)), 60);
            view->enabled = true;
            EXPECT_GT(difference(plain, hovered), 60);
            EXPECT_GT(difference(plain, held), 60);
            EXPECT_GT(difference(hovered, held), 60);
        }
    }
}

TEST_F(ControlPixels, OutlinesHaveFourSidesWhereverTheyStand) {
    page.interfaceScale = 0.75f;  // a window of the design size
    GLView_PresetButton button;
    button.SetSize(60.0f, 20.0f);
    for (const bool boxy : {false, true}) {
        SetStyle(boxy, false);
        for (float part = 0.0f; part < 1.0f; part += 0.0625f) {
            SCOPED_TRACE(::testing::Message() << part << (boxy ? " boxy" : ""));
            button.SetPosition(part, part);
            page.selectedView = nullptr;
            const Picture plain = Show(button);
            page.selectedView = &button;
            const Picture hovered = Show(button);
            for (const auto& [x, y] : {std::pair(70, 100), {130, 100}, {100, 90}, {100, 110}}) {
                int gain = 0;  // largest gain in brightness of a pixel on this side
                for (int i = 0; i < 25; ++i) {
                    const int column = x + i % 5 - 2;
                    const int row = y + i / 5 - 2;
                    gain = std::max(gain, Brightness(hovered.At(column, row)) -
                                              Brightness(plain.At(column, row)));
                }
                EXPECT_GT(gain, 100) << x << ' ' << y;
            }
        }
    }
}

TEST_F(ControlPixels, AnOpenMenuDarkensThePageInThirtyFrames) {
    GLView_MenuSelector selector;
    selector.parent = &page;
    for (const float value : {1.0f, 2.0f, 3.0f}) selector.AddItem(3, value, 80.0f, "entry");
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
        for (int i = 1; i < 30; ++i) frame();
        EXPECT_NEAR(context.At(-90.0f, 90.0f).red, 102, 1);  // 60 %
        frame();
        EXPECT_NEAR(context.At(-90.0f, 90.0f).red, 102, 1);
        page.CloseDialog(true);
    }
    // The current entry has a tick, the hovered entry a bar.
    page.parameters[3] = 1.0f;
    page.contrastColor = kBlue;
    page.selectedView = selector.menu.firstChild->nextSibling;
    frame();
    int ticks[3] = {};
    for (int entry = 0; entry < 3; ++entry) {
        const float y = 18.0f * static_cast<float>(entry);
        for (int dx = -5; dx <= 5; ++dx) {
            const int brightness = BrightnessAt(-31.0f + static_cast<float>(dx), y - 1.0f);
            ticks[entry] = std::max(ticks[entry], brightness);
        }
        EXPECT_EQ(context.At(36.0f, y).blue > 150, entry == 1);
    }
    EXPECT_GT(ticks[0], ticks[2] + 150);
}

}  // namespace
}  // namespace brindle
