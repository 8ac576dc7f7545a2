// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <string>

// Xlib defines macros by ordinary names, so that its header stays in the source.
struct _XDisplay;

namespace brindle {

/// A window's inside, pixels.
struct PixelSize {
    int width = 0;
    int height = 0;
};

/// The program's window on the desktop, with an editor's window in it. UI thread.
class TopWindow {
  public:
    enum Kind {
        kManaged,  ///< with frame and buttons, sized and closed by the user
        kBare      ///< on top at the screen's corner, out of the user's hands
    };

    /// Throws UserError where there is no display.
    TopWindow(const std::string& title, PixelSize size, Kind kind);
    ~TopWindow();
    TopWindow(const TopWindow&) = delete;
    TopWindow& operator=(const TopWindow&) = delete;

    /// The X window, for editors to be put into.
    [[nodiscard]] uintptr_t id() const { return window_; }
    void show();
    void resize(PixelSize size);
    /// Handles what has happened; the window `child`, where there is one, follows the size.
    void process_events(uintptr_t child);
    /// The user has asked for the end.
    [[nodiscard]] bool is_closed() const { return closed_; }
    /// There is a display, and a window of this size lies inside its screen.
    [[nodiscard]] static bool has_room(PixelSize size);

    /// What is to be seen of the window: 0x00RRGGBB, row by row from the top left. The window has
    /// to lie inside the screen. Throws UserError where that cannot be read.
    void read_pixels(uint32_t* pixels, PixelSize size);

  private:
    struct _XDisplay* display_;
    uintptr_t window_ = 0;
    uintptr_t delete_atom_ = 0;
    bool closed_ = false;
};

}  // namespace brindle
