// SPDX-License-Identifier: ISC
/// Windows as a test uses them: a host's, the pointer on them and the visible pixels. Needs an X
/// server without other windows (see with_display).
#pragma once

#include <GL/glx.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace brindle {

/// Calls `step` every millisecond until `done` returns true; false if `limit` expires first.
template <typename Done, typename Step>
bool WaitFor(Done done, Step step, std::chrono::milliseconds limit = std::chrono::seconds(30)) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!done()) {
        if (std::chrono::steady_clock::now() > end) return false;
        step();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

#ifdef __SANITIZE_ADDRESS__
/// Keeps the GL driver loaded. Otherwise it is unloaded with the last window, and memory that it
/// did not free is reported as a leak.
inline void KeepDriver() {
    static Display* const kept = [] {
        Display* display = XOpenDisplay(nullptr);
        int wanted[] = {GLX_RGBA, GLX_DOUBLEBUFFER, 0};
        XVisualInfo* visual = glXChooseVisual(display, DefaultScreen(display), wanted);
        if (visual != nullptr) XFree(visual);
        return display;
    }();
    static_cast<void>(kept);
}
#else
inline void KeepDriver() {}
#endif

/// A window that a test uses from outside.
class UsedWindow {
  public:
    UsedWindow() : display(XOpenDisplay(nullptr)) {
        if (display == nullptr) throw std::runtime_error("no display");
    }
    UsedWindow(const UsedWindow&) = delete;
    UsedWindow& operator=(const UsedWindow&) = delete;
    ~UsedWindow() { XCloseDisplay(display); }

    uintptr_t GetId() const { return id; }
    /// Waits until other clients can read their events: the server answers the second request after
    /// it has sent everything that it had for anyone at the first.
    void Sync() {
        XSync(display, False);
        XSync(display, False);
    }
    /// Resizes a window, like a host that sizes its editors itself.
    void ResizeWindow(Window window, int width, int height) {
        XResizeWindow(display, window, static_cast<unsigned>(width), static_cast<unsigned>(height));
        Sync();
    }

    // The pointer, in pixels from the window's top left corner.
    void MovePointer(int x, int y) {
        XTestFakeMotionEvent(display, -1, left + x, top + y, CurrentTime);
        Sync();
    }
    void Press(unsigned button = 1, unsigned long after_ms = 0) { Button(button, True, after_ms); }
    void Release(unsigned button = 1) { Button(button, False, 0); }
    void Click(unsigned button = 1) {
        Press(button);
        Release(button);
    }

    /// A window's pixel as 0xRRGGBB, 0 if it has none.
    uint32_t GetPixel(uintptr_t window, int x, int y) {
        XImage* image = XGetImage(display, window, x, y, 1, 1, AllPlanes, ZPixmap);
        if (image == nullptr) return 0;
        const auto pixel = static_cast<uint32_t>(XGetPixel(image, 0, 0));
        XDestroyImage(image);
        return pixel & 0xffffffu;
    }
    /// The pixels of a window's upper left part, row by row, as 0xRRGGBB.
    std::vector<uint32_t> GetPixels(uintptr_t window, int width, int height) {
        XImage* image = XGetImage(display, window, 0, 0, static_cast<unsigned>(width),
                                  static_cast<unsigned>(height), AllPlanes, ZPixmap);
        std::vector<uint32_t> pixels;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                pixels.push_back(static_cast<uint32_t>(XGetPixel(image, x, y)) & 0xffffffu);
            }
        }
        XDestroyImage(image);
        return pixels;
    }
    /// Width and height, 0 if there is no such window.
    std::pair<int, int> GetSize(uintptr_t window) {
        XWindowAttributes attributes{};
        XGetWindowAttributes(display, window, &attributes);
        return {attributes.width, attributes.height};
    }
    bool HasSize(uintptr_t window, int width, int height) {
        return GetSize(window) == std::pair(width, height);
    }
    bool IsShown(uintptr_t window) {
        XWindowAttributes attributes{};
        return XGetWindowAttributes(display, window, &attributes) != 0 &&
               attributes.map_state == IsViewable;
    }

  protected:
    Display* display;
    Window id = 0;
    int left = 0;  ///< the window's place on the screen
    int top = 0;

  private:
    void Button(unsigned button, Bool press, unsigned long after_ms) {
        XTestFakeButtonEvent(display, button, press, after_ms);
        Sync();
    }
};

