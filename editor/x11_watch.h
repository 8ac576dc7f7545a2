// SPDX-License-Identifier: ISC
#pragma once

#include <X11/Xlib.h>

#include <cstdint>
#include <deque>
#include <vector>

namespace brindle {

/// Width and height in pixels.
struct WindowSize {
    int width = 0;
    int height = 0;
    bool operator==(const WindowSize&) const = default;
};

/// What Pugl leaves out of an input event.
struct InputEvent {
    int type = 0;
    uint32_t time_ms = 0;    ///< the X server's clock
    bool hasButton = false;  ///< one of the buttons 1 to 3 was down before the event
};

/// Listens in on one window's own X connection: every event that the connection reads passes here
/// first, before who owns the connection takes it from the queue. UI thread.
class X11Watch {
  public:
    /// `window` is the connection's own, `parent` the one that it was put into or 0. From now on
    /// changes of the parent are reported too, and the loss of either window is no longer an error.
    X11Watch(Display* display, Window window, Window parent);
    X11Watch(const X11Watch&) = delete;
    X11Watch& operator=(const X11Watch&) = delete;

    /// Reads all that the server has sent, without taking anything from the queue.
    void ReadAhead();
    /// The oldest input of a type (ButtonPress, ButtonRelease, MotionNotify, KeyPress or
    /// KeyRelease), forgetting those before it. Where there is none: the last one again.
    InputEvent Pop(int type);
    /// Sends the keys that the window got on to its parent, as a window does that does not use
    /// them. Those that were sent themselves stay here, so that none goes round in circles.
    void PassKeysOn();
    /// The window has been destroyed, with its parent as a rule.
    bool IsGone() const { return gone_; }
    /// The pointer has been over the window and is no more, grabs aside.
    bool HasLeft() const { return left_; }
    /// The window and all that it lies in are shown. Waits for the server.
    bool IsShown() const;
    WindowSize GetSize() const { return size_; }
    /// Asks for the parent's size where that has changed, unless the host sizes the window itself.
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
    std::deque<WindowSize> requested_;  ///< sizes asked for that have not come yet
    std::deque<InputEvent> inputs_;
    std::vector<XKeyEvent> keys_;
    InputEvent lastInput_;
};

/// Whether Pugl can make a window there: a display with direct OpenGL, and the parent (0: none
/// needed) exists. Pugl itself does not survive where this is false.
bool CanOpenWindow(Window parent);

}  // namespace brindle
