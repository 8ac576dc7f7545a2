// SPDX-License-Identifier: ISC
#include "editor/pugl_window.h"

#include <GL/glx.h>
#include <X11/cursorfont.h>
#include <pugl/pugl.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <thread>
#include <utility>

#include "editor/GLView_BaseView.h"
#include "editor/contain.h"
#include "editor/draw_mutex.h"
#include "editor/host_context.h"
#include "editor/x11_watch.h"

namespace brindle {
namespace {

constexpr auto kWaitStep = std::chrono::microseconds(500);
constexpr int kWaitSteps = 2000;  // one second; the server answers within milliseconds
/// The pointer's shapes in the order of `PointerShape`, without the arrow, which is the parent's.
constexpr std::array<unsigned, 4> kCursors = {XC_sb_v_double_arrow, XC_sb_h_double_arrow, XC_fleur,
                                              XC_hand2};
constexpr int kButtons = 3;  // higher ones are wheels or side buttons

/// Makes swaps not wait for the screen, which would block the host. The context must be current, in
/// `window`.
void SwapAtOnce(Display* display, Window window) {
    const char* extensions = glXQueryExtensionsString(display, DefaultScreen(display));
    const auto function = [extensions](const char* extension, const char* name) {
        const bool has = extensions != nullptr && std::strstr(extensions, extension) != nullptr;
        return has ? glXGetProcAddressARB(reinterpret_cast<const GLubyte*>(name)) : nullptr;
    };
    if (auto* forWindow = function("GLX_EXT_swap_control", "glXSwapIntervalEXT")) {
        reinterpret_cast<PFNGLXSWAPINTERVALEXTPROC>(forWindow)(display, window, 0);
    } else if (auto* forContext = function("GLX_MESA_swap_control", "glXSwapIntervalMESA")) {
        reinterpret_cast<PFNGLXSWAPINTERVALMESAPROC>(forContext)(0);
    }
}

}  // namespace

/// The callbacks for Pugl; the window's state is their handle.
struct PuglWindow::Impl {
    PuglView* view = nullptr;
    Window parent = 0;
    Display* display = nullptr;  ///< Pugl's own connection; null until the first callback
    GLXContext context = nullptr;
    std::unique_ptr<X11Watch> watch;  ///< null until the first callback
    GLView_BaseView* root = nullptr;
    WindowSize reported;
    bool frameRequested = false;
    PointerShape pointerShape = PointerShape::Arrow;  ///< as shown
    std::array<Cursor, kCursors.size()> cursors{};    ///< made when they are first shown
    float pointerX = 0.0f;                            ///< its last reported position
    float pointerY = 0.0f;

    static Impl& Of(PuglView* view) { return *static_cast<Impl*>(puglGetHandle(view)); }

    void ReportSize() {
        if (root == nullptr || reported == watch->GetSize()) return;
        reported = watch->GetSize();
        root->SetWindowSize(static_cast<float>(reported.width),
                            static_cast<float>(reported.height));
    }

    void SetPointer(int x, int y) {
        pointerX = static_cast<float>(x);
        pointerY = static_cast<float>(y);
    }

    bool IsHeld() const {
        return root != nullptr &&
               (root->GetCapturedView() != nullptr || root->GetPressedButton() != 0);
    }

    /// Ends a press as a release does; the server does not always send one.
    void EndHold() {
        if (!IsHeld()) return;
        Contain([&] { root->MouseButton(root->GetPressedButton(), false, pointerX, pointerY); });
    }

    void Dispatch() {
        const HostContext hostContext;
        puglProcessEvents(view);
    }

