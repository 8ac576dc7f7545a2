// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <functional>
#include <string>

// Xlib defines macros with ordinary names; keep its header out of here.
struct _XDisplay;

namespace brindle {

/// A window's inner size in pixels.
struct PixelSize {
    int width = 0;
    int height = 0;
};

/// The program's window on the desktop, the parent of the editor's window. UI thread.
class TopWindow {
  public:
    enum Kind {
        kManaged,  ///< framed, resized and closed by the user
        kBare      ///< unframed, on top at the screen's corner
    };

    /// The size is limited by the screen. Throws UserError if there is no display.
    TopWindow(const std::string& title, PixelSize size, Kind kind);
    ~TopWindow();
    TopWindow(const TopWindow&) = delete;
    TopWindow& operator=(const TopWindow&) = delete;

    /// The X window.
    [[nodiscard]] uintptr_t id() const { return window_; }
    void show();
    /// Limited by the screen too.
    void resize(PixelSize size);
    /// Handles waiting events; the window `child`, unless 0, follows the size.
    void process_events(uintptr_t child);
    /// The user has closed the window.
    [[nodiscard]] bool is_closed() const { return closed_; }
    /// There is a display whose screen has room for a window of this size.
    [[nodiscard]] static bool has_room(PixelSize size);

    /// Calls `save` if the X server is lost, before Xlib ends the program. Once.
    static void on_server_lost(std::function<void()> save);

    /// Reads the visible window: 0x00RRGGBB, row by row from the top left. The window must lie
    /// inside the screen. Throws UserError if the display has no such colours.
    void read_pixels(uint32_t* pixels, PixelSize size);

  private:
    struct _XDisplay* display_;
    uintptr_t window_ = 0;
    uintptr_t delete_atom_ = 0;
    bool closed_ = false;
};

}  // namespace brindle
