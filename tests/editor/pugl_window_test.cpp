// SPDX-License-Identifier: ISC
// What becomes of a window's frames where drawing fails or its parent goes. Its events are seen in
// the tests of the root view and of the editor.
#include "editor/pugl_window.h"

#include <gtest/gtest.h>

#include <new>

#include "editor/GLView_BaseView.h"
#include "tests/support/host_window.h"

namespace brindle {
namespace {

/// A root that counts its frames.
struct Root : GLView_BaseView {
    HostWindow& host;
    int count = 0;
    bool throws = false;
    bool destroysParent = false;

    explicit Root(HostWindow& newHost) : GLView_BaseView(1000, 600), host(newHost) {}
    void PreDraw() override {
        ++count;
        if (throws) throw std::bad_alloc();
        if (destroysParent) host.Destroy();
    }
};

struct Frames : testing::Test {
    HostWindow host;
    std::unique_ptr<PuglWindow> window;
    Root root{host};

    Frames() {
        host.Sync();
        window = PuglWindow::Create(host.GetId(), "Frames", 1000, 600);
        window->SetRoot(root);
    }
    ~Frames() override { window->MakeCurrent(); }
    bool DrawFrame() {
        const int before = root.count;
        window->PostRedisplay();
        return WaitFor([&] { return root.count > before; }, [&] { window->ProcessEvents(); });
    }
};

TEST_F(Frames, AreDrawnWhenAskedForAndFirstAfterTheSize) {
    EXPECT_EQ(root.GetPageWidth(), 1000.0f);
    EXPECT_EQ(root.GetPageHeight(), 600.0f);
    EXPECT_EQ(root.count, 0);
    ASSERT_TRUE(WaitFor([&] { return root.count > 0; }, [&] { window->ProcessEvents(); }));
    for (int idle = 0; idle < 20; ++idle) window->ProcessEvents();
    EXPECT_EQ(root.count, 1);
}

TEST_F(Frames, EndWhenTheParentGoesWhileOneIsDrawn) {
    root.destroysParent = true;  // the frame is then shown in a window that is no more
    EXPECT_TRUE(DrawFrame());
    root.destroysParent = false;
    for (int idle = 0; idle < 5; ++idle) {
        window->PostRedisplay();
        window->ProcessEvents();
    }
    EXPECT_EQ(root.count, 1);
}

TEST_F(Frames, LetNoExceptionThrough) {
    root.throws = true;
    EXPECT_TRUE(DrawFrame());
    EXPECT_TRUE(DrawFrame());
}

}  // namespace
}  // namespace brindle
