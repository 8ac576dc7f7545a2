// SPDX-License-Identifier: ISC
/// The pictures of the built bundle, loaded as the editor loads them.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "gl/bitmap.h"
#include "gl/glyph_table.h"

namespace brindle {
namespace {

struct Ink {
    int left = 10000;
    int right = -1;
    int bottom = 10000;
    int top = -1;
};

uint8_t AlphaAt(const Bitmap& image, int x, int y) {
    return image.pixels.at(
        (static_cast<size_t>(y) * static_cast<size_t>(image.width) + static_cast<size_t>(x)) * 4 +
        3);
}

/// The rectangle around all pixels that are more than faint.
Ink FindInk(const Bitmap& image) {
    Ink ink;
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            if (AlphaAt(image, x, y) >= 64) {
                ink = {std::min(ink.left, x), std::max(ink.right, x + 1), std::min(ink.bottom, y),
                       std::max(ink.top, y + 1)};
            }
        }
    }
    return ink;
}

Bitmap LoadPicture(const std::string& name) {
    Bitmap image;
    EXPECT_TRUE(LoadBitmap((std::string(BRINDLE_BUNDLE "/res/") + name).c_str(), image)) << name;
    return image;
}

TEST(Pictures, GlyphsStandInTheirAdvances) {
    for (int character = kFirstGlyph; character < kFirstGlyph + static_cast<int>(kGlyphCount);
         ++character) {
        SCOPED_TRACE(character);
        const Bitmap glyph = LoadPicture("chars/char_" + std::to_string(character));
        ASSERT_GT(glyph.width, 0);
        EXPECT_EQ(glyph.width, glyph.height);
        const Ink ink = FindInk(glyph);
        if (character == ' ') {
            EXPECT_EQ(ink.right, -1);
            continue;
        }
        // Ink stays inside the advance, but underscores join.
        const float advance = kGlyphAdvances[static_cast<size_t>(character - kFirstGlyph)] *
                              static_cast<float>(glyph.width) / 2.0f;
        EXPECT_LE(static_cast<float>(ink.right - ink.left),
                  advance + (character == '_' ? 4.0f : 3.0f));
        EXPECT_GT(ink.left, 0);
        EXPECT_GT(ink.bottom, 0);
        EXPECT_LT(ink.right, glyph.width);
        EXPECT_LT(ink.top, glyph.height);
    }
}

TEST(Pictures, NothingIsDarkWhereItIsTransparent) {
    for (const char* name : {"images/img_150.bmp", "images/img_160.bmp", "images/img_318.bmp",
                             "images/img_102.bmp", "chars/char_65"}) {
        const Bitmap image = LoadPicture(name);
        for (size_t i = 0; i < image.pixels.size(); i += 4) ASSERT_EQ(image.pixels[i], 255) << name;
    }
}

}  // namespace
}  // namespace brindle
