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

/// The events that are watched.
constexpr std::array kEvents = {KeyPress,      KeyRelease,    ButtonPress,
                                ButtonRelease, MotionNotify,  EnterNotify,
                                LeaveNotify,   DestroyNotify, ConfigureNotify};

/// GLX errors for a drawable that no longer exists, counted from the extension's first error code.
constexpr std::array kLostDrawableErrors = {2 /* drawable */, 5 /* current window */,
                                            11 /* current drawable */, 12 /* window */};

constexpr int kLastError = 255;

/// Marks private data of the connection as a watch; does not free the watch, which has an owner.
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
        if (data->free_private == KeepWatch) return reinterpret_cast<X11Watch*>(data->private_data);
    }
    return nullptr;
}

Bool IgnoreError(Display*, XErrorEvent*, xError*) {
    return False;
}

/// The loss of a window must not reach the error handler, which ends the process by default. A
/// filter on this connection leaves the handler, shared by the whole process, unchanged.
void IgnoreLostWindows(Display* display) {
    XESetWireToError(display, BadWindow, IgnoreError);
    XESetWireToError(display, BadDrawable, IgnoreError);
    int firstError = 0;
    int firstEvent = 0;
    if (glXQueryExtension(display, &firstError, &firstEvent) == False) return;
    for (int error : kLostDrawableErrors) {
        XESetWireToError(display, firstError + error, IgnoreError);
    }
}

/// A wheel step is reported as press and release of a button of its own.
bool IsWheel(unsigned button) {
    return button >= Button4 && button <= 7;
}

}  // namespace

X11Watch::X11Watch(Display* newDisplay, Window newWindow, Window newParent)
    : display_(newDisplay), window_(newWindow), parent_(newParent) {
    IgnoreLostWindows(display_);

    auto* data = static_cast<XExtData*>(Xcalloc(1, sizeof(XExtData)));
    const XExtCodes* codes = XAddExtension(display_);
    if (data == nullptr || codes == nullptr) {
        Xfree(data);
        return;
    }
    data->number = codes->extension;
    data->free_private = KeepWatch;
    data->private_data = reinterpret_cast<XPointer>(this);
    XAddToExtensionList(PrivateData(display_), data);
    for (int event : kEvents) {
        XESetWireToEvent(display_, event, [](Display* from, XEvent* to, xEvent* wire) {
            return OnEvent(from, to, wire);
        });
    }

    XWindowAttributes attributes{};
    if (XGetWindowAttributes(display_, window_, &attributes) != 0) {
        size_ = {attributes.width, attributes.height};
        XSelectInput(display_, window_,
                     attributes.your_event_mask | EnterWindowMask | LeaveWindowMask);
    }
    if (parent_ != 0 && XGetWindowAttributes(display_, parent_, &attributes) != 0) {
        parentSize_ = {attributes.width, attributes.height};
        XSelectInput(display_, parent_, StructureNotifyMask);
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
            RecordInput(event.type, event.xkey.time, event.xkey.state);
            if (parent_ != 0 && event.xkey.send_event == False) keys_.push_back(event.xkey);
            break;
        case ButtonPress:
        case ButtonRelease:
            if (event.type == ButtonPress || !IsWheel(event.xbutton.button)) {
                RecordInput(event.type, event.xbutton.time, event.xbutton.state);
            }
            break;
        case MotionNotify:
            RecordInput(event.type, event.xmotion.time, event.xmotion.state);
            break;
        case EnterNotify:  // a grab that ends over the window reports no other
            if (event.xcrossing.mode != NotifyGrab) left_ = false;
            break;
        case LeaveNotify:
            if (event.xcrossing.mode == NotifyNormal) left_ = true;
            break;
        case DestroyNotify:
            gone_ = gone_ || event.xdestroywindow.window == window_;
            break;
        case ConfigureNotify: {
            const WindowSize newSize = {event.xconfigure.width, event.xconfigure.height};
            if (event.xconfigure.window == window_) {
                RecordOwnSize(newSize);
            } else if (event.xconfigure.window == parent_ && newSize != parentSize_) {
                parentSize_ = newSize;
                parentResized_ = true;
            }
            break;
        }
        default:
            break;
    }
}

void X11Watch::RecordInput(int type, Time time, unsigned state) {
    inputs_.push_back({type, static_cast<uint32_t>(time),
                       (state & (Button1Mask | Button2Mask | Button3Mask)) != 0});
}

void X11Watch::RecordOwnSize(WindowSize newSize) {
    if (newSize == size_) return;
    size_ = newSize;
    while (!requested_.empty() && requested_.front() != newSize) requested_.pop_front();
    if (requested_.empty()) {
        hostSizesWindow_ = true;
    } else {
        requested_.pop_front();
    }
}

bool X11Watch::ReadAhead() {
    return XPending(display_) > 0;
}

InputEvent X11Watch::Pop(int type) {
    while (!inputs_.empty()) {
        lastInput_ = inputs_.front();
        inputs_.pop_front();
        if (lastInput_.type == type) break;
    }
    return lastInput_;
}

bool X11Watch::IsShown() const {
    XWindowAttributes attributes{};
    return XGetWindowAttributes(display_, window_, &attributes) != 0 &&
           attributes.map_state == IsViewable;
}

void X11Watch::PassKeysOn() {
    for (const XKeyEvent& key : keys_) {
        XEvent event{};
        event.xkey = key;
        event.xkey.window = parent_;
        event.xkey.subwindow = window_;
        // Without a mask the event goes to the client that created the parent, whatever it selects.
        XSendEvent(display_, parent_, False, NoEventMask, &event);
    }
    if (!keys_.empty()) XFlush(display_);
    keys_.clear();
}

void X11Watch::FollowParent() {
    if (parentResized_ && !hostSizesWindow_ && parentSize_ != size_) {
        requested_.push_back(parentSize_);
        XResizeWindow(display_, window_, static_cast<unsigned>(parentSize_.width),
                      static_cast<unsigned>(parentSize_.height));
    }
    parentResized_ = false;
}

OwnedDisplay ProbeWindow(Window parent) {
    OwnedDisplay owner(XOpenDisplay(nullptr));
    Display* display = owner.get();
    if (display == nullptr) return nullptr;
    for (int error = Success + 1; error <= kLastError; ++error) {
        XESetWireToError(display, error, IgnoreError);
    }
    int firstError = 0;
    int firstEvent = 0;
    if (glXQueryExtension(display, &firstError, &firstEvent) == False) return nullptr;
    // The visual that Pugl requests, and the one that it accepts instead.
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
    const int screen = DefaultScreen(display);
    XVisualInfo* visual = glXChooseVisual(display, screen, wanted.data());
    if (visual == nullptr) visual = glXChooseVisual(display, screen, enough.data());
    if (visual == nullptr) return nullptr;
    // If the driver cannot be loaded, GLX creates an indirect context, which many servers refuse.
    GLXContext context = glXCreateContext(display, visual, nullptr, True);
    XFree(visual);
    if (context == nullptr) return nullptr;
    const bool direct = glXIsDirect(display, context) != False;
    glXDestroyContext(display, context);
    if (!direct) return nullptr;
    XWindowAttributes attributes{};
    if (parent != 0 &&
        (XGetWindowAttributes(display, parent, &attributes) == 0 ||
         attributes.c_class != InputOutput || XScreenNumberOfScreen(attributes.screen) != screen)) {
        return nullptr;
    }
    return owner;
}

}  // namespace brindle
