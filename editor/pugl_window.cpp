// SPDX-License-Identifier: ISC
#include "editor/pugl_window.h"

#include <GL/glx.h>
#include <pugl/pugl.h>

#include <chrono>
#include <thread>
#include <type_traits>

#include "editor/contain.h"
#include "editor/x11_watch.h"

namespace brindle {
namespace {

constexpr auto kWaitStep = std::chrono::microseconds(500);
constexpr int kWaitSteps = 2000;  // a second in all; the server answers within milliseconds
constexpr int kButtons = 3;       // those above are wheels, or a mouse's side buttons

}  // namespace

/// The window's state, and what Pugl calls with it as handle.
struct PuglWindow::Impl {
    PuglWindow& window;
    PuglView* view = nullptr;
    Window parent = 0;
    Display* display = nullptr;  ///< Pugl's own connection; null until its first callback
    GLXContext context = nullptr;
    std::unique_ptr<X11Watch> watch;  ///< as long as `display`
    const PuglCallbacks* callbacks = nullptr;
    void* handle = nullptr;
    WindowSize reported;
    uint32_t eventTime = 0;

    explicit Impl(PuglWindow& owner) : window(owner) {}

    static Impl& Of(PuglView* view) { return *static_cast<Impl*>(puglGetHandle(view)); }

    template <typename... Args>
    void Call(void (*PuglCallbacks::*callback)(PuglWindow&, Args...),
              std::type_identity_t<Args>... args) {
        if (callbacks != nullptr) Contain([&] { (callbacks->*callback)(window, args...); });
    }

    void ReportSize() {
        if (callbacks != nullptr && reported != watch->GetSize()) {
            reported = watch->GetSize();
            Call(&PuglCallbacks::reshape, reported.width, reported.height);
        }
    }

    InputEvent TakeEvent(int type) {
        const InputEvent event = watch->Take(type);
        eventTime = event.time;
        return event;
    }

    /// The only place where Pugl lets see its connection and context: they are current here.
    static void OnFirstReshape(PuglView* view, int, int) {
        Impl& impl = Of(view);
        if (impl.watch == nullptr) {
            impl.display = glXGetCurrentDisplay();
            impl.context = glXGetCurrentContext();
            Contain([&] {
                impl.watch = std::make_unique<X11Watch>(
                    impl.display, static_cast<Window>(puglGetNativeWindow(view)), impl.parent);
            });
        }
    }

    static void OnDisplay(PuglView* view) {
        Impl& impl = Of(view);
        impl.ReportSize();
        impl.Call(&PuglCallbacks::display);
    }

    static void OnMotion(PuglView* view, int x, int y) {
        Of(view).Call(&PuglCallbacks::motion, x, y);
    }

    static void OnMouse(PuglView* view, int button, bool press, int x, int y) {
        Impl& impl = Of(view);
        impl.TakeEvent(press ? ButtonPress : ButtonRelease);
        if (button <= kButtons) impl.Call(&PuglCallbacks::mouse, button, press, x, y);
    }

    static void OnScroll(PuglView* view, float dx, float dy) {
        Impl& impl = Of(view);
        const InputEvent event = impl.TakeEvent(ButtonPress);
        impl.Call(&PuglCallbacks::scroll, event.x, event.y, dx, dy);
    }

    static void OnKeyboard(PuglView* view, bool press, uint32_t character) {
        Impl& impl = Of(view);
        impl.TakeEvent(press ? KeyPress : KeyRelease);
        impl.Call(&PuglCallbacks::keyboard, press, character);
    }

    static void OnSpecial(PuglView* view, bool press, PuglKey key) {
        Impl& impl = Of(view);
        impl.TakeEvent(press ? KeyPress : KeyRelease);
        impl.Call(&PuglCallbacks::special, press, static_cast<int>(key));
    }
};

PuglWindow::PuglWindow() : impl_(std::make_unique<Impl>(*this)) {}

std::unique_ptr<PuglWindow> PuglWindow::Create(uintptr_t parent, const char* title, int width,
                                               int height) {
    if (!CanOpenWindow(parent)) return nullptr;
    std::unique_ptr<PuglWindow> window(new PuglWindow);
    PuglView* view = puglCreate(static_cast<PuglNativeWindow>(parent), title, width, height, true);
    if (view == nullptr) return nullptr;
    window->impl_->view = view;
    window->impl_->parent = parent;
    puglSetHandle(view, window->impl_.get());
    puglSetReshapeFunc(view, Impl::OnFirstReshape);

    // Pugl leaves its requests unsent, so until events are processed the window does not exist for
    // the host. Without a display function nothing of ours is drawn meanwhile.
    for (int step = 0; step < kWaitSteps && window->impl_->watch == nullptr; ++step) {
        puglProcessEvents(view);
        std::this_thread::sleep_for(kWaitStep);
    }
    if (window->impl_->watch == nullptr) return nullptr;
    puglSetDisplayFunc(view, Impl::OnDisplay);
    puglSetMotionFunc(view, Impl::OnMotion);
    puglSetMouseFunc(view, Impl::OnMouse);
    puglSetScrollFunc(view, Impl::OnScroll);
    puglSetKeyboardFunc(view, Impl::OnKeyboard);
    puglSetSpecialFunc(view, Impl::OnSpecial);
    return window;
}

PuglWindow::~PuglWindow() {
    // A context that is destroyed while current dangles, and takes the host down some openings on.
    if (impl_->context != nullptr && glXGetCurrentContext() == impl_->context) {
        glXMakeCurrent(impl_->display, None, nullptr);
    }
    if (impl_->view != nullptr) puglDestroy(impl_->view);
}

void PuglWindow::SetCallbacks(const PuglCallbacks* callbacks, void* handle) {
    impl_->callbacks = callbacks;
    impl_->handle = handle;
    impl_->reported = {};
    impl_->ReportSize();
    PostRedisplay();
}

uintptr_t PuglWindow::GetNativeWindow() const {
    return static_cast<uintptr_t>(puglGetNativeWindow(impl_->view));
}

void PuglWindow::ProcessEvents() {
    impl_->watch->ReadAhead();
    if (impl_->watch->IsGone()) return;
    impl_->watch->FollowParent();
    impl_->ReportSize();
    puglProcessEvents(impl_->view);
}

void PuglWindow::PostRedisplay() {
    puglPostRedisplay(impl_->view);
}

void* PuglWindow::GetHandle() const {
    return impl_->handle;
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

uint32_t PuglWindow::GetEventTime() const {
    return impl_->eventTime;
}

uint32_t PuglWindow::GetModifiers() const {
    return static_cast<uint32_t>(puglGetModifiers(impl_->view));
}

}  // namespace brindle
