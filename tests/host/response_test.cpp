// SPDX-License-Identifier: ISC
#include <cairo.h>
#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <numbers>
#include <string>
#include <vector>

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

TEST_F(ResponseCommand, EndsBelowNyquistAtLowRates) {
    ASSERT_EQ(brindle("response low.csv --rate 8000 --set b5_gain=6").status, 0);
    const auto gains = table("low.csv");
    EXPECT_LT(gains.rbegin()->first, 4000.0);
    EXPECT_NEAR(gains.lower_bound(1000.0)->second, 6.0, 0.01);
}

// A sign or a factor in phase or delay: both are known at the corner of low filters, where a
// digital one is no more than a sample ahead of its analogue model, and the delay is the phase's
// slope everywhere.
TEST_F(ResponseCommand, TellsPhaseAndGroupDelay) {
    struct {
        const char* type;
        double phase_deg;
        double delay_ms;
    } constexpr kAtCorner[] = {
        {"HP 6dB/oct", 45.0, 500.0 / (200.0 * std::numbers::pi)},
        {"LP 12dB/oct", -90.0, 1000.0 * std::numbers::sqrt2 / (200.0 * std::numbers::pi)}};
    for (const auto& [type, phase_deg, delay_ms] : kAtCorner) {
        SCOPED_TRACE(type);
        const std::string settings = " --set b1_freq=100 --set b1_type='" + std::string(type) + "'";
        ASSERT_EQ(brindle("response p.csv" + settings, "rm -f p.csv").status, 0);
        const auto gains = table("p.csv");
        const auto phases = table("p.csv", "phase_deg");
        const auto delays = table("p.csv", "group_delay_ms");
        EXPECT_NEAR(phases.lower_bound(100.0)->second, phase_deg, 100.0 * 360.0 / 48000.0);
        EXPECT_NEAR(delays.lower_bound(100.0)->second, delay_ms, 1000.0 / 48000.0);
        auto before = phases.begin();
        for (auto at = std::next(before); at != phases.end(); before = at++) {
            const double slope_ms =
                (before->second - at->second) / (at->first - before->first) / 0.36;
            const double mean_ms = (delays.at(before->first) + delays.at(at->first)) / 2.0;
            if (gains.at(at->first) < -40.0) continue;  // rounding shows
            // Phases are told to 0.001 degrees, points are 0.36 % apart.
            ASSERT_NEAR(mean_ms, slope_ms, 0.001 * delay_ms + 0.8 / at->first) << at->first;
        }
    }
}

TEST_F(ResponseCommand, OtherProgramsGetHertzDecibelsAndDegrees) {
    const Outcome outcome =
        shell(BRINDLE_PROGRAM " response r.csv --preset Kick; " BRINDLE_PROGRAM
                              " response r.txt --preset Kick; "
                              "awk -F '[, ]+' '/^[0-9]/ { print $1, $2, $3 }' r.csv >wanted; "
                              "awk '/^[0-9]/ { print $1, $2, $3 }' r.txt | cmp - wanted");
    EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.err;
    EXPECT_GT(text_of("wanted").size(), 1000u);
}

// The editor draws a steep filter as a Butterworth one, 3 dB down at the corner, and leaves the
// trim out; the plugin's own corner lies lower.
TEST_F(ResponseCommand, TheDrawnCurveStandsBesideTheMeasuredOne) {
    const Outcome flat =
        brindle("response flat.csv --drawn --set trim=6 --set b2_enable=off --set b2_gain=9");
    EXPECT_THAT(flat.out, HasSubstr("(drawn less measured: at most +0.00 dB"));
    for (const auto& [freq_hz, level_db] : table("flat.csv", "drawn_db")) {
        ASSERT_EQ(level_db, 0.0) << freq_hz;
    }
    const Outcome steep = brindle(
        "response steep.csv --drawn --set seca_enable=on --set seca_type='HP 48dB/oct' "
        "--set seca_freq=1000");
    const auto drawn = table("steep.csv", "drawn_db");
    const auto gains = table("steep.csv");
    EXPECT_NEAR(drawn.lower_bound(1000.0)->second, -3.01, 0.1);
    double largest_db = 0.0;
    for (const auto& [freq_hz, level_db] : drawn) {
        if (std::abs(level_db) > 18.0 || freq_hz > 19800.0) continue;
        const double difference_db = level_db - gains.at(freq_hz);
        if (std::abs(difference_db) > std::abs(largest_db)) largest_db = difference_db;
    }
    std::array<char, 32> told{};
    std::snprintf(told.data(), told.size(), "at most %+.2f dB", largest_db);
    EXPECT_LT(largest_db, -5.0);
    EXPECT_THAT(steep.out, HasSubstr(told.data()));
}

/// Height of the measured curve at a place of the frequency axis, in pixels from the top.
double curve_height(const std::string& path, double part_of_width) {
    cairo_surface_t* picture = cairo_image_surface_create_from_png(path.c_str());
    EXPECT_EQ(cairo_surface_status(picture), CAIRO_STATUS_SUCCESS);
    const int x = static_cast<int>(part_of_width * cairo_image_surface_get_width(picture));
    const unsigned char* pixels = cairo_image_surface_get_data(picture);
    std::vector<double> orange;
    for (int y = 0; y < cairo_image_surface_get_height(picture); ++y) {
        const unsigned char* pixel =
            pixels + y * cairo_image_surface_get_stride(picture) + 4 * x;  // blue, green, red
        if (pixel[2] - pixel[0] >= 150) orange.push_back(y);
    }
    cairo_surface_destroy(picture);
    return orange.empty() ? 0.0 : orange[orange.size() / 2];
}

TEST_F(ResponseCommand, ThePlotShowsTheGain) {
    ASSERT_EQ(brindle("response flat.png").status, 0);
    ASSERT_EQ(brindle("response up.png --drawn --phase --set trim=12").status, 0);
    ASSERT_EQ(brindle("response low.png --set b1_gain=-12").status, 0);
    const double flat = curve_height(path("flat.png"), 0.5);
    const double step = flat - curve_height(path("up.png"), 0.5);
    EXPECT_GT(step, 100.0);
    EXPECT_NEAR(curve_height(path("low.png"), 0.08) - flat, step, 0.15 * step);
    EXPECT_NEAR(curve_height(path("low.png"), 0.9) - flat, 0.0, 1.5);
}

TEST_F(ResponseCommand, ThePlotComesAsSvgToo) {
    ASSERT_EQ(brindle("response plot.svg --preset Dialog").status, 0);
    EXPECT_THAT(text_of("plot.svg"), AllOf(HasSubstr("<svg"), HasSubstr("</svg>")));
}

}  // namespace
}  // namespace brindle::test
