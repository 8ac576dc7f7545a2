// SPDX-License-Identifier: ISC
#include "res/glyph_outlines.h"

#include <ft2build.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "gl/glyph_table.h"
#include FT_FREETYPE_H
#include FT_OUTLINE_H

namespace brindle {
namespace {

constexpr long kSubpixels = 64;  ///< FreeType units per pixel

/// How much a character is widened or narrowed, at most, to fill the table's advance (the font's
/// own for digits only). The rest of the difference becomes space on both sides.
constexpr double kMaxStretch = 0.1;

/// Weight added to all strokes, in text units: small light text on a dark background looks thin.
/// Upright strokes get more of it, as descenders reach down to their pictures' edge.
constexpr double kExtraWidth = 0.065;
constexpr double kExtraHeight = 0.03;

void Check(FT_Error error, const std::string& what) {
    if (error != 0) throw std::runtime_error(what);
}

}  // namespace

GlyphOutlines::GlyphOutlines(const std::string& fontPath) {
    Check(FT_Init_FreeType(&library_), "FreeType does not start");
    Check(FT_New_Face(library_, fontPath.c_str(), 0, &face_), "cannot read font " + fontPath);
    const double emPixels = kEmSize * kGlyphSize / 2.0;
    Check(FT_Set_Char_Size(face_, 0, std::lround(emPixels * kSubpixels), 72, 72),
          "the font cannot be scaled");
    Load('H');
    FT_BBox capital;
    FT_Outline_Get_CBox(&face_->glyph->outline, &capital);
    baseline_ = (kGlyphSize * kSubpixels - capital.yMax) / 2;
}

GlyphOutlines::~GlyphOutlines() {
    FT_Done_Face(face_);
    FT_Done_FreeType(library_);
}

void GlyphOutlines::Load(int character) {
    // Hinting would align stems with the picture's pixels, which are not the screen's pixels.
    Check(FT_Load_Char(face_, static_cast<FT_ULong>(character), FT_LOAD_NO_HINTING),
          "the font lacks character " + std::to_string(character));
}

Raster GlyphOutlines::Draw(int character) {
    Load(character);
    FT_GlyphSlot slot = face_->glyph;
    const double advance = static_cast<double>(slot->linearHoriAdvance) / 65536.0;  // pixels
    const double wanted =
        kGlyphAdvances[static_cast<size_t>(character - kFirstGlyph)] * kGlyphSize / 2.0;
    const double stretch = std::clamp(wanted / advance, 1.0 - kMaxStretch, 1.0 + kMaxStretch);
    const FT_Matrix widen = {std::lround(stretch * 65536.0), 0, 0, 65536};
    FT_Outline_Transform(&slot->outline, &widen);
    // Emboldening extends an outline to the right and upwards.
    const auto subpixels = [](double textUnits) {
        return std::lround(textUnits * kGlyphSize / 2.0 * kSubpixels);
    };
    const long width = subpixels(kExtraWidth);
    const long height = subpixels(kExtraHeight);
    FT_Outline_EmboldenXY(&slot->outline, width, height);
    const long left = std::lround((kGlyphSize - advance * stretch) / 2.0 * kSubpixels);
    FT_Outline_Translate(&slot->outline, left - width / 2, baseline_ - height / 2);
    FT_BBox ink;
    FT_Outline_Get_CBox(&slot->outline, &ink);
    if (ink.xMin < 0 || ink.yMin < 0 || ink.xMax > kGlyphSize * kSubpixels ||
        ink.yMax > kGlyphSize * kSubpixels) {
        throw std::runtime_error("character " + std::to_string(character) +
                                 " reaches over its picture");
    }
    std::vector<unsigned char> coverage(size_t{kGlyphSize} * kGlyphSize);
    FT_Bitmap bitmap{};
    bitmap.rows = kGlyphSize;
    bitmap.width = kGlyphSize;
    bitmap.pitch = kGlyphSize;
    bitmap.buffer = coverage.data();
    bitmap.num_grays = 256;
    bitmap.pixel_mode = FT_PIXEL_MODE_GRAY;
    Check(FT_Outline_Get_Bitmap(library_, &slot->outline, &bitmap), "an outline cannot be drawn");
    Raster raster{kGlyphSize, {}};
    for (int row = kGlyphSize - 1; row >= 0; --row) {
        for (int column = 0; column < kGlyphSize; ++column) {
            raster.texels.push_back(
                {255,
                 coverage[static_cast<size_t>(row) * kGlyphSize + static_cast<size_t>(column)]});
        }
    }
    return raster;
}

}  // namespace brindle
