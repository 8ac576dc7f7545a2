// SPDX-License-Identifier: ISC
#include "editor/x11_watch.h"

#include <GL/glx.h>
#include <X11/Xlibint.h>
#undef max
#undef min

#include <array>
#include <memory>

#include "editor/contain.h"

namespace brindle {
namespace {

/// The events that are listened to.
constexpr std::array kEvents = {KeyPress,      KeyRelease,    ButtonPress,
                                ButtonRelease, DestroyNotify, ConfigureNotify};

/// GLX errors about a drawable that is no more, from the extension's first error code.
constexpr std::array kLostDrawableErrors = {2 /* drawable */, 5 /* current window */,
                                            11 /* current drawable */, 12 /* window */};

/// Marks the connection's private data as a watch's; the watch itself belongs to someone else.
int KeepWatch(XExtData*) {
    return 0;
}

XExtData** PrivateData(Display* display) {
    XEDataObject object{};
    object.display = display;
    return XEHeadOfExtensionList(object);
}

X11Watch* FindWatch(Display* display) {
    for (XExtData* data = *PrivateData(display); data != nullptr; data = data->next) {
        if (data->free_private == KeepWatch) {
            return reinterpret_cast<X11Watch*>(data->private_data);
        }
    }
    return nullptr;
}

Bool IgnoreError(Display*, XErrorEvent*, xError*) {
    return False;
}

/// The loss of a window must not reach the error handler, which ends the process by default. A
/// filter of this connection leaves the handler, which the whole process shares, alone.
void IgnoreLostWindows(Display* display) {
    XESetWireToError(display, BadWindow, IgnoreError);
    XESetWireToError(display, BadDrawable, IgnoreError);
    int firstError = 0;
    int firstEvent = 0;
    if (glXQueryExtension(display, &firstError, &firstEvent) == False) {
        return;
    }
    for (int error : kLostDrawableErrors) {
        XESetWireToError(display, firstError + error, IgnoreError);
    }
}

/// A wheel's turn is reported as press and release of a button of its own.
bool IsWheel(unsigned button) {
    return button >= Button4 && button <= 7;
}

struct CloseDisplay {
    void operator()(Display* display) const { XCloseDisplay(display); }
};

}  // namespace

X11Watch::X11Watch(Display* newDisplay, Window newWindow, Window newParent)
    : display(newDisplay), window(newWindow), parent(newParent) {
    IgnoreLostWindows(display);

    auto* data = static_cast<XExtData*>(Xcalloc(1, sizeof(XExtData)));
    const XExtCodes* codes = XAddExtension(display);
    if (data == nullptr || codes == nullptr) {
        Xfree(data);
        return;
    }
    data->number = codes->extension;
    data->free_private = KeepWatch;
    data->private_data = reinterpret_cast<XPointer>(this);
    XAddToExtensionList(PrivateData(display), data);
    for (int event : kEvents) {
        XESetWireToEvent(display, event, [](Display* from, XEvent* to, xEvent* wire) {
            return OnEvent(from, to, wire);
        });
    }

    XWindowAttributes attributes{};
    if (XGetWindowAttributes(display, window, &attributes) != 0) {
        size = {attributes.width, attributes.height};
    }
    if (parent != 0 && XGetWindowAttributes(display, parent, &attributes) != 0) {
        parentSize = {attributes.width, attributes.height};
        XSelectInput(display, parent, StructureNotifyMask);
    }
}

Bool X11Watch::OnEvent(Display* display, XEvent* event, void* wire) {
    const Bool known = _XWireToEvent(display, event, static_cast<xEvent*>(wire));
    if (X11Watch* watch = FindWatch(display); watch != nullptr) {
        Contain([&] { watch->Record(*event); });
    }
    return known;
}

void X11Watch::Record(const XEvent& event) {
    switch (event.type) {
        case KeyPress:
        case KeyRelease:
            inputs.push_back(
                {event.type, static_cast<uint32_t>(event.xkey.time), event.xkey.x, event.xkey.y});
            break;
        case ButtonPress:
        case ButtonRelease:
            if (event.type == ButtonPress || !IsWheel(event.xbutton.button)) {
                inputs.push_back({event.type, static_cast<uint32_t>(event.xbutton.time),
                                  event.xbutton.x, event.xbutton.y});
            }
            break;
        case DestroyNotify:
            gone = gone || event.xdestroywindow.window == window;
            break;
        case ConfigureNotify: {
            const WindowSize newSize = {event.xconfigure.width, event.xconfigure.height};
            if (event.xconfigure.window == window) {
                RecordOwnSize(newSize);
            } else if (event.xconfigure.window == parent && newSize != parentSize) {
                parentSize = newSize;
                parentResized = true;
            }
            break;
        }
        default:
            break;
    }
}

void X11Watch::RecordOwnSize(WindowSize newSize) {
    if (newSize == size) {
        return;
    }
    size = newSize;
    while (!requested.empty() && requested.front() != newSize) {
        requested.pop_front();
    }
    if (requested.empty()) {
        hostSizesWindow = true;
    } else {
        requested.pop_front();
    }
}

void X11Watch::ReadAhead() {
    XPending(display);
}

InputEvent X11Watch::Take(int type) {
    while (!inputs.empty()) {
        const InputEvent input = inputs.front();
        inputs.pop_front();
        last = input;
        if (input.type == type) {
            break;
        }
    }
    return last;
}

void X11Watch::FollowParent() {
    if (parentResized && !hostSizesWindow && parentSize != size) {
        requested.push_back(parentSize);
        XResizeWindow(display, window, static_cast<unsigned>(parentSize.width),
                      static_cast<unsigned>(parentSize.height));
    }
    parentResized = false;
}

bool CanOpenWindow(Window parent) {
    const std::unique_ptr<Display, CloseDisplay> display(XOpenDisplay(nullptr));
    int firstError = 0;
    int firstEvent = 0;
    if (display == nullptr || glXQueryExtension(display.get(), &firstError, &firstEvent) == False) {
        return false;
    }
    // The visual that Pugl asks for, and the one that it is content with.
    std::array<int, 12> wanted = {GLX_RGBA,
                                  GLX_DOUBLEBUFFER,
                                  GLX_RED_SIZE,
                                  4,
                                  GLX_GREEN_SIZE,
                                  4,
                                  GLX_BLUE_SIZE,
                                  4,
                                  GLX_DEPTH_SIZE,
                                  16,
                                  0,
                                  0};
    std::array<int, 12> enough = {
        GLX_RGBA, GLX_RED_SIZE, 4, GLX_GREEN_SIZE, 4, GLX_BLUE_SIZE, 4, GLX_DEPTH_SIZE, 16, 0};
    const int screen = DefaultScreen(display.get());
    XVisualInfo* visual = glXChooseVisual(display.get(), screen, wanted.data());
    if (visual == nullptr) {
        visual = glXChooseVisual(display.get(), screen, enough.data());
    }
    if (visual == nullptr) {
        return false;
    }
    XFree(visual);
    XESetWireToError(display.get(), BadWindow, IgnoreError);
    XESetWireToError(display.get(), BadDrawable, IgnoreError);
    XWindowAttributes attributes{};
    return parent == 0 || XGetWindowAttributes(display.get(), parent, &attributes) != 0;
}

}  // namespace brindle