    /// Gives the pointer the shape of the view under it.
    void ShapePointer() {
        if (std::exchange(pointerShape, root->GetPointerShape()) == root->GetPointerShape()) return;
        const auto window = static_cast<Window>(puglGetNativeWindow(view));
        if (pointerShape == PointerShape::Arrow) {
            XUndefineCursor(display, window);
        } else {
            const auto shape = static_cast<size_t>(pointerShape) - 1;
            if (cursors[shape] == None) {
                cursors[shape] = XCreateFontCursor(display, kCursors[shape]);
            }
            XDefineCursor(display, window, cursors[shape]);
        }
        XFlush(display);
    }

    /// Asks Pugl for a frame if the window was asked for one and it would differ.
    bool PassRequestOn() {
        if (!std::exchange(frameRequested, false)) return false;
        bool isDue = false;
        Contain([&] { isDue = root->IsFrameDue(); });
        if (isDue) puglPostRedisplay(view);
        return isDue;
    }

    uint32_t GetModifiers() const { return static_cast<uint32_t>(puglGetModifiers(view)); }

    void PrintModifiers() const {
        const uint32_t modifiers = GetModifiers();
        std::fprintf(stderr, "Modifiers:%s%s%s%s\n", (modifiers & 1u) != 0 ? " Shift" : "",
                     (modifiers & 2u) != 0 ? " Ctrl" : "", (modifiers & 4u) != 0 ? " Alt" : "",
                     (modifiers & 8u) != 0 ? " Super" : "");
    }

    /// The only callback that can see Pugl's connection and context: they are current here unless
    /// the driver has failed.
    static void OnFirstReshape(PuglView* view, int, int) {
        Impl& impl = Of(view);
        const auto window = static_cast<Window>(puglGetNativeWindow(view));
        if (impl.watch == nullptr && glXGetCurrentDrawable() == window) {
            impl.display = glXGetCurrentDisplay();
            impl.context = glXGetCurrentContext();
            SwapAtOnce(impl.display, window);
            Contain([&] {
                impl.watch = std::make_unique<X11Watch>(impl.display, window, impl.parent);
            });
        }
    }

    static void OnDisplay(PuglView* view) {
        Impl& impl = Of(view);
        impl.ReportSize();
        const bool isShown = Contain([&] {
            const std::lock_guard lock(drawMutex);
            impl.root->RenderFrame();
        });
        if (!isShown) impl.root->redrawNeeded = true;
    }

    static void OnMotion(PuglView* view, int x, int y) {
        Impl& impl = Of(view);
        if (!impl.watch->Pop(MotionNotify).hasButton) impl.EndHold();
        impl.SetPointer(x, y);
        Contain([&] {
            impl.root->SetModifiers(impl.GetModifiers());
            impl.root->PointerMotion(impl.pointerX, impl.pointerY);
        });
    }

    static void OnMouse(PuglView* view, int button, bool press, int x, int y) {
        Impl& impl = Of(view);
        impl.root->SetEventTime(impl.watch->Pop(press ? ButtonPress : ButtonRelease).time_ms);
        if (button > kButtons) return;
        impl.SetPointer(x, y);
        Contain([&] {
            impl.root->SetModifiers(impl.GetModifiers());
            impl.root->MouseButton(button, press, impl.pointerX, impl.pointerY);
        });
    }

    static void OnScroll(PuglView* view, float /*dx*/, float dy) {
        Impl& impl = Of(view);
        impl.watch->Pop(ButtonPress);
        Contain([&] {
            impl.root->SetModifiers(impl.GetModifiers());
            impl.root->MouseWheel(dy);
        });
    }

    static void OnKeyboard(PuglView* view, bool press, uint32_t character) {
        Impl& impl = Of(view);
        std::fprintf(stderr, "Key %c %s ", static_cast<int>(character), press ? "down" : "up");
        impl.PrintModifiers();
        impl.root->SetEventTime(impl.watch->Pop(press ? KeyPress : KeyRelease).time_ms);
        impl.root->Key(press, character);
    }