/// A host's window, the parent of an editor. Left and above there is room for the pointer outside.
class HostWindow : public UsedWindow {
  public:
    explicit HostWindow(int width = 1000, int height = 600) {
        KeepDriver();
        left = 60;
        top = 40;
        XSetWindowAttributes attributes{};
        attributes.override_redirect = True;
        id = XCreateWindow(display, DefaultRootWindow(display), left, top,
                           static_cast<unsigned>(width), static_cast<unsigned>(height), 0,
                           CopyFromParent, InputOutput, nullptr, CWOverrideRedirect, &attributes);
        XMapRaised(display, id);
        MovePointer(-10, -10);
    }

    void Resize(int width, int height) { ResizeWindow(id, width, height); }
    /// A window that takes input but shows nothing.
    uintptr_t MakeInvisibleChild() {
        const Window child =
            XCreateWindow(display, id, 0, 0, 10, 10, 0, 0, InputOnly, nullptr, 0, nullptr);
        Sync();
        return child;
    }
    void Destroy() {
        XDestroyWindow(display, id);
        Sync();
    }
    void Show(Window window) {
        XMapWindow(display, window);
        Sync();
    }
    void Hide(Window window) {
        XUnmapWindow(display, window);
        Sync();
    }
    /// Grabs the pointer from the window under it.
    void Grab() {
        XGrabPointer(display, id, False, ButtonPressMask, GrabModeAsync, GrabModeAsync, None, None,
                     CurrentTime);
        Sync();
    }
    void Ungrab() {
        XUngrabPointer(display, CurrentTime);
        Sync();
    }
    unsigned KeyCode(KeySym symbol) { return XKeysymToKeycode(display, symbol); }
    void Key(KeySym symbol, bool press) {
        XTestFakeKeyEvent(display, KeyCode(symbol), press ? True : False, CurrentTime);
        Sync();
    }
    /// Sends keys to a window, wherever the pointer is.
    void Focus(uintptr_t window) {
        XSetInputFocus(display, window, RevertToPointerRoot, CurrentTime);
        Sync();
    }
    /// Sends a synthetic key event, marked as sent, to a window.
    void SendKey(uintptr_t window, XKeyEvent key) {
        XEvent event{};
        event.xkey = key;
        event.xkey.window = window;
        XSendEvent(display, window, False, KeyPressMask, &event);
        Sync();
    }
    /// The keys that the host's window has received since the last call.
    std::vector<XKeyEvent> TakeKeys() {
        Sync();
        std::vector<XKeyEvent> keys;
        while (XPending(display) > 0) {
            XEvent event{};
            XNextEvent(display, &event);
            const bool isKey = event.type == KeyPress || event.type == KeyRelease;
            if (isKey && event.xkey.window == id) keys.push_back(event.xkey);
        }
        return keys;
    }
    /// Sends a press of button 1 with a time in ms directly to a window.
    void SendPress(uintptr_t window, int x, int y, uint32_t time) {
        XEvent event{};
        event.xbutton.type = ButtonPress;
        event.xbutton.window = window;
        event.xbutton.root = DefaultRootWindow(display);
        event.xbutton.time = time;
        event.xbutton.x = x;
        event.xbutton.y = y;
        event.xbutton.button = Button1;
        event.xbutton.same_screen = True;
        XSendEvent(display, window, False, ButtonPressMask, &event);
        Sync();
    }
};

}  // namespace brindle
