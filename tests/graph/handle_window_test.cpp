// SPDX-License-Identifier: ISC
// Handles in a real window, moved by a real pointer.
#include <gmock/gmock.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "editor/GLView_StripEqView.h"
#include "editor/window_events.h"
#include "gl/settings.h"
#include "graph/GLView_ParametricEQ.h"
#include "graph/GLView_ParametricEQGrabber.h"
#include "tests/support/host_window.h"
#include "tests/support/recording_host.h"

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::Field;

struct HandleWindow : testing::Test {
    struct Page : GLView_BaseView {
        Page() : GLView_BaseView(1000, 600) {}
    };

    HandleWindow() {
        resourceDirectory = BRINDLE_BUNDLE "/";
        hostBackgroundColor = kGrey20;
        page = std::make_unique<Page>();
        const float m = page->GetPixelSize();
        const float s = page->GetInterfaceScale();
        graph = new GLView_ParametricEQ;
        graph->SetSize(920.0f * m, 342.0f * s);
        graph->SetPosition(0.0f, page->GetViewTop() - (78.0f + 171.0f) * s);
        page->AddChild(graph);
        for (int i = 0; i < GLView_ParametricEQGrabber::kHandleCount; ++i) {
            auto* handle = new GLView_ParametricEQGrabber(*graph, i);
            handle->SetSize(22.0f * s, 22.0f * s);
            handle->SetWriter(recorder.Writer());
            graph->AddChild(handle);
            handles.push_back(handle);
        }
        for (int band = 0; band < kBandCount; ++band) {
            Set(band, {1.0f, 9.0f, 0.0f, 100.0f * static_cast<float>(1 << band), 1.0f});
        }
    }
    ~HandleWindow() override {
        if (window != nullptr) window->MakeCurrent();
        page.reset();
    }

    void Open(int width) {
        pixelsPerM = static_cast<float>(width) / 1000.0f;
        host.Sync();
        window = PuglWindow::Create(host.GetId(), "Handles", 1000, 600);
        ASSERT_NE(window, nullptr);
        ConnectWindow(*window, *page);
        const int height = width * 6 / 10;
        host.Resize(width, height);
        ASSERT_TRUE(WaitFor([&] { return host.HasSize(window->GetNativeWindow(), width, height); },
                            [&] { Process(); }));
        Process();
        Process();
    }
    /// What a host does at each idle tick: reports the writes, then has a frame drawn.
    void Process() {
        host.Sync();
        window->ProcessEvents();
        for (; reported < recorder.calls.size(); ++reported) {
            page->SetParameter(recorder.calls[reported].port, recorder.calls[reported].value, true);
        }
        window->PostRedisplay();
        host.Sync();
        window->ProcessEvents();
    }
    void Set(int handle, const std::array<float, kControlCount>& values) {
        for (uint32_t i = 0; i < kControlCount; ++i) {
            page->SetParameter(handles[static_cast<size_t>(handle)]->firstPort + i, values[i],
                               true);
        }
    }
    float Value(uint32_t port) { return page->GetParameter(port); }

    /// A point of the graph's coordinates in window pixels.
    GLPoint InPixels(GLPoint local) {
        const float perUnit = 300.0f * pixelsPerM;
        return {(local.x + graph->x - page->GetViewLeft()) * perUnit,
                (page->GetViewTop() - local.y - graph->y) * perUnit};
    }
    GLPoint HandlePixel(int handle) {
        return InPixels(handles[static_cast<size_t>(handle)]->Place());
    }
    GLPoint MarkerPixel(int handle) {
        const float x = handles[static_cast<size_t>(handle)]->Place().x;
        return InPixels({x, -graph->hh - 42.0f * page->GetPixelSize()});
    }
    void MoveTo(GLPoint pixel) {
        pointer = {std::round(pixel.x), std::round(pixel.y)};
        host.MovePointer(static_cast<int>(pointer.x), static_cast<int>(pointer.y));
        Process();
    }
    void PressAt(GLPoint pixel) {
        MoveTo(pixel);
        host.Press();
        Process();
    }
    void Release() {
        host.Release();
        Process();
    }
    void MoveBy(float dx, float dy) { MoveTo({pointer.x + dx, pointer.y + dy}); }
    /// The middle between the sides of the amber disc of a section's handle.
    float AmberColumn() {
        const GLPoint at = HandlePixel(8);
        int first = 0;
        int last = 0;
        for (int x = static_cast<int>(at.x) - 40; x <= static_cast<int>(at.x) + 40; ++x) {
            const uint32_t rgb =
                host.GetPixel(window->GetNativeWindow(), x, static_cast<int>(at.y));
            const bool isAmber = (rgb >> 16) > 150 && (rgb >> 8 & 255) > 90 &&
                                 (rgb >> 8 & 255) < 150 && (rgb & 255) < 80;
            if (isAmber && first == 0) first = x;
            if (isAmber) last = x;
        }
        return static_cast<float>(first + last + 1) / 2.0f;
    }

    RecordingHost recorder;  // outlives the handles
    HostWindow host;
    std::unique_ptr<Page> page;
    std::unique_ptr<PuglWindow> window;
    GLView_ParametricEQ* graph;
    std::vector<GLView_ParametricEQGrabber*> handles;
    size_t reported = 0;
    float pixelsPerM = 1.0f;
    GLPoint pointer;
};

struct HandleFollows : HandleWindow, testing::WithParamInterface<int> {};
INSTANTIATE_TEST_SUITE_P(WindowWidth, HandleFollows, testing::Values(1000, 2000));

