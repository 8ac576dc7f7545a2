// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "gl/GLView.h"
#include "gl/gl.h"

namespace brindle {

/// An area of the layers in pixels from the lower left corner; right and top are exclusive.
struct LayerArea {
    int32_t left = 0;
    int32_t bottom = 0;
    int32_t right = 0;
    int32_t top = 0;

    bool Touches(const LayerArea& other) const;
};

/// The pictures that make up a frame: the static parts, these with the values on top, and a copy of
/// the latter scaled to the window. They are redrawn only where they are marked out of date. All
/// calls except `Mark`, `IsStale` and `IsDrawn` need the editor's GL context current.
class FrameLayers {
  public:
    FrameLayers() = default;
    FrameLayers(const FrameLayers&) = delete;
    FrameLayers& operator=(const FrameLayers&) = delete;
    ~FrameLayers();

    /// Creates the pictures, sized in pixels. Does nothing if they exist.
    void Create(int32_t newWidth, int32_t newHeight);
    /// Sets the shown picture's size in pixels, limited by the driver, and marks it. It is kept
    /// upside down, like windows in memory.
    void SetShownSize(int32_t newWidth, int32_t newHeight);

    /// Marks an area to be redrawn in a layer and all layers above. Empty areas are ignored.
    void Mark(Layer layer, const LayerArea& area);
    /// Whether any area of the back or main layer is out of date.
    bool IsStale() const { return !staleStatic_.empty() || !staleFrame_.empty(); }
    /// Whether an area is being drawn; always true outside of `Update`.
    bool IsDrawn(const LayerArea& area) const { return !drawn_ || drawn_->Touches(area); }
    /// Updates the pictures: calls `drawBack`, then `drawMain`, for each stale area, clipped to it.
    void Update(const std::function<void()>& drawBack, const std::function<void()>& drawMain);
    /// Copies the shown picture into an area of the window and binds the window. The sizes are
    /// equal unless the driver limited the picture.
    void CopyShownToWindow(int32_t x, int32_t y, int32_t areaWidth, int32_t areaHeight) const;

    GLuint framebuffer = 0;
    GLuint staticTexture = 0;
    GLuint frameTexture = 0;

  private:
    using Areas = std::vector<LayerArea>;

    /// Small windows show a copy of a copy at half the size: the filter reads the nearest four
    /// pixels, and would miss thin strokes between them if the picture shrank more than that.
    bool IsScaledTwice() const { return 2 * shownWidth_ < width_; }
    static void Attach(GLuint target, GLuint texture);
    void Bind(GLuint texture) const;
    void DrawAreas(const Areas& areas, const std::function<void()>& draw);
    void CopyStaticToFrame(const LayerArea& area) const;
    void ScaleFrameToShown(const LayerArea& area) const;

    int32_t width_ = 0;
    int32_t height_ = 0;
    GLuint shownTexture_ = 0;
    GLuint shownFramebuffer_ = 0;
    GLuint halfTexture_ = 0;  ///< 0 until a small window needs it
    GLuint halfFramebuffer_ = 0;
    int32_t shownWidth_ = 0;
    int32_t shownHeight_ = 0;
    Areas staleStatic_;  ///< areas of each picture that are out of date
    Areas staleFrame_;
    Areas staleShown_;
    std::optional<LayerArea> drawn_;  ///< set while a part of a layer is drawn
};

}  // namespace brindle
