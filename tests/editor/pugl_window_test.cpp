// SPDX-License-Identifier: ISC
#include "editor/pugl_window.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include "gl/gl.h"
#include "tests/support/host_window.h"

namespace brindle {
namespace {

using testing::ElementsAre;

/// An editor's window whose callbacks are written down.
struct Recorder {
    std::unique_ptr<PuglWindow> window;
    std::vector<std::string> input;
    int width = 0;
    int height = 0;
    int frames = 0;
    float red = 0.0f;  ///< what frames are filled with

    explicit Recorder(uintptr_t parent)
        : window(PuglWindow::Create(parent, "Recorder", 1000, 600)) {
        if (window != nullptr) {
            window->SetCallbacks(&kCallbacks, this);
        }
    }
    template <typename Done>
    bool ProcessUntil(Done done) {
        return WaitFor(done, [this] { window->ProcessEvents(); });
    }
    bool ProcessUntilInput(size_t count) {
        return ProcessUntil([&] { return input.size() >= count; });
    }
    bool DrawFrame() {
        const int before = frames;
        window->PostRedisplay();
        return ProcessUntil([&] { return frames > before; });
    }

    static Recorder& Of(PuglWindow& from) { return *static_cast<Recorder*>(from.GetHandle()); }
    static std::string At(int x, int y) { return std::to_string(x) + "," + std::to_string(y); }
    static const PuglCallbacks kCallbacks;
};

const PuglCallbacks Recorder::kCallbacks = {
    .display =
        [](PuglWindow& from) {
            glClearColor(Of(from).red, 0.0f, 0.0f, 1.0f);
            glClear(GL_COLOR_BUFFER_BIT);
            ++Of(from).frames;
        },
    .reshape =
        [](PuglWindow& from, int width, int height) {
            Of(from).width = width;
            Of(from).height = height;
        },
    .motion = [](PuglWindow& from, int x, int y) { Of(from).input.push_back("move " + At(x, y)); },
    .mouse =
        [](PuglWindow& from, int button, bool press, int x, int y) {
            Of(from).input.push_back((press ? "press " : "release ") + std::to_string(button) +
                                     " " + At(x, y) + " at " +
                                     std::to_string(Of(from).window->GetEventTime()));
        },
    .scroll =
        [](PuglWindow& from, int x, int y, float dx, float dy) {
            Of(from).input.push_back("scroll " + At(x, y) + " by " +
                                     At(static_cast<int>(dx), static_cast<int>(dy)));
        },
    .keyboard =
        [](PuglWindow& from, bool press, uint32_t character) {
            Of(from).input.push_back(std::string(press ? "down " : "up ") +
                                     static_cast<char>(character));
        },
    .special =
        [](PuglWindow& from, bool press, int key) {
            Of(from).input.push_back((press ? "special down " : "special up ") +
                                     std::to_string(key) + " with " +
                                     std::to_string(Of(from).window->GetModifiers()));
        },
};

TEST(PuglWindow, IsOnTheScreenWhenCreateReturns) {
    HostWindow host;
    host.Sync();
    const auto window = PuglWindow::Create(host.GetId(), "Title", 1000, 600);
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(host.IsShown(window->GetNativeWindow()));
    EXPECT_TRUE(host.HasSize(window->GetNativeWindow(), 1000, 600));
}

TEST(PuglWindow, RefusesMissingDisplaysAndParents) {
    HostWindow host;
    host.Sync();
    EXPECT_EQ(PuglWindow::Create(0x7ffffff, "No such parent", 1000, 600), nullptr);
    const std::string display = std::getenv("DISPLAY");
    setenv("DISPLAY", ":765", 1);
    EXPECT_EQ(PuglWindow::Create(host.GetId(), "No such display", 1000, 600), nullptr);
    setenv("DISPLAY", display.c_str(), 1);
}

/// Needs an X server of that kind, see CMakeLists.txt.
TEST(PuglWindow, DISABLED_RefusesADisplayWithoutOpenGl) {
    HostWindow host;
    host.Sync();
    EXPECT_EQ(PuglWindow::Create(host.GetId(), "No OpenGL", 1000, 600), nullptr);
}

TEST(PuglWindow, DrawsOnlyWhenAskedAndFirstAfterTheSize) {
    HostWindow host;
    host.Sync();
    Recorder editor(host.GetId());
    EXPECT_EQ(editor.width, 1000);
    EXPECT_EQ(editor.height, 600);
    EXPECT_EQ(editor.frames, 0);
    ASSERT_TRUE(editor.ProcessUntil([&] { return editor.frames > 0; }));
    for (int idle = 0; idle < 20; ++idle) {
        editor.window->ProcessEvents();
    }
    EXPECT_EQ(editor.frames, 1);
}

TEST(PuglWindow, GivesEventsTheirOwnTimesAndPositions) {
    HostWindow host;
    host.Sync();
    Recorder editor(host.GetId());
    const uintptr_t window = editor.window->GetNativeWindow();
    // All of them wait in one queue, so the moment of the callback tells nothing.
    host.SendPress(window, 3, 4, 1000);
    host.SendPress(window, 5, 6, 1199);
    host.SendPress(window, 7, 8, 0xfffffffeu);
    ASSERT_TRUE(editor.ProcessUntilInput(3));
    EXPECT_THAT(editor.input, ElementsAre("press 1 3,4 at 1000", "press 1 5,6 at 1199",
                                          "press 1 7,8 at 4294967294"));
    editor.input.clear();
    host.MovePointer(200, 100);
    host.Click(4);
    host.MovePointer(300, 150);
    host.Click(5);
    host.Click(9);  // a side button is none of ours
    host.SendPress(window, 1, 1, 77);
    ASSERT_TRUE(editor.ProcessUntilInput(5));
    EXPECT_THAT(editor.input, ElementsAre("move 200,100", "scroll 200,100 by 0,1", "move 300,150",
                                          "scroll 300,150 by 0,-1", "press 1 1,1 at 77"));
}

TEST(PuglWindow, ReportsDragsBeyondItsEdges) {
    HostWindow host;
    host.Sync();
    Recorder editor(host.GetId());
    host.MovePointer(10, 10);
    host.Press();
    host.MovePointer(-20, -15);
    host.Release();
    host.MovePointer(-30, -15);
    ASSERT_TRUE(editor.ProcessUntilInput(4));
    EXPECT_EQ(editor.input[2], "move -20,-15");
    EXPECT_THAT(editor.input[3], testing::StartsWith("release 1 -20,-15 at "));
    EXPECT_EQ(editor.input.size(), 4u);
}

TEST(PuglWindow, TellsKeysAndModifiers) {
    HostWindow host;
    host.Sync();
    Recorder editor(host.GetId());
    host.MovePointer(10, 10);
    host.Key(XK_a, true);
    host.Key(XK_a, false);
    host.Key(XK_Shift_L, true);
    host.Key(XK_F2, true);
    host.Key(XK_F2, false);
    host.Key(XK_Shift_L, false);
    ASSERT_TRUE(editor.ProcessUntilInput(7));
    EXPECT_THAT(editor.input, ElementsAre("move 10,10", "down a", "up a", "special down 22 with 0",
                                          "special down 2 with 1", "special up 2 with 1",
                                          "special up 22 with 1"));
}

TEST(PuglWindow, FollowsItsParentUnlessTheHostSizesIt) {
    HostWindow host;
    host.Sync();
    Recorder editor(host.GetId());
    const uintptr_t window = editor.window->GetNativeWindow();
    for (const auto& [width, height] : {std::pair(1400, 700), {500, 480}, {640, 384}}) {
        SCOPED_TRACE(width);
        host.Resize(width, height);
        EXPECT_TRUE(editor.ProcessUntil([&, w = width, h = height] {
            return editor.width == w && editor.height == h && host.HasSize(window, w, h);
        }));
    }
    host.ResizeWindow(window, 300, 200);
    EXPECT_TRUE(editor.ProcessUntil([&] { return editor.width == 300; }));
    host.Resize(900, 500);
    for (int idle = 0; idle < 30; ++idle) {
        editor.window->ProcessEvents();
        host.Sync();
    }
    EXPECT_EQ(editor.width, 300);
    EXPECT_TRUE(host.HasSize(window, 300, 200));
}

TEST(PuglWindow, SurvivesItsParentAndLeavesNoContext) {
    for (int round = 0; round < 10; ++round) {
        HostWindow host;
        host.Sync();
        Recorder editor(host.GetId());
        ASSERT_TRUE(editor.DrawFrame());
        editor.window->PostRedisplay();
        host.Destroy();
        const int frames = editor.frames;
        for (int idle = 0; idle < 5; ++idle) {
            editor.window->PostRedisplay();
            editor.window->ProcessEvents();
        }
        EXPECT_EQ(editor.frames, frames);
        editor.window.reset();
        EXPECT_EQ(glXGetCurrentContext(), nullptr);
    }
}

TEST(PuglWindow, ParentMayGoBetweenEventsAndFrame) {
    HostWindow host;
    host.Sync();
    struct Unlucky {
        HostWindow& host;
        int frames = 0;
    } unlucky{host};
    auto callbacks = Recorder::kCallbacks;
    callbacks.reshape = [](PuglWindow&, int, int) {};
    callbacks.display = [](PuglWindow& from) {
        auto& self = *static_cast<Unlucky*>(from.GetHandle());
        glClear(GL_COLOR_BUFFER_BIT);
        if (++self.frames == 1) {
            self.host.Destroy();  // the frame is now shown in a window that is no more
        }
    };
    const auto window = PuglWindow::Create(host.GetId(), "Unlucky", 1000, 600);
    window->SetCallbacks(&callbacks, &unlucky);
    EXPECT_TRUE(WaitFor([&] { return unlucky.frames > 0; }, [&] { window->ProcessEvents(); }));
    for (int idle = 0; idle < 5; ++idle) {
        window->PostRedisplay();
        window->ProcessEvents();
    }
    EXPECT_EQ(unlucky.frames, 1);
}

TEST(PuglWindow, OpensAndClosesAgainAndAgainBesideAnother) {
    HostWindow host;
    host.Sync();
    HostWindow otherHost;  // above the first, to be looked at
    otherHost.Sync();
    Recorder other(otherHost.GetId());
    other.red = 1.0f;
    for (int round = 0; round < 60; ++round) {
        Recorder editor(host.GetId());
        ASSERT_TRUE(editor.DrawFrame());
        if (round % 10 == 0) {
            ASSERT_TRUE(other.DrawFrame());
        }
    }
    ASSERT_TRUE(other.DrawFrame());
    EXPECT_EQ(otherHost.GetPixel(other.window->GetNativeWindow(), 500, 300), 0xff0000u);
}

TEST(PuglWindow, LetsNoExceptionThrough) {
    HostWindow host;
    host.Sync();
    int calls = 0;
    auto callbacks = Recorder::kCallbacks;
    callbacks.reshape = [](PuglWindow&, int, int) {};
    callbacks.display = [](PuglWindow& from) {
        ++*static_cast<int*>(from.GetHandle());
        throw std::bad_alloc();
    };
    const auto window = PuglWindow::Create(host.GetId(), "Thrower", 1000, 600);
    window->SetCallbacks(&callbacks, &calls);
    EXPECT_TRUE(WaitFor([&] { return calls > 0; }, [&] { window->ProcessEvents(); }));
    window->PostRedisplay();
    EXPECT_TRUE(WaitFor([&] { return calls > 1; }, [&] { window->ProcessEvents(); }));
}

}  // namespace
}  // namespace brindle
