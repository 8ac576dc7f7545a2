// SPDX-License-Identifier: ISC
// What becomes of a window's frames where drawing fails or its parent goes. Its events are seen in
// the tests of the root view and of the editor.
#include "editor/pugl_window.h"

#include <gtest/gtest.h>

#include <new>

#include "gl/gl.h"
#include "tests/support/host_window.h"

namespace brindle {
namespace {

/// An editor's window whose frames are counted.
struct Frames : testing::Test {
    HostWindow host;
    std::unique_ptr<PuglWindow> window;
    int count = 0;
    int width = 0;
    int height = 0;
    bool throws = false;
    bool destroysParent = false;

    Frames() {
        host.Sync();
        window = PuglWindow::Create(host.GetId(), "Frames", 1000, 600);
        window->SetCallbacks(&kCallbacks, this);
    }
    bool DrawFrame() {
        const int before = count;
        window->PostRedisplay();
        return WaitFor([&] { return count > before; }, [&] { window->ProcessEvents(); });
    }

    static Frames& Of(PuglWindow& from) { return *static_cast<Frames*>(from.GetHandle()); }
    static const PuglCallbacks kCallbacks;
};

const PuglCallbacks Frames::kCallbacks = {
    .display =
        [](PuglWindow& from) {
            ++Of(from).count;
            glClear(GL_COLOR_BUFFER_BIT);
            if (Of(from).throws) throw std::bad_alloc();
            if (Of(from).destroysParent) Of(from).host.Destroy();
        },
    .reshape =
        [](PuglWindow& from, int width, int height) {
            Of(from).width = width;
            Of(from).height = height;
        },
    .motion = [](PuglWindow&, int, int) {},
    .mouse = [](PuglWindow&, int, bool, int, int) {},
    .scroll = [](PuglWindow&, int, int, float, float) {},
    .keyboard = [](PuglWindow&, bool, uint32_t) {},
    .special = [](PuglWindow&, bool, int) {},
};

TEST_F(Frames, AreDrawnWhenAskedForAndFirstAfterTheSize) {
    EXPECT_EQ(width, 1000);
    EXPECT_EQ(height, 600);
    EXPECT_EQ(count, 0);
    ASSERT_TRUE(WaitFor([&] { return count > 0; }, [&] { window->ProcessEvents(); }));
    for (int idle = 0; idle < 20; ++idle) window->ProcessEvents();
    EXPECT_EQ(count, 1);
}

TEST_F(Frames, EndWhenTheParentGoesWhileOneIsDrawn) {
    destroysParent = true;  // the frame is then shown in a window that is no more
    EXPECT_TRUE(DrawFrame());
    destroysParent = false;
    for (int idle = 0; idle < 5; ++idle) {
        window->PostRedisplay();
        window->ProcessEvents();
    }
    EXPECT_EQ(count, 1);
}

TEST_F(Frames, LetNoExceptionThrough) {
    throws = true;
    EXPECT_TRUE(DrawFrame());
    EXPECT_TRUE(DrawFrame());
}

}  // namespace
}  // namespace brindle
