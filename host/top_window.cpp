// SPDX-License-Identifier: ISC
#include "host/top_window.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <memory>
#include <utility>

#include "host/user_error.h"

namespace brindle {
namespace {

/// In smaller windows the editor's texts are illegible.
constexpr PixelSize kSmallest = {500, 300};

struct ImageFree {
    void operator()(XImage* image) const { XDestroyImage(image); }
};
struct XFreeMemory {
    void operator()(void* memory) const { XFree(memory); }
};

/// A size, or the screen's where that is smaller.
PixelSize fitting(Display* display, PixelSize size) {
    const int screen = DefaultScreen(display);
    return {std::min(size.width, DisplayWidth(display, screen)),
            std::min(size.height, DisplayHeight(display, screen))};
}

Window make_window(Display* display, PixelSize size, bool bare) {
    XSetWindowAttributes attributes{};
    attributes.override_redirect = bare ? True : False;
    attributes.event_mask = StructureNotifyMask;
    return XCreateWindow(display, DefaultRootWindow(display), 0, 0,
                         static_cast<unsigned>(size.width), static_cast<unsigned>(size.height), 0,
                         CopyFromParent, InputOutput, nullptr, CWOverrideRedirect | CWEventMask,
                         &attributes);
}

/// Sets title, class and smallest size for window managers.
void describe(Display* display, Window window, const std::string& title) {
    XStoreName(display, window, title.c_str());
    XChangeProperty(display, window, XInternAtom(display, "_NET_WM_NAME", False),
                    XInternAtom(display, "UTF8_STRING", False), 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(title.data()),
                    static_cast<int>(title.size()));
    const std::unique_ptr<XSizeHints, XFreeMemory> limits(XAllocSizeHints());
    limits->flags = PMinSize;
    limits->min_width = kSmallest.width;
    limits->min_height = kSmallest.height;
    XSetWMNormalHints(display, window, limits.get());
    std::string name = "brindle";
    XClassHint hint = {name.data(), name.data()};
    XSetClassHint(display, window, &hint);
}

/// Xlib's handler gets no data of ours, so it has to find this by name.
std::function<void()>& when_server_is_lost() {
    static std::function<void()> save;
    return save;
}

}  // namespace

void TopWindow::on_server_lost(std::function<void()> save) {
    when_server_is_lost() = std::move(save);
    XSetIOErrorHandler([](Display*) {
        const auto use = std::exchange(when_server_is_lost(), nullptr);
        if (use) use();
        std::_Exit(1);
        return 0;
    });
}

TopWindow::TopWindow(const std::string& title, PixelSize size, Kind kind)
    : display_(XOpenDisplay(nullptr)) {
    if (display_ == nullptr) {
        throw UserError(
            "there is no display to open a window on; \"brindle screenshot\" needs none.");
    }
    window_ = make_window(display_, fitting(display_, size), kind == kBare);
    describe(display_, window_, title);
    Atom delete_atom = XInternAtom(display_, "WM_DELETE_WINDOW", False);
    XSetWMProtocols(display_, window_, &delete_atom, 1);
    delete_atom_ = delete_atom;
    // The editor uses a connection of its own, which must find the window.
    XSync(display_, False);
}

TopWindow::~TopWindow() {
    XCloseDisplay(display_);
}

void TopWindow::show() {
    XMapRaised(display_, window_);
    XSync(display_, False);
}

void TopWindow::resize(PixelSize size) {
    size = fitting(display_, size);
    XResizeWindow(display_, window_, static_cast<unsigned>(size.width),
                  static_cast<unsigned>(size.height));
    XFlush(display_);
}

void TopWindow::process_events(uintptr_t child) {
    while (XPending(display_) > 0) {
        XEvent event;
        XNextEvent(display_, &event);
        if (event.type == ConfigureNotify && child != 0) {
            XResizeWindow(display_, child, static_cast<unsigned>(event.xconfigure.width),
                          static_cast<unsigned>(event.xconfigure.height));
        } else if (event.type == ClientMessage) {
            closed_ = closed_ || static_cast<Atom>(event.xclient.data.l[0]) == delete_atom_;
        }
    }
    XFlush(display_);
}

bool TopWindow::has_room(PixelSize size) {
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) return false;
    const int screen = DefaultScreen(display);
    const bool has_room = DisplayWidth(display, screen) >= size.width &&
                          DisplayHeight(display, screen) >= size.height;
    XCloseDisplay(display);
    return has_room;
}

void TopWindow::read_pixels(uint32_t* pixels, PixelSize size) {
    const std::unique_ptr<XImage, ImageFree> image(
        XGetImage(display_, window_, 0, 0, static_cast<unsigned>(size.width),
                  static_cast<unsigned>(size.height), AllPlanes, ZPixmap));
    if (!image || image->depth < 24) throw UserError("the display does not show its colours.");
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            *pixels++ = static_cast<uint32_t>(XGetPixel(image.get(), x, y)) & 0xffffffu;
        }
    }
}

}  // namespace brindle
