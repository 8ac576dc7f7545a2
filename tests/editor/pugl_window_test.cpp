// SPDX-License-Identifier: ISC
// A window's frames when drawing fails or its parent is destroyed. The tests of the root view and
// the editor cover its events.
#include "editor/pugl_window.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <new>
#include <string>

#include "editor/GLView_BaseView.h"
#include "tests/support/host_window.h"

namespace {

/// A GL whose swaps wait for the screen until the only extension that it offers switches that off.
/// Null: the real GL.
const char* offeredExtension = nullptr;
int swapInterval = 1;
int swaps = 0;
int waits = 0;

void SetIntervalOf(Display*, GLXDrawable drawable, int interval) {
    if (drawable == glXGetCurrentDrawable()) swapInterval = interval;
}

int SetInterval(unsigned interval) {
    swapInterval = static_cast<int>(interval);
    return 0;
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {
void glXSwapBuffers(Display* display, GLXDrawable drawable) {
    static const auto real =
        reinterpret_cast<decltype(&glXSwapBuffers)>(dlsym(RTLD_NEXT, "glXSwapBuffers"));
    ++swaps;
    if (swapInterval > 0) ++waits;
    real(display, drawable);
}

const char* glXQueryExtensionsString(Display* display, int screen) {
    static const auto real = reinterpret_cast<decltype(&glXQueryExtensionsString)>(
        dlsym(RTLD_NEXT, "glXQueryExtensionsString"));
    return offeredExtension != nullptr ? offeredExtension : real(display, screen);
}

__GLXextFuncPtr glXGetProcAddressARB(const GLubyte* name) {
    static const auto real =
        reinterpret_cast<decltype(&glXGetProcAddressARB)>(dlsym(RTLD_NEXT, "glXGetProcAddressARB"));
    const std::string wanted = reinterpret_cast<const char*>(name);
    if (wanted == "glXSwapIntervalEXT") return reinterpret_cast<__GLXextFuncPtr>(SetIntervalOf);
    if (wanted == "glXSwapIntervalMESA") return reinterpret_cast<__GLXextFuncPtr>(SetInterval);
    return real(name);
}
}
#pragma GCC visibility pop

namespace brindle {
namespace {

/// A root that counts its frames.
struct Root : GLView_BaseView {
    HostWindow& host;
    int count = 0;
    bool throws = false;
    bool destroysParent = false;

    explicit Root(HostWindow& newHost) : GLView_BaseView(1000, 600), host(newHost) {}
    void DrawFront() override {
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
        root.redrawNeeded = true;
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
    root.destroysParent = true;  // the frame is shown in a window that no longer exists
    EXPECT_TRUE(DrawFrame());
    root.destroysParent = false;
    for (int idle = 0; idle < 5; ++idle) {
        root.redrawNeeded = true;
        window->PostRedisplay();
        window->ProcessEvents();
    }
    EXPECT_EQ(root.count, 1);
}

TEST_F(Frames, LetNoExceptionThrough) {
    EXPECT_TRUE(DrawFrame());
    EXPECT_TRUE(DrawFrame());
    root.throws = true;
    EXPECT_TRUE(DrawFrame());
    root.throws = false;
    EXPECT_TRUE(root.IsFrameDue());  // a frame that failed is repeated
    EXPECT_TRUE(DrawFrame());
    EXPECT_FALSE(root.IsFrameDue());
}

TEST(Swaps, DoNotWaitForTheScreen) {
    for (const char* extension : {"GLX_EXT_swap_control", "GLX_MESA_swap_control"}) {
        SCOPED_TRACE(extension);
        offeredExtension = extension;
        swapInterval = 1;
        HostWindow host;
        host.Sync();
        const auto window = PuglWindow::Create(host.GetId(), "Swaps", 1000, 600);
        swaps = waits = 0;
        Root root(host);
        window->SetRoot(root);
        EXPECT_TRUE(WaitFor([&] { return root.count > 2; },
                            [&] {
                                root.redrawNeeded = true;
                                window->PostRedisplay();
                                window->ProcessEvents();
                            }));
        EXPECT_GT(swaps, 0);
        EXPECT_EQ(waits, 0);
        window->MakeCurrent();
    }
    offeredExtension = nullptr;
}

}  // namespace
}  // namespace brindle
