// SPDX-License-Identifier: ISC
/// The program's window as another client of the X server sees it, and a user's hands on it.
#pragma once

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace brindle::test {

class OpenedWindow {
  public:
    /// Waits until a window with this title stands on the screen and the editor in it has drawn.
    explicit OpenedWindow(const std::string& title) : display_(XOpenDisplay(nullptr)) {
        if (!display_) throw std::runtime_error("no display");
        // A window may go between two looks at it.
        XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
        wait_for([&] {
            window_ = child_named(title);
            return window_ != 0 && child() != 0 && is_drawn();
        });
    }
    OpenedWindow(const OpenedWindow&) = delete;
    OpenedWindow& operator=(const OpenedWindow&) = delete;
    ~OpenedWindow() { XCloseDisplay(display_); }

    /// As a window manager does it whose close button is pressed.
    void close() {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = window_;
        event.xclient.message_type = XInternAtom(display_, "WM_PROTOCOLS", False);
        event.xclient.format = 32;
        event.xclient.data.l[0] =
            static_cast<long>(XInternAtom(display_, "WM_DELETE_WINDOW", False));
        XSendEvent(display_, window_, False, NoEventMask, &event);
        XSync(display_, False);
    }

    /// Presses the first button at a point of the window, moves in steps and lets go.
    void drag(int x, int y, int dx, int dy) {
        constexpr int kSteps = 10;
        move_to(x, y);
        XTestFakeButtonEvent(display_, 1, True, CurrentTime);
        for (int i = 1; i <= kSteps; ++i) move_to(x + dx * i / kSteps, y + dy * i / kSteps);
        XTestFakeButtonEvent(display_, 1, False, CurrentTime);
        rest();
    }

    /// Width and height of the window, and those of the screen.
    std::pair<int, int> size() { return size_of(window_); }
    std::pair<int, int> screen_size() { return size_of(DefaultRootWindow(display_)); }

    /// Resizes the window and waits until the editor in it has the same size; false if it never
    /// has.
    bool resize(int width, int height) {
        XResizeWindow(display_, window_, static_cast<unsigned>(width),
                      static_cast<unsigned>(height));
        return wait_for([&] {
            XWindowAttributes inner{};
            XGetWindowAttributes(display_, child(), &inner);
            return inner.width == width && inner.height == height;
        });
    }

  private:
    std::pair<int, int> size_of(Window window) {
        XWindowAttributes attributes{};
        XGetWindowAttributes(display_, window, &attributes);
        return {attributes.width, attributes.height};
    }

    template <typename Done>
    static bool wait_for(Done done) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (!done()) {
            if (std::chrono::steady_clock::now() > end) return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return true;
    }

    template <typename Use>
    void each_child(Window parent, Use use) {
        Window root = 0;
        Window* children = nullptr;
        unsigned count = 0;
        if (XQueryTree(display_, parent, &root, &parent, &children, &count) == 0) return;
        for (unsigned i = 0; i < count; ++i) use(children[i]);
        if (children) XFree(children);
    }

    Window child_named(const std::string& title) {
        Window found = 0;
        each_child(DefaultRootWindow(display_), [&](Window window) {
            char* name = nullptr;
            XWindowAttributes attributes{};
            if (XFetchName(display_, window, &name) != 0 && title == name &&
                XGetWindowAttributes(display_, window, &attributes) != 0 &&
                attributes.map_state == IsViewable) {
                found = window;
            }
            XFree(name);
        });
        return found;
    }

    Window child() {
        Window found = 0;
        each_child(window_, [&](Window window) { found = window; });
        return found;
    }

    bool is_drawn() {
        XImage* image = XGetImage(display_, child(), 2, 2, 1, 1, AllPlanes, ZPixmap);
        const bool is_drawn = image && XGetPixel(image, 0, 0) % 0x1000000 != 0;
        if (image) XDestroyImage(image);
        return is_drawn;
    }

    void move_to(int x, int y) {
        int left = 0;
        int top = 0;
        Window ignored = 0;
        XTranslateCoordinates(display_, window_, DefaultRootWindow(display_), x, y, &left, &top,
                              &ignored);
        XTestFakeMotionEvent(display_, -1, left, top, CurrentTime);
        rest();
    }

    /// Longer than the time between two looks at events.
    void rest() {
        XSync(display_, False);
        std::this_thread::sleep_for(std::chrono::milliseconds(60));
    }

    Display* display_;
    Window window_ = 0;
};

}  // namespace brindle::test
