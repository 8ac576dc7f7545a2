// SPDX-License-Identifier: ISC
#include "editor/GLView_BaseView.h"

#include <gmock/gmock.h>

#include <array>
#include <string>
#include <vector>

#include "editor/pugl_window.h"
#include "gl/gl.h"
#include "gl/settings.h"
#include "tests/support/host_window.h"

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::FloatNear;
using testing::IsEmpty;

/// A view that takes presses and records its events. It counts its draws, and in one of the passes
/// fills itself with its own colour.
struct Probe : GLView {
    std::vector<std::string> log;
    GLPoint point;       // of the last event, in the parent's coordinates
    GLPoint pixelPoint;  // of the last press or drag
    int drawn[3] = {};   // back, main, front
    int fillPass = 0;
    GLColor fill = kRed;

    Probe(float newX, float newY, float width, float height) {
        SetPosition(newX, newY);
        SetSize(width, height);
        SetInfoTitle("Probe");
        SetInfoText("a probe");
    }
    void MouseDown(GLPoint where, GLPoint pixel) override {
        log.emplace_back(IsResetPress() ? "double" : "down");
        point = where;
        pixelPoint = pixel;
        SetCaptured(true);
    }
    void MouseUp(GLPoint where) override {
        log.emplace_back("up");
        point = where;
        SetCaptured(false);
    }
    void MouseDragTo(GLPoint pixel) override {
        log.emplace_back("drag");
        pixelPoint = pixel;
    }
    void Scroll(float delta) override { log.push_back("scroll " + std::to_string(delta)); }
    void ParameterChanged(uint32_t index) override {
        log.push_back("port " + std::to_string(index));
    }
    void DrawBack() override { Paint(0); }
    void Draw() override { Paint(1); }
    void DrawFront() override { Paint(2); }

  private:
    void Paint(int pass) {
        ++drawn[pass];
        if (pass == fillPass) {
            glDisable(GL_TEXTURE_2D);
            fill.Apply();
            glRectf(x - hw, y - hh, x + hw, y + hh);
            glEnable(GL_TEXTURE_2D);
        }
    }
};

/// A probe that does not capture the pointer when pressed, unlike most widgets.
struct Listener : Probe {
    using Probe::Probe;
    void MouseDown(GLPoint, GLPoint) override { log.emplace_back("down"); }
};

// A real press may be a double click, depending on its timing.
const auto kPress = testing::AnyOf("down", "double");

class RootView : public testing::Test {
  protected:
    class Page : public GLView_BaseView {
      public:
        Page() : GLView_BaseView(1000, 600) {}
    };

    void Open(int width = 1000, int height = 600) {
        hostBackgroundColor = kGrey20;
        host.Sync();
        window = PuglWindow::Create(host.GetId(), "Probe", 1000, 600);
        ASSERT_NE(window, nullptr);
        window->SetRoot(*page);
        host.Resize(width, height);
        ASSERT_TRUE(WaitFor([&] { return host.HasSize(window->GetNativeWindow(), width, height); },
                            [&] { Process(); }));
        DrawFrame();
        DrawFrame();
    }
    void Process() {
        host.Sync();
        window->ProcessEvents();
    }
    void DrawFrame() {
        window->PostRedisplay();
        Process();
    }
    void MoveTo(int x, int y) {
        host.MovePointer(x, y);
        Process();
    }
    uint32_t Pixel(int x, int y) { return host.GetPixel(window->GetNativeWindow(), x, y); }
    template <typename View = Probe>
    View* Add(float x, float y, float width, float height) {
        auto* probe = new View(x, y, width, height);
        page->AddChild(probe);
        return probe;
    }

    ~RootView() override {
        if (window != nullptr) window->MakeCurrent();
        page.reset();
    }

    HostWindow host;
    std::unique_ptr<PuglWindow> window;
    std::unique_ptr<Page> page = std::make_unique<Page>();
};

