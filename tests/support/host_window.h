// SPDX-License-Identifier: ISC
/// A host's side of the screen: the editor's parent window, the pointer and the visible pixels.
/// Needs an X server without other windows (see with_display).
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
#include <vector>

namespace brindle {

/// Calls `step` every millisecond until `done` returns true; false if `limit` expires first.
template <typename Done, typename Step>
bool WaitFor(Done done, Step step, std::chrono::milliseconds limit = std::chrono::seconds(2)) {
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

class HostWindow {
  public:
    explicit HostWindow(int width = 1000, int height = 600) : display(XOpenDisplay(nullptr)) {
        if (display == nullptr) throw std::runtime_error("no display");
        KeepDriver();
        XSetWindowAttributes attributes{};
        attributes.override_redirect = True;
        id = XCreateWindow(display, DefaultRootWindow(display), kLeft, kTop,
                           static_cast<unsigned>(width), static_cast<unsigned>(height), 0,
                           CopyFromParent, InputOutput, nullptr, CWOverrideRedirect, &attributes);
        XMapRaised(display, id);
        MovePointer(-10, -10);
    }
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;
    ~HostWindow() { XCloseDisplay(display); }

    uintptr_t GetId() const { return id; }

    void Resize(int width, int height) { ResizeWindow(id, width, height); }
    /// Resizes a window, like a host that sizes its editors itself.
    void ResizeWindow(Window window, int width, int height) {
        XResizeWindow(display, window, static_cast<unsigned>(width), static_cast<unsigned>(height));
        Sync();
    }
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
    void Sync() { XSync(display, False); }

    // The pointer, in pixels from the window's top left corner.
    void MovePointer(int x, int y) {
        XTestFakeMotionEvent(display, -1, kLeft + x, kTop + y, CurrentTime);
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
    void Press(unsigned button = 1) { Button(button, True); }
    void Release(unsigned button = 1) { Button(button, False); }
    void Click(unsigned button = 1) {
        Press(button);
        Release(button);
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

    /// A window's pixel as 0xRRGGBB.
    uint32_t GetPixel(uintptr_t window, int x, int y) {
        XImage* image = XGetImage(display, window, x, y, 1, 1, AllPlanes, ZPixmap);
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
    bool HasSize(uintptr_t window, int width, int height) {
        XWindowAttributes attributes{};
        XGetWindowAttributes(display, window, &attributes);
        return attributes.width == width && attributes.height == height;
    }
    bool IsShown(uintptr_t window) {
        XWindowAttributes attributes{};
        return XGetWindowAttributes(display, window, &attributes) != 0 &&
               attributes.map_state == IsViewable;
    }

  private:
    static constexpr int kLeft = 60;  // on the screen; leaves room for the pointer outside
    static constexpr int kTop = 40;

    void Button(unsigned button, Bool press) {
        XTestFakeButtonEvent(display, button, press, CurrentTime);
        Sync();
    }

    Display* display;
    Window id = 0;
};

}  // namespace brindle
