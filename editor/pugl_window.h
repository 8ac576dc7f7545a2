// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <memory>

namespace brindle {

class GLView_BaseView;

/// The editor's native window: all calls of Pugl stand behind this class, and with them what the
/// packaged version lacks for a plugin editor: the time of an event, the position of a scroll,
/// following a parent's size, and surviving a display that is missing or a parent that goes first.
///
/// All members are for the UI thread and leave the host's GL context current, `MakeCurrent` and the
/// destructor aside. Several windows in a process are independent.
class PuglWindow {
  public:
    /// Makes and maps a window of the given size in `parent`, or a top-level window where that is
    /// 0, and returns when the X server has it, so that a host can use its id at once. Null where
    /// there is no display with direct OpenGL, or no such parent. Draws nothing yet.
    static std::unique_ptr<PuglWindow> Create(uintptr_t parent, const char* title, int width,
                                              int height);
    /// Leaves no GL context current. The parent may be gone already. Keep a `HostContext` around
    /// it.
    ~PuglWindow();
    PuglWindow(const PuglWindow&) = delete;
    PuglWindow& operator=(const PuglWindow&) = delete;

    /// From now on `root` (borrowed) receives the window's size, pointer and keys, and renders its
    /// frames. Asks for a first one. Keys are printed on standard error too.
    void SetRoot(GLView_BaseView& root);
    /// The X window. Valid until the parent, or this, is destroyed.
    uintptr_t GetNativeWindow() const;
    /// Dispatches all that has happened, then draws if that was asked for. Keys go on to the parent
    /// window. Does nothing once the window has gone with its parent.
    void ProcessEvents();
    /// Asks for a frame at the end of the next `ProcessEvents`.
    void PostRedisplay();

    /// Makes the window's GL context current, for work outside of a frame. False where the window
    /// has gone; no context is current then. Keep a `HostContext` around that work.
    bool MakeCurrent();

  private:
    struct Impl;
    PuglWindow();
    std::unique_ptr<Impl> impl_;
};

}  // namespace brindle
