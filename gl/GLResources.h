// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "gl/GLRect.h"
#include "gl/gl.h"
#include "gl/glyph_table.h"

namespace brindle {

/// All textures of one editor, loaded from the bundle in `resourceDirectory`. A texture that could
/// not be loaded is 0, which draws plain areas. res/README.md describes the pictures. UI thread;
/// the editor's GL context must be current for all calls, the destructor included.
class GLResources {
  public:
    struct Glyph {
        float advance = 0.0f;  ///< text units
        float halfAdvance = 0.0f;
        GLuint texture = 0;  ///< shared by most glyphs, so that a text is one draw call
        GLRect picture = {0.0f, 0.0f, 1.0f, 1.0f};  ///< the glyph's place in it
    };
    static constexpr uint32_t kImageCount = 512;

    /// Loads everything. `pageScale` is the page's interface scale.
    explicit GLResources(float pageScale);
    GLResources(const GLResources&) = delete;
    GLResources& operator=(const GLResources&) = delete;
    /// Deletes the textures.
    ~GLResources();

    /// Whether the widgets' pictures and the letters are loaded.
    bool HasPictures() const { return hasPictures_; }
    bool HasLetters() const { return glyphs['A' - kFirstGlyph].texture != 0; }

    /// Texture of an image, loaded on first use; 0 for numbers from 512 upwards.
    GLuint Image(uint32_t number);

    /// Loads one texture whose levels are `levels` images from `firstImage` on, each half the size
    /// of the one before. Missing levels are skipped. The texture also becomes image `firstImage`.
    GLuint LoadMipmappedTexture(uint32_t firstImage, int levels);

    std::array<Glyph, kGlyphCount> glyphs;  ///< characters 32 to 130
    std::array<GLuint, kImageCount> images{};
    GLuint mipTexture160 = 0;  ///< disc
    GLuint mipTexture250 = 0;  ///< knob face
    GLuint mipTexture150 = 0;  ///< disc that touches its edges: round corners
    GLuint defaultImage = 0;   ///< image 102: halo
    GLuint mipTexture318 = 0;  ///< ring that touches its edges: round frames
    float interfaceScale;

  private:
    void LoadGlyphs();
    /// Takes ownership of a texture, which may be 0.
    GLuint Keep(GLuint texture);

    std::vector<GLuint> owned_;
    bool hasPictures_;
};

/// Loads a picture file into a texture with linear filters; 0 if it cannot be read.
GLuint LoadTexture(const char* path);

}  // namespace brindle
