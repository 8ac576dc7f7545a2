// SPDX-License-Identifier: ISC
// The panel's window: its sizes, its frames, and what reaches it before and while they are drawn.
#include <dlfcn.h>
#include <gmock/gmock.h>

#include <string>

#include "gl/drawing.h"
#include "tests/editor/panel_fixture.h"

namespace {

/// A GL whose swaps wait for the screen until the only extension that it offers switches that off.
/// Null: the real GL.
const char* offeredExtension = nullptr;
int swapInterval = 1;
int swaps = 0;
int waits = 0;

template <typename Function>
Function* Real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {
void glXSwapBuffers(Display* display, GLXDrawable drawable) {
    ++swaps;
    if (swapInterval > 0) ++waits;
    Real<decltype(glXSwapBuffers)>("glXSwapBuffers")(display, drawable);
}

const char* glXQueryExtensionsString(Display* display, int screen) {
    if (offeredExtension != nullptr) return offeredExtension;
    return Real<decltype(glXQueryExtensionsString)>("glXQueryExtensionsString")(display, screen);
}

__GLXextFuncPtr glXGetProcAddressARB(const GLubyte* name) {
    const std::string wanted = reinterpret_cast<const char*>(name);
    if (wanted == "glXSwapIntervalEXT") {
        return reinterpret_cast<__GLXextFuncPtr>(+[](Display*, GLXDrawable drawable, int interval) {
            if (drawable == glXGetCurrentDrawable()) swapInterval = interval;
        });
    }
    if (wanted == "glXSwapIntervalMESA") {
        return reinterpret_cast<__GLXextFuncPtr>(+[](unsigned interval) {
            swapInterval = static_cast<int>(interval);
            return 0;
        });
    }
    return Real<decltype(glXGetProcAddressARB)>("glXGetProcAddressARB")(name);
}
}
#pragma GCC visibility pop

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::Pair;

TEST_F(Panel, FitsIntoTheMiddleOfEveryWindow) {
    const struct {
        int width, height, left, top, frameWidth;
    } cases[] = {{2000, 1200, 0, 0, 2000},
                 {1300, 600, 150, 0, 1000},
                 {500, 500, 0, 100, 500},
                 {1000, 700, 0, 50, 1000}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.width << " x " << c.height);
        host.window.Resize(c.width, c.height);
        const auto frameWidth = static_cast<float>(c.frameWidth);
        ASSERT_TRUE(WaitFor([&] { return Root().GetPageWidth() == frameWidth; }, [&] { Tick(); }));
        EXPECT_EQ(Root().GetPageHeight(), 0.6f * frameWidth);
        left = c.left;
        top = c.top;
        pixelsPerPoint = frameWidth * 0.6f / 800.0f;
        EXPECT_NE(host.GetPixel(left + 2, top + 2), 0u);
        if (left + top > 0) {
            EXPECT_EQ(host.GetPixel(left / 2, top / 2), 0u);
        }
        // The edges of a strip.
        const Spot strip = InStrip(2, 60.0f);
        for (const float side : {-1.0f, 1.0f}) {
            HelpAt({strip.x + side * 39.0f, 228.0f});
            EXPECT_EQ(Graph().selectedHandle, 2);
            EXPECT_EQ(HelpAt({strip.x + side * 43.0f, 228.0f}), "|");
            EXPECT_EQ(HelpAt({strip.x, side < 0.0f ? 36.0f : 232.0f}), "|");
        }
        // A handle follows the pointer.
        const uint32_t band = band_port(4);
        Report(band + kFrequency, 1000.0f);
        Report(band + kGain, 0.0f);
        Tick();
        const Spot from = HandleAt(4);
        EXPECT_THAT(Click(from, 6), testing::IsEmpty()) << "the wheel turned sideways";
        EXPECT_THAT(Click(KeyOf(4), 8), testing::IsEmpty()) << "a side button";
        Drag(from, 30, 20);
        EXPECT_THAT(host.touches,
                    ElementsAre(Pair(band + kFrequency, true), Pair(band + kGain, true),
                                Pair(band + kGain, false), Pair(band + kFrequency, false)));
        EXPECT_NEAR(PixelX(HandleAt(4)), PixelX(from) + 30, 1);
        EXPECT_NEAR(PixelY(HandleAt(4)), PixelY(from) - 20, 1);
    }
}