TEST_F(RootView, BringsThePointerToTheTreesCoordinatesAtEverySize) {
    // Window size, and the frame expected in its middle.
    const struct {
        int width, height, left, top, frameWidth, frameHeight;
    } cases[] = {
        {1000, 600, 0, 0, 1000, 600},   {2000, 1200, 0, 0, 2000, 1200},
        {1300, 600, 150, 0, 1000, 600}, {500, 500, 0, 100, 500, 300},
        {1000, 700, 0, 50, 1000, 600},
    };
    auto* probe = Add(1.0f, 0.5f, 0.2f, 0.2f);
    Open();
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.width << " x " << c.height);
        host.Resize(c.width, c.height);
        ASSERT_TRUE(
            WaitFor([&] { return page->GetPageWidth() == static_cast<float>(c.frameWidth); },
                    [&] { Process(); }));
        DrawFrame();
        EXPECT_EQ(page->GetPageHeight(), static_cast<float>(c.frameHeight));
        probe->log.clear();
        // (1, 0.5) is at 8/10 of the frame's width and a quarter of its height.
        const int pixelX = c.frameWidth * 8 / 10;
        const int pixelY = c.frameHeight / 4;
        MoveTo(c.left + pixelX, c.top + pixelY);
        EXPECT_EQ(page->GetSelectedView(), probe);
        host.Press();
        MoveTo(c.left + pixelX + 31, c.top + pixelY - 7);
        EXPECT_FLOAT_EQ(probe->point.x, 1.0f);
        EXPECT_FLOAT_EQ(probe->point.y, 0.5f);
        EXPECT_FLOAT_EQ(probe->pixelPoint.x, static_cast<float>(pixelX + 31));
        EXPECT_FLOAT_EQ(probe->pixelPoint.y, static_cast<float>(pixelY - 7));
        host.Release();
        Process();
        EXPECT_THAT(probe->log, ElementsAre(kPress, "drag", "up"));

        MoveTo(c.left, c.top);
        host.Click();
        Process();
        EXPECT_THAT(probe->log, ElementsAre(kPress, "drag", "up"));
        EXPECT_EQ(page->GetSelectedView(), nullptr);
        // The probe is drawn there too; nothing is drawn beside the frame.
        EXPECT_EQ(Pixel(c.left + pixelX, c.top + pixelY), 0xff0000u);
        EXPECT_EQ(Pixel(c.left + 2, c.top + 2), 0x333333u);
        if (c.left + c.top > 0) {
            EXPECT_EQ(Pixel(c.left / 2, c.top / 2), 0x000000u);
        }
    }
}

TEST_F(RootView, DragsGoOnOutsideTheWindow) {
    auto* probe = Add(0.0f, 0.0f, 1.0f, 1.0f);
    Open();
    MoveTo(500, 300);
    host.Press();
    MoveTo(-20, -15);
    EXPECT_FLOAT_EQ(probe->pixelPoint.x, -20.0f);
    EXPECT_FLOAT_EQ(probe->pixelPoint.y, -15.0f);
    EXPECT_EQ(page->GetPressedButton(), 1);
    host.Release();
    Process();
    EXPECT_EQ(probe->log.back(), "up");
    EXPECT_GT(probe->point.y, 1.0f);
    EXPECT_EQ(page->GetPressedButton(), 0);
    EXPECT_EQ(page->GetCapturedView(), nullptr);
}

TEST_F(RootView, TellsDoubleClicksByTheTimesOfTheEvents) {
    auto* probe = Add(0.0f, 0.0f, 1.0f, 1.0f);
    Open();
    const uintptr_t id = window->GetNativeWindow();
    const struct {
        uint32_t first, second;
        bool isDouble;
    } cases[] = {
        {5000, 5001, true},    {10000, 10199, true},    {20000, 20200, false},
        {30000, 30000, false}, {0xffffffc0u, 30, true}, {40000, 39999, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.first << " ms, " << c.second << " ms");
        probe->log.clear();
        host.SendPress(id, 500, 300, c.first);
        host.SendPress(id, 500, 300, c.second);
        Process();
        EXPECT_THAT(probe->log, ElementsAre("down", c.isDouble ? "double" : "down"));
        EXPECT_FALSE(page->IsResetPress());
        EXPECT_EQ(page->GetEventTime(), c.second);
    }
}

TEST_F(RootView, TheWheelTurnsTheViewUnderThePointerOnly) {
    auto* left = Add(-0.8f, 0.0f, 0.5f, 0.5f);
    auto* right = Add(0.8f, 0.0f, 0.5f, 0.5f);
    Open();
    host.MovePointer(-5, -5);
    host.Click(4);
    MoveTo(260, 300);
    EXPECT_STREQ(page->infoTitle, "Probe");
    EXPECT_STREQ(page->infoText, "a probe");
    host.Click(4);
    host.Click(6);  // sideways
    MoveTo(740, 300);
    host.Click(5);
    MoveTo(500, 300);
    EXPECT_STREQ(page->infoTitle, "");
    EXPECT_STREQ(page->infoText, "");
    host.Click(5);
    Process();
    EXPECT_THAT(left->log, ElementsAre("scroll 1.000000"));
    EXPECT_THAT(right->log, ElementsAre("scroll -1.000000"));
}

TEST_F(RootView, ADialogTakesEveryPressUntilOneBesideItDismissesIt) {
    auto* below = Add(0.0f, 0.0f, 3.0f, 1.9f);
    auto* other = Add<Listener>(0.0f, 0.0f, 0.1f, 0.1f);
    Listener dialog(0.5f, 0.0f, 0.4f, 0.4f);
    dialog.SetVisible(false);
    Open();
    page->OpenDialog(&dialog);
    EXPECT_EQ(dialog.Page(), page.get());
    MoveTo(650, 300);
    EXPECT_EQ(page->GetSelectedView(), &dialog);
    host.Click();
    MoveTo(200, 300);
    EXPECT_EQ(page->GetSelectedView(), nullptr);
    EXPECT_STREQ(page->infoTitle, "");
    EXPECT_THAT(dialog.log, ElementsAre("down", "up"));
    DrawFrame();
    EXPECT_EQ(dialog.drawn[1], 1);
    EXPECT_EQ(dialog.drawn[2], 1);

    host.Click();
    Process();
    EXPECT_FALSE(dialog.visible);
    EXPECT_THAT(dialog.log, ElementsAre("down", "up"));
    EXPECT_THAT(below->log, IsEmpty());
    host.Click();
    Process();
    EXPECT_THAT(below->log, ElementsAre(kPress, "up"));

    page->OpenDialog(&dialog);
    page->OpenDialog(other);  // a second dialog closes the first
    EXPECT_FALSE(dialog.visible);
    page->CloseDialog(false);
    EXPECT_FALSE(other->visible);
}

