// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <memory>

namespace brindle {

/// What a window calls while it processes events, with its GL context current in `display`.
/// Positions are window pixels from the top left corner, outside of the window too while a button
/// is held. `modifiers`: 1 Shift, 2 Ctrl, 4 Alt, 8 Super, as they were before the event.
struct PuglCallbacks {
    void (*display)(void* handle);
    /// Before the first frame, and whenever the window's own size has changed.
    void (*reshape)(void* handle, int width, int height);
    void (*motion)(void* handle, int x, int y);
    /// `button` 1..3. Times are of the X server's clock, in milliseconds.
    void (*mouse)(void* handle, int button, bool press, int x, int y);
    void (*scroll)(void* handle, int x, int y, float dx, float dy);
    void (*keyboard)(void* handle, bool press, uint32_t character);
    void (*special)(void* handle, bool press, int key);
};

/// The editor's native window: all calls of Pugl stand behind this class, and with them what the
/// packaged version lacks for a plugin editor: the time of an event, the position of a scroll,
/// following a parent's size, and surviving a display that is missing or a parent that goes first.
///
/// All members are for the UI thread. Several windows in a process are independent.
class PuglWindow {
  public:
    /// Makes and maps a window of the given size in `parent`, or a top-level window where that is
    /// 0, and returns when the X server has it, so that a host can use its id at once. Null where
    /// there is no display with OpenGL, or no such parent. Draws nothing yet.
    static std::unique_ptr<PuglWindow> Create(uintptr_t parent, const char* title, int width,
                                              int height);
    /// Leaves no GL context current that was this window's. The parent may be gone already.
    ~PuglWindow();
    PuglWindow(const PuglWindow&) = delete;
    PuglWindow& operator=(const PuglWindow&) = delete;

    /// From now on events go to `callbacks` (borrowed), the size first. Asks for a first frame.
    void SetCallbacks(const PuglCallbacks* callbacks, void* handle);
    /// The X window. Valid until the parent, or this, is destroyed.
    uintptr_t GetNativeWindow() const;
    /// Dispatches all that has happened, then draws if that was asked for. Does nothing once the
    /// window has gone with its parent.
    void ProcessEvents();
    /// Asks for a frame at the end of the next `ProcessEvents`.
    void PostRedisplay();

    /// Inside an input callback: the event's time and modifiers (see `PuglCallbacks`).
    uint32_t GetEventTime() const;
    uint32_t GetModifiers() const;

  private:
    struct Impl;
    explicit PuglWindow(std::unique_ptr<Impl> newImpl);
    std::unique_ptr<Impl> impl;
};

}  // namespace brindle