TEST_P(HandleFollows, ThePointerWithinTwoPixels) {
    Open(GetParam());
    Set(3, {1.0f, 9.0f, 0.0f, 300.0f, 2.0f});
    Process();
    PressAt(HandlePixel(3));
    const GLPoint grip = {HandlePixel(3).x - pointer.x, HandlePixel(3).y - pointer.y};
    for (int step = 0; step < 20; ++step) {
        MoveBy(14.0f, step < 10 ? -6.0f : 3.0f);
        const GLPoint handle = HandlePixel(3);
        ASSERT_NEAR(handle.x - grip.x, pointer.x, 2.0f) << step;
        ASSERT_NEAR(handle.y - grip.y, pointer.y, 2.0f) << step;
    }
    Release();

    // It is drawn where it says that it is.
    for (int band = 0; band < kBandCount; ++band) Set(band, {});
    Set(8, {1.0f, 1.0f, 0.0f, 60.0f, 1.0f});
    Process();
    PressAt(HandlePixel(8));
    MoveBy(120.0f, 0.0f);
    MoveBy(130.0f, 0.0f);
    EXPECT_NEAR(AmberColumn(), HandlePixel(8).x, 1.0f);
    Release();
}

TEST_F(HandleWindow, StopsAtItsEndsAndMovesFinelyWithShift) {
    Open(1000);
    PressAt(HandlePixel(3));
    const auto walkTo = [&](GLPoint end) {
        const GLPoint start = pointer;
        for (float part = 0.1f; part < 1.05f; part += 0.1f) {
            MoveTo({start.x + part * (end.x - start.x), start.y + part * (end.y - start.y)});
        }
    };
    walkTo({1040.0f, -30.0f});  // outside of the window
    EXPECT_EQ(Value(20), 20000.0f);
    EXPECT_EQ(Value(19), 18.0f);
    walkTo({-50.0f, 590.0f});
    EXPECT_EQ(Value(20), 20.0f);
    EXPECT_EQ(Value(19), -18.0f);
    Release();

    PressAt(HandlePixel(4));
    host.Key(XK_Shift_L, true);
    MoveBy(100.0f, 0.0f);
    MoveBy(100.0f, 0.0f);
    host.Key(XK_Shift_L, false);
    // 200 px, a tenth as fast, of the graph's 920.
    EXPECT_NEAR(std::log(Value(25) / 1600.0f) / std::log(1000.0f) * 920.0f, 20.0f, 0.5f);
    Release();
}

TEST_F(HandleWindow, TheWheelTurnsQOfTheHandleUnderThePointer) {
    Open(1000);
    MoveTo(HandlePixel(5));
    host.Click(4);
    Process();
    EXPECT_NEAR(Value(31), std::pow(1000.0f, 0.05f), 1e-3f);
    MoveTo({500.0f, 10.0f});
    host.Click(4);
    Process();
    EXPECT_NEAR(Value(31), std::pow(1000.0f, 0.05f), 1e-3f);
}

TEST_F(HandleWindow, HoldingAMarkerSearches) {
    Open(1000);
    Set(2, {1.0f, 12.0f, -3.0f, 400.0f, 2.0f});
    Set(8, {1.0f, 2.0f, 0.0f, 40.0f, 1.0f});
    Process();
    MoveTo(MarkerPixel(2));
    recorder.calls.clear();
    reported = 0;
    host.Press();
    Process();
    EXPECT_THAT(recorder.calls,
                ElementsAre(Wrote(13, 10), Wrote(14, 10), Wrote(42, 0), Wrote(47, 0), Wrote(2, 0),
                            Wrote(7, 0), Wrote(17, 0), Wrote(22, 0), Wrote(27, 0), Wrote(32, 0),
                            Wrote(37, 0)));
    recorder.calls.clear();
    reported = 0;
    MoveBy(80.0f, -40.0f);
    EXPECT_THAT(recorder.calls, ElementsAre(Field(&HostCall::port, 15u)));
    EXPECT_NEAR(std::log(Value(15) / 400.0f) / std::log(1000.0f) * 920.0f, 20.0f, 0.5f);
    recorder.calls.clear();
    reported = 0;
    host.Release();
    Process();
    EXPECT_THAT(recorder.calls,
                ElementsAre(Wrote(13, 12), Wrote(14, -3), Wrote(42, 1), Wrote(47, 0), Wrote(2, 1),
                            Wrote(7, 1), Wrote(17, 1), Wrote(22, 1), Wrote(27, 1), Wrote(32, 1),
                            Wrote(37, 1)));
}

TEST_F(HandleWindow, ClosingTheEditorEndsASearch) {
    EditorInstance instance{};
    instance.writeFunction = recorder.Writer().function;
    instance.controller = recorder.Writer().controller;
    GLView_StripEqView panel(instance);
    page->RemoveChild(graph);
    panel.AddChild(graph);
    for (uint32_t port = 2; port < 52; ++port) panel.SetParameter(port, Value(port), true);
    const float marker = -graph->hh - 42.0f * panel.GetPixelSize();
    handles[2]->MouseDown({handles[2]->Place().x, marker}, {});
    ASSERT_TRUE(handles[2]->IsSearching());
    recorder.calls.clear();

    panel.EditorClosed();
    const std::vector<HostCall> restored = {
        Wrote(13, 9), Wrote(14, 0), Wrote(42, 0), Wrote(47, 0), Wrote(2, 1),  Wrote(7, 1),
        Wrote(17, 1), Wrote(22, 1), Wrote(27, 1), Wrote(32, 1), Wrote(37, 1),
    };
    ASSERT_EQ(recorder.calls.size(), restored.size() + 1);
    EXPECT_EQ(recorder.calls.back().port, 0u);  // the engine's analyser is switched off last
    recorder.calls.pop_back();
    EXPECT_EQ(recorder.calls, restored);
}

}  // namespace
}  // namespace brindle
