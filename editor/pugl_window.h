// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <memory>

namespace brindle {

class GLView_BaseView;

/// The editor's native window. All calls to Pugl are in this class, together with what the packaged
/// version lacks for a plugin editor: event times, scroll positions, following the parent's size,
/// and surviving a missing display or the loss of the parent.
///
/// All members are for the UI thread. They keep the host's GL context current, except `MakeCurrent`
/// and the destructor. Several windows in a process are independent.
class PuglWindow {
  public:
    /// Creates and maps a window of the given size in `parent`, or a top-level window if that is 0.
    /// Returns when the X server has created it, so that a host can use its id at once. Null if
    /// there is no display with direct OpenGL or no such parent. Draws nothing yet.
    static std::unique_ptr<PuglWindow> Create(uintptr_t parent, const char* title, int width,
                                              int height);
    /// Leaves no GL context current. The parent may be gone already. Needs a `HostContext` around
    /// it.
    ~PuglWindow();
    PuglWindow(const PuglWindow&) = delete;
    PuglWindow& operator=(const PuglWindow&) = delete;

    /// Sets the view (borrowed) that receives size, pointer and keys and renders the frames.
    /// Requests a first frame. Keys are also printed on standard error.
    void SetRoot(GLView_BaseView& root);
    /// The X window. Valid until it or its parent is destroyed.
    uintptr_t GetNativeWindow() const;
    /// Dispatches all pending events, then draws if a frame was requested. Keys are passed on to
    /// the parent window. Does nothing once the window is destroyed with its parent.
    void ProcessEvents();
    /// Requests a frame at the end of the next `ProcessEvents`. It is drawn if it differs from the
    /// last one; a window that is exposed is drawn in any case.
    void PostRedisplay();

    /// Makes the window's GL context current, for GL calls outside of a frame. False if the window
    /// is gone; then no context is current. Needs a `HostContext` around these calls.
    bool MakeCurrent();

  private:
    struct Impl;
    PuglWindow();
    std::unique_ptr<Impl> impl_;
};

}  // namespace brindle
