// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "gl/gl.h"
#include "gl/glyph_table.h"

namespace brindle {

/// All textures of one editor, loaded from the bundle that `resourceDirectory` names. 0 stands for
/// a texture that could not be loaded; drawing with it draws plain areas. What each picture shows
/// is told in res/README.md. UI thread, with the editor's GL context current all its life.
class GLResources {
  public:
    struct Glyph {
        float advance = 0.0f;  ///< text units
        float halfAdvance = 0.0f;
        GLuint texture = 0;
    };
    static constexpr uint32_t kImageCount = 512;

    /// Loads everything. `pageScale` is the page's interface scale.
    explicit GLResources(float pageScale);
    GLResources(const GLResources&) = delete;
    GLResources& operator=(const GLResources&) = delete;
    /// Deletes the textures.
    ~GLResources();

    /// Texture of an image, loaded now where it was not; 0 for numbers from 512 on.
    GLuint Image(uint32_t number);

    /// One texture whose levels are `levels` images from `firstImage` on, each half the size of the
    /// one before; missing levels are left out. It also becomes the image of the first's number.
    GLuint LoadMipmappedTexture(uint32_t firstImage, int levels);

    std::array<Glyph, kGlyphCount> glyphs;  ///< of characters 32 to 130
    std::array<GLuint, kImageCount> images{};
    GLuint mipTexture160 = 0;  ///< disc
    GLuint mipTexture250 = 0;  ///< knob face
    GLuint mipTexture150 = 0;  ///< disc that touches its edges: round corners
    GLuint defaultImage = 0;   ///< image 102: halo
    GLuint mipTexture318 = 0;  ///< ring that touches its edges: round frames
    float interfaceScale;

  private:
    /// Takes over a texture, 0 too, to delete it in the end.
    GLuint Keep(GLuint texture);

    std::vector<GLuint> owned_;
};

/// A texture of a picture file, with linear filters; 0 where it cannot be read.
GLuint LoadTexture(const char* path);

}  // namespace brindle
