// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>

#include "gl/gl.h"

namespace brindle {

/// The two pictures of which a frame is made, and the framebuffer that draws into them: what stands
/// still, and that with what moves on top. All calls need the editor's GL context current.
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
    /// Makes the frame a copy of the static layer, which must be the one that is bound.
    void CopyStaticToFrame() const;
    /// Binds the window's own framebuffer.
    static void BindWindow();

    GLuint framebuffer = 0;
    GLuint staticTexture = 0;
    GLuint frameTexture = 0;

  private:
    void Bind(GLuint texture) const;

    int32_t width = 0;
    int32_t height = 0;
};

}  // namespace brindle