TEST_F(Panel, ForgetsWhatWasPointedAtWhenThePointerLeaves) {
    const auto strips = [&] {  // the area without pulsing parts
        auto pixels = Picture();
        pixels.erase(pixels.begin(), pixels.begin() + 420 * 1000);
        return pixels;
    };
    HelpAt({667.0f, 7.0f});  // no control is there
    MoveTo(kOutside);
    const auto untouched = Picture();
    const Spot knob = InStrip(0, 40.0f);
    for (const Spot& spot : {HandleAt(4), knob, KeyOf(0), PresetAt(0)}) {
        SCOPED_TRACE(spot.x);
        MoveTo(spot);
        EXPECT_FALSE(Picture() == untouched);
        MoveTo({kOutside.x, spot.y});
        EXPECT_TRUE(Picture() == untouched);
    }
    // A held knob, which only moves vertically, stays highlighted until it is released outside.
    MoveTo(knob);
    const auto pointed = strips();
    host.window.Press();
    const auto held = strips();
    MoveTo({kOutside.x, knob.y});
    EXPECT_TRUE(strips() == held);
    host.window.Release();
    EXPECT_TRUE(Picture() == untouched);
    // A host that grabs the pointer, as for a menu, changes no highlight. The grab may end over a
    // control that the pointer was not over before.
    MoveTo(knob);
    host.window.Grab();
    EXPECT_TRUE(strips() == pointed);
    host.window.Ungrab();
    MoveTo(kOutside);
    EXPECT_TRUE(Picture() == untouched);
    host.window.Grab();
    MoveTo(knob);
    host.window.Ungrab();
    MoveTo({knob.x, knob.y - 1.0f});
    EXPECT_TRUE(strips() == pointed);
}

TEST_F(Panel, LetsGoOfWhatIsHeldWhereItIsHidden) {
    const auto hold = [&] {
        PressAt(kTrim);
        Tick();
        host.touches.clear();
    };
    const auto expect_let_go = [&] {
        Tick();
        EXPECT_THAT(host.touches, ElementsAre(Pair(kTrimPort, false)));
        EXPECT_THAT(During([&] { MoveTo({kTrim.x + 27.0f, kTrim.y}); }), testing::IsEmpty());
        MoveTo(kOutside);
    };
    for (const uintptr_t hidden : {host.child, host.window.GetId()}) {
        hold();
        host.window.Hide(hidden);
        Tick();
        host.window.Release();
        host.window.Show(hidden);
        expect_let_go();
        const auto before = Picture();
        host.window.Hide(hidden);
        host.IdleTimes(2);
        host.window.Show(hidden);
        Tick();  // the picture is there with the first idle call
        EXPECT_TRUE(host.window.GetPixels(host.child, 1000, 600) == before);
    }
    hold();
    host.window.Hide(host.child);  // between two idle calls
    host.window.Release();
    host.window.Show(host.child);
    MoveTo({kTrim.x + 13.0f, kTrim.y});
    expect_let_go();
    hold();
    host.window.Destroy();
    expect_let_go();
    host.window.Release();
}

/// A view that draws what a test wants, and counts its frames.
struct Painter : GLView {
    std::function<void()> paintBack = [] {};
    std::function<void()> paint = [] {};
    int count = 0;

    bool HitTest(GLPoint) override { return false; }
    void DrawBack() override { paintBack(); }
    void DrawFront() override {
        ++count;
        paint();
    }
};

TEST_F(Panel, DrawsFramesThatAreDueAndRepeatsThoseThatFail) {
    auto& painter = Root().Add<Painter>();
    host.IdleTimes(3);
    painter.count = 0;
    host.IdleTimes(20);
    EXPECT_EQ(painter.count, 0);
    host.window.Hide(host.window.GetId());
    Tick();
    host.window.Show(host.window.GetId());
    Tick();
    EXPECT_EQ(painter.count, 1) << "uncovered";
    Root().SetSelectedView(&painter);  // with the same help texts
    EXPECT_TRUE(Root().IsFrameDue());
    Root().SetSelectedView(nullptr);
    Painter dialog;
    Root().OpenDialog(&dialog);
    Tick();
    EXPECT_EQ(dialog.count, 1);
    Root().CloseDialog(false);
    Tick();
    EXPECT_EQ(dialog.count, 1);
    painter.count = 1;
    painter.paint = [] { throw std::bad_alloc(); };
    Root().redrawNeeded = true;
    Tick();
    EXPECT_EQ(painter.count, 2);
    painter.paint = [] {};
    EXPECT_TRUE(Root().IsFrameDue());
    Tick();
    EXPECT_EQ(painter.count, 3);
    EXPECT_FALSE(Root().IsFrameDue());
    Root().SetWindowSize(1000, 500);
    Tick();
    EXPECT_TRUE(Root().IsFrameDue()) << "some drivers notice sizes late";
    Tick();
    EXPECT_FALSE(Root().IsFrameDue());

    painter.paint = [&] { host.window.Destroy(); };
    Root().redrawNeeded = true;
    Tick();
    painter.paint = [] {};
    Root().redrawNeeded = true;
    host.IdleTimes(3);
    EXPECT_EQ(painter.count, 6) << "drawn without a window";
}

