// SPDX-License-Identifier: ISC
#pragma once

#include <memory>
#include <string>

#include "res/raster.h"

struct FT_FaceRec_;
struct FT_LibraryRec_;

namespace brindle {

/// Side of a glyph's picture in pixels. Text is drawn at 10 to 17 pixels per text unit, so a
/// picture shrinks to between 0.5 and 0.85 of its size. Shrunk less, texels would show; shrunk
/// more, a linear filter would skip texels.
inline constexpr int kGlyphSize = 40;

/// Text units per em of the font.
inline constexpr double kEmSize = 1.7014;

/// Draws a font's characters as glyph pictures. A character is centred in its advance, capitals are
/// centred vertically; one text unit is half a picture. Failures throw std::runtime_error.
class GlyphOutlines {
  public:
    explicit GlyphOutlines(const std::string& fontPath);
    ~GlyphOutlines();
    GlyphOutlines(const GlyphOutlines&) = delete;
    GlyphOutlines& operator=(const GlyphOutlines&) = delete;

    /// The picture of a character from 32 to 126. Throws if its ink does not fit into the picture.
    Raster Draw(int character);

  private:
    void Load(int character);

    FT_LibraryRec_* library_ = nullptr;
    FT_FaceRec_* face_ = nullptr;
    long baseline_ = 0;  ///< above the picture's lower edge, in 1/64 pixel
};

}  // namespace brindle
