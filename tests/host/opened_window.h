// SPDX-License-Identifier: ISC
/// The program's window as another client of the X server sees it, and a user's hands on it.
#pragma once

#include <string>

#include "tests/support/host_window.h"

namespace brindle::test {

class OpenedWindow : UsedWindow {
  public:
    /// Waits until a window with this title stands on the screen and the editor in it has drawn.
    explicit OpenedWindow(const std::string& title) {
        // A window may go between two looks at it.
        XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
        WaitFor(
            [&] {
                id = child_named(title);
                return id != 0 && child() != 0 && GetPixel(child(), 2, 2) != 0;
            },
            [] {});
    }

    /// As a window manager does it whose close button is pressed.
    void close() {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = id;
        event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
        event.xclient.format = 32;
        event.xclient.data.l[0] =
            static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
        XSendEvent(display, id, False, NoEventMask, &event);
        Sync();
    }

    /// Presses the first button at a point of the window, moves in steps and lets go.
    void drag(int x, int y, int dx, int dy) {
        constexpr int kSteps = 10;
        Window ignored = 0;
        XTranslateCoordinates(display, id, DefaultRootWindow(display), 0, 0, &left, &top, &ignored);
        for (int i = 0; i <= kSteps; ++i) {
            MovePointer(x + dx * i / kSteps, y + dy * i / kSteps);
            rest();
            if (i == 0) Press();
        }
        Release();
        rest();
    }

    std::pair<int, int> size() { return GetSize(id); }
    std::pair<int, int> screen_size() { return GetSize(DefaultRootWindow(display)); }

    /// Resizes the window and waits until the editor in it has the same size; false if it never
    /// has.
    bool resize(int width, int height) {
        ResizeWindow(id, width, height);
        return WaitFor([&] { return HasSize(child(), width, height); }, [] {});
    }

  private:
    template <typename Use>
    void each_child(Window parent, Use use) {
        Window root = 0;
        Window* children = nullptr;
        unsigned count = 0;
        if (XQueryTree(display, parent, &root, &parent, &children, &count) == 0) return;
        for (unsigned i = 0; i < count; ++i) use(children[i]);
        if (children) XFree(children);
    }

    Window child_named(const std::string& title) {
        Window found = 0;
        each_child(DefaultRootWindow(display), [&](Window window) {
            char* name = nullptr;
            if (XFetchName(display, window, &name) != 0 && title == name && IsShown(window)) {
                found = window;
            }
            XFree(name);
        });
        return found;
    }

    Window child() {
        Window found = 0;
        each_child(id, [&](Window window) { found = window; });
        return found;
    }

    /// Longer than the time between two looks at events.
    static void rest() { std::this_thread::sleep_for(std::chrono::milliseconds(60)); }
};

}  // namespace brindle::test