TEST_F(Panel, SwapsDoNotWaitForTheScreen) {
    for (const char* extension : {"GLX_EXT_swap_control", "GLX_MESA_swap_control"}) {
        SCOPED_TRACE(extension);
        host.Close();
        offeredExtension = extension;
        swapInterval = 1;
        ASSERT_TRUE(host.Open());
        swaps = waits = 0;
        EXPECT_TRUE(WaitFor([&] { return swaps > 2; },
                            [&] {
                                Root().redrawNeeded = true;
                                Tick();
                            }));
        EXPECT_EQ(waits, 0);
    }
    offeredExtension = nullptr;
}

TEST_F(Panel, ScalesThinLinesAndTheEdgesOfWhatChanges) {
    std::vector<float> places;  // of lines two pixels wide in a layer, below the strips
    for (int pixel = -900; pixel < 750; pixel += 55) {
        places.push_back(static_cast<float>(pixel) / 600.0f);
    }
    auto& painter = Root().Add<Painter>();
    painter.SetSize(4.0f, 0.05f);
    painter.SetPosition(0.0f, -0.95f);
    painter.paintBack = [&] {
        glDisable(GL_TEXTURE_2D);
        kWhite.Apply();
        for (const float x : places) glRectf(x, -1.0f, x + 2.0f / 600.0f, -0.9f);
        glEnable(GL_TEXTURE_2D);
    };
    Root().redrawNeeded = true;
    host.window.Resize(700, 420);
    ASSERT_TRUE(WaitFor([&] { return Root().GetPageWidth() == 700.0f; }, [&] { Tick(); }));
    host.IdleTimes(2);
    std::vector<int> lights;
    for (const float place : places) {
        const int middle = 350 + static_cast<int>((place + 1.0f / 600.0f) * 210.0f);
        int& light = lights.emplace_back(0);
        for (int x = middle - 3; x <= middle + 3; ++x) {
            light += static_cast<int>(host.GetPixel(x, 409) & 255u);
        }
    }
    const auto [faintest, strongest] = std::ranges::minmax(lights);
    EXPECT_GT(3 * faintest, 2 * strongest) << faintest << " of " << strongest;
    // Nothing stale is left beside a view that grows by a pixel on each side.
    painter.SetPosition(-0.8f, 0.5f);
    painter.paintBack = [&] {  // all of the area that it is redrawn in
        painter.Enter();
        painter.color.Apply();
        DrawRect(painter.hw + 0.005f, painter.hh + 0.005f);
    };
    for (const float width : {775.0f, 1300.0f, 2200.0f}) {
        host.window.Resize(static_cast<int>(width), static_cast<int>(0.6f * width));
        ASSERT_TRUE(WaitFor([&] { return Root().GetPageWidth() == width; }, [&] { Tick(); }));
        for (float height = 0.1f; height < 0.125f; height += 1.0f / 300.0f) {
            painter.SetSize(0.1f + height, height);
            host.IdleTimes(2);
            const auto parts = host.window.GetPixels(host.child, 700, 420);
            Root().redrawNeeded = true;
            host.IdleTimes(2);
            EXPECT_TRUE(AreAlike(parts, host.window.GetPixels(host.child, 700, 420))) << width;
        }
    }
}

TEST_F(Panel, IgnoresInputBeforeItsFirstFrame) {
    GLView_StripEqView fresh({}, nullptr, nullptr);
    fresh.SetWindowSize(1000, 600);
    fresh.PointerMotion(843, 537);
    EXPECT_EQ(fresh.GetSelectedView(), nullptr);
    fresh.MouseButton(1, true, 843, 537);
    EXPECT_EQ(fresh.GetCapturedView(), nullptr);
    fresh.MouseWheel(1.0f);
    GLView dialogs[2];
    for (GLView& dialog : dialogs) fresh.OpenDialog(&dialog);
    EXPECT_FALSE(dialogs[0].visible) << "another one is open";
}

}  // namespace
}  // namespace brindle
