// SPDX-License-Identifier: ISC
#pragma once

#include <X11/Xlib.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

namespace brindle {

/// Width and height in pixels.
struct WindowSize {
    int width = 0;
    int height = 0;
    bool operator==(const WindowSize&) const = default;
};

/// The parts of an input event that Pugl leaves out.
struct InputEvent {
    int type = 0;
    uint32_t time_ms = 0;    ///< the X server's clock
    bool hasButton = false;  ///< whether a button from 1 to 3 was down before the event
};

/// Watches a window's own X connection: every event that the connection reads passes here first,
/// before the connection's owner takes it from the queue. UI thread.
class X11Watch {
  public:
    /// `window` is the connection's own window, `parent` its parent or 0. From now on changes of
    /// the parent are reported too, and the loss of either window is no longer an error.
    X11Watch(Display* display, Window window, Window parent);
    X11Watch(const X11Watch&) = delete;
    X11Watch& operator=(const X11Watch&) = delete;

    /// Reads everything that the server has sent; all events stay in the queue. False if it is
    /// empty.
    bool ReadAhead();
    /// The oldest input of a type (ButtonPress, ButtonRelease, MotionNotify, KeyPress or
    /// KeyRelease); discards the ones before it. If there is none: the last input again.
    InputEvent Pop(int type);
    /// Sends the window's key events on to its parent, like a window that does not use them.
    /// Synthetic key events are not sent on, so that none circulates.
    void PassKeysOn();
    /// The window has been destroyed, usually with its parent.
    bool IsGone() const { return gone_; }
    /// Whether the pointer was over the window and has left it. Grabs are ignored.
    bool HasLeft() const { return left_; }
    /// Whether the window and all its ancestors are mapped. Waits for the server.
    bool IsShown() const;
    WindowSize GetSize() const { return size_; }
    /// Requests the parent's size if it has changed, unless the host sizes the window itself.
    void FollowParent();

  private:
    static Bool OnEvent(Display* display, XEvent* event, void* wire);
    void Record(const XEvent& event);
    void RecordInput(int type, Time time, unsigned state);
    void RecordOwnSize(WindowSize newSize);

    Display* display_;
    Window window_;
    Window parent_;
    WindowSize size_;
    WindowSize parentSize_;
    bool gone_ = false;
    bool left_ = false;
    bool parentResized_ = false;
    bool hostSizesWindow_ = false;
    std::deque<WindowSize> requested_;  ///< requested sizes that have not arrived yet
    std::deque<InputEvent> inputs_;
    std::vector<XKeyEvent> keys_;
    InputEvent lastInput_;
};

struct CloseDisplay {
    void operator()(Display* display) const { XCloseDisplay(display); }
};
using OwnedDisplay = std::unique_ptr<Display, CloseDisplay>;

/// Tries whether Pugl can create a window: the display has direct OpenGL, and the parent exists (0:
/// none needed). Returns the connection that was used, which keeps the driver loaded; null where
/// Pugl itself would crash.
OwnedDisplay ProbeWindow(Window parent);

}  // namespace brindle
