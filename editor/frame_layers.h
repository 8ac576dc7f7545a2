// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <vector>

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

/// Adds an area to some that do not touch each other, as one with those that it touches. An empty
/// one adds nothing.
void AddArea(std::vector<LayerArea>& areas, LayerArea area);

/// The pictures of which a frame is made, and the framebuffers that draw into them: what stands
/// still, that with the values on top, and the latter as windows show it. All calls need the
/// editor's GL context current.
class FrameLayers {
  public:
    FrameLayers() = default;
    FrameLayers(const FrameLayers&) = delete;
    FrameLayers& operator=(const FrameLayers&) = delete;
    ~FrameLayers();

    /// Makes the pictures, in pixels; does nothing once they are there.
    void Create(int32_t newWidth, int32_t newHeight);
    /// What is drawn from now on goes into the one or the other, over all of it. A framebuffer that
    /// cannot be drawn to is told on standard output.
    void BindStatic();
    void BindFrame();
    /// Makes a part of the frame a copy of the static layer, which must be the one that is bound.
    void CopyStaticToFrame(const LayerArea& area) const;
    /// Sets the shown picture's size in pixels, as far as the driver goes; it has to be drawn after
    /// that. It is kept upside down, as windows are in memory.
    void SetShownSize(int32_t newWidth, int32_t newHeight);
    /// Brings an area of the layers up to date in the shown picture. The frame must be bound.
    void ScaleFrameToShown(const LayerArea& area) const;
    /// Copies the shown picture into an area of the window, its size unless the driver stopped
    /// short of it, and binds the window.
    void CopyShownToWindow(int32_t x, int32_t y, int32_t areaWidth, int32_t areaHeight) const;

    GLuint framebuffer = 0;
    GLuint staticTexture = 0;
    GLuint frameTexture = 0;

  private:
    static void Attach(GLuint target, GLuint texture);

    int32_t width_ = 0;
    int32_t height_ = 0;
    GLuint shownTexture_ = 0;
    GLuint shownFramebuffer_ = 0;
    int32_t shownWidth_ = 0;
    int32_t shownHeight_ = 0;
};

}  // namespace brindle
