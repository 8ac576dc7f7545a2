// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "gl/GLView.h"
#include "gl/gl.h"

namespace brindle {

/// A part of the layers in their pixels, from the lower left corner; right and top are beyond it.
struct LayerArea {
    int32_t left = 0;
    int32_t bottom = 0;
    int32_t right = 0;
    int32_t top = 0;

    bool Touches(const LayerArea& other) const;
};

/// The pictures of which a frame is made: what stands still, that with the values on top, and the
/// latter as windows show it. They are drawn anew only where they have been marked out of date. All
/// calls but `Mark`, `IsStale` and `IsDrawn` need the editor's GL context current.
class FrameLayers {
  public:
    FrameLayers() = default;
    FrameLayers(const FrameLayers&) = delete;
    FrameLayers& operator=(const FrameLayers&) = delete;
    ~FrameLayers();

    /// Makes the pictures, in pixels; does nothing once they are there.
    void Create(int32_t newWidth, int32_t newHeight);
    /// Sets the shown picture's size in pixels, as far as the driver goes, and marks it. It is kept
    /// upside down, as windows are in memory.
    void SetShownSize(int32_t newWidth, int32_t newHeight);

    /// Has an area drawn anew from a layer on upwards. An empty one changes nothing.
    void Mark(Layer layer, const LayerArea& area);
    /// Whether an area of the back or main layer is out of date.
    bool IsStale() const { return !staleStatic_.empty() || !staleFrame_.empty(); }
    /// Whether an area is part of what is being drawn: always outside of `Update`.
    bool IsDrawn(const LayerArea& area) const { return !drawn_ || drawn_->Touches(area); }
    /// Brings the pictures up to date: calls `drawBack`, then `drawMain`, for each stale area, cut
    /// off at its edges.
    void Update(const std::function<void()>& drawBack, const std::function<void()>& drawMain);
    /// Copies the shown picture into an area of the window, its size unless the driver stopped
    /// short of it, and binds the window.
    void CopyShownToWindow(int32_t x, int32_t y, int32_t areaWidth, int32_t areaHeight) const;

    GLuint framebuffer = 0;
    GLuint staticTexture = 0;
    GLuint frameTexture = 0;

  private:
    using Areas = std::vector<LayerArea>;

    static void Attach(GLuint target, GLuint texture);
    void Bind(GLuint texture) const;
    void DrawAreas(const Areas& areas, const std::function<void()>& draw);
    void CopyStaticToFrame(const LayerArea& area) const;
    void ScaleFrameToShown(const LayerArea& area) const;

    int32_t width_ = 0;
    int32_t height_ = 0;
    GLuint shownTexture_ = 0;
    GLuint shownFramebuffer_ = 0;
    int32_t shownWidth_ = 0;
    int32_t shownHeight_ = 0;
    Areas staleStatic_;  ///< what of each picture is out of date
    Areas staleFrame_;
    Areas staleShown_;
    std::optional<LayerArea> drawn_;  ///< while a part of a layer is drawn
};

}  // namespace brindle