TEST_F(RootView, DrawsWhatStandsStillOnlyWhenItIsOutOfDate) {
    auto* still = Add(-0.8f, 0.0f, 0.5f, 0.5f);
    auto* moving = Add(0.8f, 0.0f, 0.5f, 0.5f);
    auto* overlay = Add(0.0f, 0.0f, 0.5f, 0.5f);
    moving->fillPass = 1;
    moving->fill = kGreen;
    overlay->fillPass = 2;
    overlay->fill = kBlue;
    Open();
    EXPECT_FALSE(page->redrawNeeded);
    // How often each pass has run since, and the visible colour.
    const std::array before = std::to_array(still->drawn);
    const auto expect_drawn = [&](int back, int front, uint32_t leftColor) {
        EXPECT_EQ(still->drawn[0] - before[0], back);
        EXPECT_EQ(still->drawn[1] - before[1], back);
        EXPECT_EQ(still->drawn[2] - before[2], front);
        EXPECT_EQ(Pixel(260, 300), leftColor);
        EXPECT_EQ(Pixel(740, 300), 0x00ff00u);
        EXPECT_EQ(Pixel(500, 300), 0x0000ffu);
    };
    still->fill = kYellow;
    DrawFrame();
    page->SetParameter(3, 1.0f, false);
    page->SetInfoText("");
    DrawFrame();
    expect_drawn(0, 0, 0xff0000u);
    moving->Redraw(Layer::Front);
    DrawFrame();
    expect_drawn(0, 1, 0xff0000u);
    page->SetParameter(3, 1.0f, true);
    DrawFrame();
    expect_drawn(1, 2, 0xffff00u);
    DrawFrame();
    expect_drawn(1, 2, 0xffff00u);
    host.Hide(host.GetId());
    DrawFrame();
    host.Show(host.GetId());
    Process();  // a window that is uncovered is drawn unasked
    expect_drawn(1, 3, 0xffff00u);
    for (const int x : {260, 740}) {  // from one view to another with the same help texts
        MoveTo(x, 300);
        DrawFrame();
    }
    expect_drawn(1, 5, 0xffff00u);
    page->SetWindowSize(1000, 500);
    EXPECT_TRUE(page->IsFrameDue());
    DrawFrame();
    EXPECT_TRUE(page->IsFrameDue());  // once more, for drivers that notice sizes late
    DrawFrame();
    EXPECT_FALSE(page->IsFrameDue());
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(RootView, ShowsThinLinesInSmallWindowsWhereverTheyFall) {
    constexpr int kLines = 30;
    constexpr float kLayerPixel = 1.0f / 600.0f;
    const auto place = [](int i) { return static_cast<float>(55 * i - 900) * kLayerPixel; };
    for (int i = 0; i < kLines; ++i) {
        Add(place(i), 0.0f, 2.0f * kLayerPixel, 1.0f)->fill = kWhite;
    }
    Open(700, 420);
    int faintest = 1000;
    int strongest = 0;
    for (int i = 0; i < kLines; ++i) {
        const int middle = 350 + static_cast<int>(place(i) * 210.0f);
        int light = 0;
        for (int x = middle - 3; x <= middle + 3; ++x) {
            light += static_cast<int>(Pixel(x, 210) & 255u) - 0x33;
        }
        faintest = std::min(faintest, light);
        strongest = std::max(strongest, light);
    }
    EXPECT_GT(3 * faintest, 2 * strongest) << faintest << " of " << strongest;
}

TEST_F(RootView, KeepsParametersAndTellsTheTreeOfAll) {
    auto* probe = Add(0.0f, 0.0f, 1.0f, 1.0f);
    for (const uint32_t port : {127u, 128u, 0xffffffffu}) page->SetParameter(port, 0.5f, false);
    EXPECT_EQ(probe->GetParameter(127), 0.5f);
    EXPECT_EQ(probe->GetParameter(128), 0.0f);
    EXPECT_EQ(probe->GetParameter(0xffffffffu), 0.0f);
    EXPECT_THAT(probe->log, ElementsAre("port 127", "port 128", "port 4294967295"));
}

TEST_F(RootView, IgnoresInputBeforeItsFirstFrame) {
    auto* probe = Add(0.0f, 0.0f, 3.0f, 1.9f);
    page->SetWindowSize(1000, 600);
    page->MouseButton(1, true, 500, 300);
    page->MouseButton(1, false, 500, 300);
    page->PointerMotion(500, 300);
    page->MouseWheel(1.0f);
    EXPECT_THAT(probe->log, IsEmpty());
    EXPECT_EQ(page->GetSelectedView(), nullptr);
}

}  // namespace
}  // namespace brindle
