// SPDX-License-Identifier: ISC
// `brindle screenshot` where there is no display: what is to be seen in the picture.
#include <cairo.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "tests/host/program.h"

namespace brindle::test {
namespace {

using testing::HasSubstr;

struct Screenshot {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels;  ///< 0xRRGGBB by rows

    [[nodiscard]] uint32_t at(int x, int y) const {
        return pixels.at(static_cast<size_t>(y * width + x));
    }
};

class ScreenshotTest : public ProgramTest {
  protected:
    Screenshot take(const std::string& arguments) {
        const std::string name = "picture.png";
        std::filesystem::remove(path(name));
        const Outcome outcome = brindle("screenshot " + name + ' ' + arguments, "unset DISPLAY");
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_THAT(outcome.out, HasSubstr("Wrote picture.png.\n"));
        return read(name);
    }

  private:
    [[nodiscard]] Screenshot read(const std::string& name) const {
        cairo_surface_t* surface = cairo_image_surface_create_from_png(path(name).c_str());
        Screenshot picture = {
            cairo_image_surface_get_width(surface), cairo_image_surface_get_height(surface), {}};
        const int stride = cairo_image_surface_get_stride(surface);
        for (int y = 0; y < picture.height; ++y) {
            const unsigned char* row = cairo_image_surface_get_data(surface) + y * stride;
            for (int x = 0; x < picture.width; ++x) {
                uint32_t pixel = 0;
                std::memcpy(&pixel, row + x * 4, sizeof pixel);
                picture.pixels.push_back(pixel & 0xffffffu);
            }
        }
        cairo_surface_destroy(surface);
        return picture;
    }
};

/// Share of the pixels inside a rectangle that differ.
double difference(const Screenshot& a, const Screenshot& b, int left, int top, int right,
                  int bottom) {
    int count = 0;
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) count += a.at(x, y) != b.at(x, y) ? 1 : 0;
    }
    return static_cast<double>(count) / ((right - left) * (bottom - top));
}

TEST_F(ScreenshotTest, AudioMovesTheMeters) {
    const Screenshot plain = take("");
    const Screenshot loud = take("--set trim=12");
    // Beside the left edge the input's meter, beside the right one the output's.
    EXPECT_LT(difference(plain, loud, 45, 430, 75, 575), 0.01);
    EXPECT_GT(difference(plain, loud, 925, 430, 955, 575), 0.05);
    // The analyser's rows above the keyboard show the noise in many shades.
    std::set<uint32_t> shades;
    for (int x = 45; x < 955; ++x) shades.insert(plain.at(x, 345));
    EXPECT_GT(shades.size(), 30u);
}

TEST_F(ScreenshotTest, OtherSizesAndPresets) {
    const Screenshot start = take("--size 1500x900");
    const Screenshot preset = take("--size 1500x900 --preset 'push+pull tone'");
    ASSERT_EQ(start.width, 1500);
    ASSERT_EQ(start.height, 900);
    ASSERT_EQ(preset.pixels.size(), start.pixels.size());
    EXPECT_GT(difference(start, preset, 0, 0, 1500, 900), 0.02);
    EXPECT_NE(start.at(1490, 890), 0u);  // drawn to the last corner
}

TEST_F(ScreenshotTest, ABrokenDriverIsASentence) {
    const Outcome outcome =
        brindle("screenshot picture.png", "unset DISPLAY; export LIBGL_DRIVERS_PATH=/nonexistent");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "brindle: the editor cannot be opened on this display.\n");
    EXPECT_THAT(files(), testing::IsEmpty());
}

}  // namespace
}  // namespace brindle::test