    static void OnSpecial(PuglView* view, bool press, PuglKey key) {
        Impl& impl = Of(view);
        std::fprintf(stderr, "Special key %d %s ", static_cast<int>(key), press ? "down" : "up");
        impl.PrintModifiers();
        impl.root->SetEventTime(impl.watch->Pop(press ? KeyPress : KeyRelease).time_ms);
        impl.root->SpecialKey(press, static_cast<uint32_t>(key));
    }
};

PuglWindow::PuglWindow() : impl_(std::make_unique<Impl>()) {}

std::unique_ptr<PuglWindow> PuglWindow::Create(uintptr_t parent, const char* title, int width,
                                               int height) {
    const HostContext hostContext;
    // Kept open until Pugl's connection is, so that the driver is loaded once.
    const OwnedDisplay probe = ProbeWindow(parent);
    if (probe == nullptr) return nullptr;
    std::unique_ptr<PuglWindow> window(new PuglWindow);
    PuglView* view = puglCreate(static_cast<PuglNativeWindow>(parent), title, width, height, true);
    if (view == nullptr) return nullptr;
    window->impl_->view = view;
    window->impl_->parent = parent;
    puglSetHandle(view, window->impl_.get());
    puglSetReshapeFunc(view, Impl::OnFirstReshape);

    // Pugl does not flush its requests, so the window does not exist for the host until events are
    // processed. Without a display function nothing is drawn meanwhile.
    for (int step = 0; step < kWaitSteps && window->impl_->watch == nullptr; ++step) {
        puglProcessEvents(view);
        std::this_thread::sleep_for(kWaitStep);
    }
    if (window->impl_->watch == nullptr) return nullptr;
    return window;
}

PuglWindow::~PuglWindow() {
    // A context that is destroyed while current dangles, and crashes the host some openings later.
    if (impl_->context != nullptr && glXGetCurrentContext() == impl_->context) {
        glXMakeCurrent(impl_->display, None, nullptr);
    }
    if (impl_->view != nullptr) puglDestroy(impl_->view);
}

void PuglWindow::SetRoot(GLView_BaseView& root) {
    impl_->root = &root;
    impl_->reported = {};
    impl_->ReportSize();
    puglSetDisplayFunc(impl_->view, Impl::OnDisplay);
    puglSetMotionFunc(impl_->view, Impl::OnMotion);
    puglSetMouseFunc(impl_->view, Impl::OnMouse);
    puglSetScrollFunc(impl_->view, Impl::OnScroll);
    puglSetKeyboardFunc(impl_->view, Impl::OnKeyboard);
    puglSetSpecialFunc(impl_->view, Impl::OnSpecial);
    PostRedisplay();
}

uintptr_t PuglWindow::GetNativeWindow() const {
    return static_cast<uintptr_t>(puglGetNativeWindow(impl_->view));
}

void PuglWindow::ProcessEvents() {
    const bool hasEvents = impl_->watch->ReadAhead();
    if (impl_->watch->IsGone()) {
        if (impl_->IsHeld()) impl_->EndHold();
        return;
    }
    impl_->watch->FollowParent();
    impl_->ReportSize();
    if (hasEvents) impl_->Dispatch();
    impl_->watch->PassKeysOn();
    // A hidden window gets no release.
    if (impl_->IsHeld() && !impl_->watch->IsShown()) impl_->EndHold();
    if (impl_->watch->HasLeft() && !impl_->IsHeld()) impl_->root->PointerLeft();
    impl_->ShapePointer();
    if (impl_->PassRequestOn()) impl_->Dispatch();
}

void PuglWindow::PostRedisplay() {
    impl_->frameRequested = true;
}

bool PuglWindow::MakeCurrent() {
    impl_->watch->ReadAhead();
    if (!impl_->watch->IsGone() &&
        glXMakeCurrent(impl_->display, static_cast<Window>(GetNativeWindow()), impl_->context) !=
            False) {
        return true;
    }
    glXMakeCurrent(impl_->display, None, nullptr);
    return false;
}

}  // namespace brindle
