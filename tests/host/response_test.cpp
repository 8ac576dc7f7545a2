// SPDX-License-Identifier: ISC
#include <cairo.h>
#include <gmock/gmock.h>

#include <cmath>
#include <string>

#include "tests/host/program.h"

namespace brindle::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

using ResponseCommand = ProgramTest;

TEST_F(ResponseCommand, DefaultSettingsAreFlatFrom20HzTo20kHz) {
    ASSERT_EQ(brindle("response flat.csv").status, 0);
    const auto gains = table("flat.csv");
    ASSERT_FALSE(gains.empty());
    EXPECT_NEAR(gains.begin()->first, 20.0, 0.001);
    EXPECT_NEAR(gains.rbegin()->first, 20000.0, 100.0);
    for (const auto& [freq_hz, gain_db] : gains) ASSERT_NEAR(gain_db, 0.0, 0.001) << freq_hz;
}

TEST_F(ResponseCommand, SingleValuesStandOverThePreset) {
    ASSERT_EQ(brindle("response kick.csv --preset kick").status, 0);
    ASSERT_EQ(brindle("response quiet.csv --preset Kick --set trim=-6").status, 0);
    const auto kick = table("kick.csv");
    const auto quiet = table("quiet.csv");
    ASSERT_EQ(kick.size(), quiet.size());
    for (const auto& [freq_hz, gain_db] : kick) {
        ASSERT_NEAR(quiet.at(freq_hz), gain_db - 6.0, 0.002) << freq_hz;
    }
}

// The response is measured with one broadband signal; a file with a steady tone has to agree.
TEST_F(ResponseCommand, TellsWhatATonesLevelWillBe) {
    for (const char* preset : {"Dialog", "Hot Pocket", "60Hz Buzz Kill", "Snare"}) {
        SCOPED_TRACE(preset);
        const std::string settings = " --preset '" + std::string(preset) + "' ";
        ASSERT_EQ(brindle("response r.csv --rate 44100" + settings, "rm -f r.csv").status, 0);
        const auto gains = table("r.csv");
        for (const double about_hz : {40.0, 110.0, 450.0, 2500.0, 12000.0}) {
            const auto& [freq_hz, gain_db] = *gains.lower_bound(about_hz);
            SCOPED_TRACE(freq_hz);
            save("in.wav", tone(freq_hz, 0.25, 3.0, 44100, 1, SF_FORMAT_WAV | SF_FORMAT_FLOAT));
            ASSERT_EQ(brindle("render in.wav out.wav" + settings, "rm -f out.wav").status, 0);
            const double ratio =
                level_at(load("out.wav"), freq_hz, 0) / level_at(load("in.wav"), freq_hz, 0);
            // 0.1 % is 0.009 dB; -120 dB is what rounding leaves of a measurement.
            EXPECT_NEAR(ratio, std::pow(10.0, gain_db / 20.0), 0.001 * ratio + 1e-6);
        }
    }
}

TEST_F(ResponseCommand, EndsBelowNyquistAtLowRates) {
    ASSERT_EQ(brindle("response low.csv --rate 8000 --set b5_gain=6").status, 0);
    const auto gains = table("low.csv");
    EXPECT_LT(gains.rbegin()->first, 4000.0);
    EXPECT_NEAR(gains.lower_bound(1000.0)->second, 6.0, 0.01);
}

/// Height of the curve (the picture's only strong orange) at a place of the frequency axis, in
/// pixels from the top.
double curve_height(const std::string& path, double part_of_width) {
    cairo_surface_t* picture = cairo_image_surface_create_from_png(path.c_str());
    EXPECT_EQ(cairo_surface_status(picture), CAIRO_STATUS_SUCCESS);
    const int x = static_cast<int>(part_of_width * cairo_image_surface_get_width(picture));
    const unsigned char* pixels = cairo_image_surface_get_data(picture);
    double sum = 0.0;
    int count = 0;
    for (int y = 0; y < cairo_image_surface_get_height(picture); ++y) {
        const unsigned char* pixel =
            pixels + y * cairo_image_surface_get_stride(picture) + 4 * x;  // blue, green, red
        if (pixel[2] - pixel[0] < 150) continue;
        sum += y;
        ++count;
    }
    cairo_surface_destroy(picture);
    EXPECT_GT(count, 0);
    return sum / count;
}

TEST_F(ResponseCommand, ThePlotShowsTheGain) {
    ASSERT_EQ(brindle("response flat.png").status, 0);
    ASSERT_EQ(brindle("response up.png --set trim=12").status, 0);
    ASSERT_EQ(brindle("response down.png --set trim=-12").status, 0);
    ASSERT_EQ(brindle("response low.png --set b1_gain=12").status, 0);
    const double flat = curve_height(path("flat.png"), 0.5);
    const double step = flat - curve_height(path("up.png"), 0.5);
    EXPECT_GT(step, 100.0);
    EXPECT_NEAR(curve_height(path("down.png"), 0.5) - flat, step, 1.5);
    EXPECT_NEAR(flat - curve_height(path("low.png"), 0.08), step, 0.15 * step);
    EXPECT_NEAR(flat - curve_height(path("low.png"), 0.9), 0.0, 1.5);
}

TEST_F(ResponseCommand, ThePlotComesAsSvgToo) {
    ASSERT_EQ(brindle("response plot.svg --preset Dialog").status, 0);
    EXPECT_THAT(text_of("plot.svg"), AllOf(HasSubstr("<svg"), HasSubstr("</svg>")));
}

}  // namespace
}  // namespace brindle::test
