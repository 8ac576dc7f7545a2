// SPDX-License-Identifier: ISC
/// The pictures of the built bundle, read as the editor reads them.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
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

/// The rectangle of all that is more than faint, in pixels.
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

std::string Bytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
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
        // Ink stays within the advance; underscores meet.
        const float advance = kGlyphAdvances[static_cast<size_t>(character - kFirstGlyph)] *
                              static_cast<float>(glyph.width) / 2.0f;
        EXPECT_LE(static_cast<float>(ink.right - ink.left), advance + 3.0f);
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
        for (size_t i = 0; i < image.pixels.size(); i += 4) {
            ASSERT_EQ(image.pixels[i], 255) << name;
        }
    }
}

TEST(Pictures, ChainsHalveAndKeepTheirArea) {
    const double disc = 3.14159265 / 4.0;  // of the square
    struct Chain {
        int first;
        int levels;
        double covered;
    };
    for (const Chain& chain :
         {Chain{150, 6, disc}, Chain{160, 6, disc * 0.9385}, Chain{250, 4, disc * 0.9385},
          Chain{318, 4, disc * (1.0 - 0.5625)}}) {
        int32_t width = 0;
        for (int level = 0; level < chain.levels; ++level) {
            const std::string number = std::to_string(chain.first + level);
            SCOPED_TRACE(number);
            const Bitmap image = LoadPicture("images/img_" + number + ".bmp");
            if (level > 0) {
                EXPECT_EQ(image.width * 2, width);
            }
            width = image.width;
            double covered = 0.0;
            for (size_t i = 3; i < image.pixels.size(); i += 4) {
                covered += image.pixels[i] / 255.0;
            }
            EXPECT_NEAR(covered / (double{1.0} * width * width), chain.covered, 0.003);
        }
    }
}

TEST(Pictures, AreTheSameWheneverTheyAreMade) {
    namespace fs = std::filesystem;
    const fs::path bundle = BRINDLE_BUNDLE "/res";
    const fs::path again = fs::temp_directory_path() / ("brindle-" + std::to_string(getpid()));
    const std::string command =
        std::string(BRINDLE_MAKE_PICTURES " " BRINDLE_FONT " ") + again.string();
    ASSERT_EQ(std::system(command.c_str()), 0);
    int files = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(again)) {
        if (entry.is_regular_file()) {
            ++files;
            EXPECT_EQ(Bytes(entry.path()), Bytes(bundle / fs::relative(entry.path(), again)))
                << entry.path();
        }
    }
    EXPECT_EQ(files, 21 + static_cast<int>(kGlyphCount));
    fs::remove_all(again);
}

}  // namespace
}  // namespace brindle
