// SPDX-License-Identifier: ISC
#pragma once

#include <memory>
#include <string>

#include "res/raster.h"

struct FT_FaceRec_;
struct FT_LibraryRec_;

namespace brindle {

/// Side of a glyph's picture in pixels. Texts are drawn at 10 to 17 pixels to the text unit, so
/// that a picture shrinks to between a half and 0.8 of its size: above, texels would show, below,
/// a linear filter would skip some.
inline constexpr int kGlyphSize = 40;

/// Text units to the em of the font.
inline constexpr double kEmSize = 1.7014;

/// The characters of a font as glyph pictures: each is centred in its advance, capitals are centred
/// in height, one text unit is half the picture. Throws std::runtime_error.
class GlyphOutlines {
  public:
    explicit GlyphOutlines(const std::string& fontPath);
    ~GlyphOutlines();
    GlyphOutlines(const GlyphOutlines&) = delete;
    GlyphOutlines& operator=(const GlyphOutlines&) = delete;

    /// A picture of a character from 32 to 126. Throws where its ink reaches over the picture.
    Raster Draw(int character);

  private:
    void Load(int character);

    FT_LibraryRec_* library_ = nullptr;
    FT_FaceRec_* face_ = nullptr;
    long baseline_ = 0;  ///< height over the picture's lower edge, 1/64 pixel
};

}  // namespace brindle
