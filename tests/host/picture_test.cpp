// SPDX-License-Identifier: ISC
// What is to be seen in plots, and in pictures of the editor where there is no display.
#include <cairo.h>
#include <gmock/gmock.h>

#include <set>
#include <string>
#include <vector>

#include "tests/host/program.h"

namespace brindle::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

/// Rows of 0xRRGGBB.
using Picture = std::vector<std::vector<uint32_t>>;

class PictureTest : public ProgramTest {
  protected:
    /// The picture that a command makes.
    Picture take(const std::string& command, const std::string& options) {
        const Outcome outcome =
            brindle(command + " --force picture.png " + options, "unset DISPLAY");
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_EQ(outcome.out.find("Wrote picture.png"), 0u) << outcome.out;
        cairo_surface_t* surface = cairo_image_surface_create_from_png(path("picture.png").c_str());
        EXPECT_EQ(cairo_surface_status(surface), CAIRO_STATUS_SUCCESS);
        Picture picture;
        for (int y = 0; y < cairo_image_surface_get_height(surface); ++y) {
            const auto* row =
                reinterpret_cast<const uint32_t*>(cairo_image_surface_get_data(surface) +
                                                  y * cairo_image_surface_get_stride(surface));
            picture.emplace_back(row, row + cairo_image_surface_get_width(surface));
            for (uint32_t& pixel : picture.back()) pixel &= 0xffffffu;
        }
        cairo_surface_destroy(surface);
        return picture;
    }
};

/// Share of the pixels from `left` to `right` in a window's lower third that differ.
double difference(const Picture& a, const Picture& b, size_t left, size_t right) {
    double count = 0.0;
    for (size_t y = 430; y < 575; ++y) {
        for (size_t x = left; x < right; ++x) count += a.at(y).at(x) != b.at(y).at(x) ? 1.0 : 0.0;
    }
    return count / static_cast<double>(145 * (right - left));
}

TEST_F(PictureTest, AudioMovesTheMeters) {
    const Picture plain = take("screenshot", "");
    const Picture loud = take("screenshot", "--set trim=12");
    // Beside the left edge the input's meter, beside the right one the output's.
    EXPECT_LT(difference(plain, loud, 45, 75), 0.01);
    EXPECT_GT(difference(plain, loud, 925, 955), 0.05);
    // The analyser's rows above the keyboard show the noise in many shades.
    EXPECT_GT(std::set<uint32_t>(&plain[345][45], &plain[345][955]).size(), 30u);
}

TEST_F(PictureTest, EditorsHaveOtherSizesAndPresets) {
    const Picture start = take("screenshot", "--size 1500x900");
    const Picture preset = take("screenshot", "--size 1500x900 --preset 'push+pull tone'");
    ASSERT_EQ(start.size(), 900u);
    ASSERT_EQ(start[0].size(), 1500u);
    EXPECT_GT(difference(start, preset, 0, 1500), 0.02);
    EXPECT_NE(start[890][1490], 0u);  // drawn to the last corner
}

/// Height of the measured curve at a place of the frequency axis, in pixels from the top.
double curve_height(const Picture& plot, double part_of_width) {
    std::vector<double> orange;
    for (size_t y = 0; y < plot.size(); ++y) {
        const auto x = part_of_width * static_cast<double>(plot[y].size());
        const uint32_t pixel = plot[y][static_cast<size_t>(x)];
        if ((pixel >> 16) >= (pixel & 0xffu) + 150u) orange.push_back(static_cast<double>(y));
    }
    return orange.empty() ? 0.0 : orange[orange.size() / 2];
}

TEST_F(PictureTest, PlotsShowTheGain) {
    const double flat = curve_height(take("response", ""), 0.5);
    const Picture up = take("response", "--drawn --phase --set trim=12");
    const double step = flat - curve_height(up, 0.5);
    EXPECT_GT(step, 100.0);
    const Picture low = take("response", "--set b1_gain=-12");
    EXPECT_GT(up.size(), low.size());
    EXPECT_NEAR(curve_height(low, 0.08) - flat, step, 0.15 * step);
    EXPECT_NEAR(curve_height(low, 0.9) - flat, 0.0, 1.5);
    ASSERT_EQ(brindle("response plot.svg --preset Dialog").status, 0);
    EXPECT_THAT(text_of("plot.svg"), AllOf(HasSubstr("<svg"), HasSubstr("</svg>")));
}

}  // namespace
}  // namespace brindle::test
