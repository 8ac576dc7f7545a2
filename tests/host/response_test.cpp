// SPDX-License-Identifier: ISC
#include <cairo.h>
#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <numbers>
#include <sstream>
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
    ASSERT_EQ(brindle("response r.csv --preset Kick").status, 0);
    ASSERT_EQ(brindle("response r.txt --preset Kick").status, 0);
    const auto gains = table("r.csv");
    const auto phases = table("r.csv", "phase_deg");
    std::istringstream text(text_of("r.txt"));
    std::string line;
    size_t count = 0;
    while (std::getline(text, line)) {
        if (line.starts_with("#")) continue;
        std::istringstream fields(line);
        double freq_hz = 0.0;
        double gain_db = 0.0;
        double phase_deg = 0.0;
        ASSERT_TRUE(fields >> freq_hz >> gain_db >> phase_deg) << line;
        ASSERT_NEAR(gain_db, gains.at(freq_hz), 0.0001);
        ASSERT_NEAR(phase_deg, phases.at(freq_hz), 0.001);
        ++count;
    }
    EXPECT_EQ(count, gains.size());
}

// The editor draws a steep filter as a Butterworth one, 3 dB down at the corner, and leaves the
// trim out; the plugin's own corner lies lower.
TEST_F(ResponseCommand, TheDrawnCurveStandsBesideTheMeasuredOne) {
    const Outcome flat = brindle("response flat.csv --drawn --set trim=6");
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

/// How a curve's colour is told from all other colours of the picture.
using Ink = bool (*)(int red, int green, int blue);

bool is_orange(int red, int, int blue) {
    return red - blue >= 150;
}
bool is_blue(int red, int, int blue) {
    return blue - red >= 130;
}
bool is_violet(int red, int green, int blue) {
    return blue - green >= 80 && red - green >= 40;
}

/// Height of a curve at a place of the frequency axis, in pixels from the top.
double curve_height(const std::string& path, double part_of_width, Ink ink = is_orange) {
    cairo_surface_t* picture = cairo_image_surface_create_from_png(path.c_str());
    EXPECT_EQ(cairo_surface_status(picture), CAIRO_STATUS_SUCCESS);
    const int x = static_cast<int>(part_of_width * cairo_image_surface_get_width(picture));
    const unsigned char* pixels = cairo_image_surface_get_data(picture);
    double sum = 0.0;
    int count = 0;
    for (int y = 0; y < cairo_image_surface_get_height(picture); ++y) {
        const unsigned char* pixel =
            pixels + y * cairo_image_surface_get_stride(picture) + 4 * x;  // blue, green, red
        if (!ink(pixel[2], pixel[1], pixel[0])) continue;
        sum += y;
        ++count;
    }
    cairo_surface_destroy(picture);
    EXPECT_GT(count, 0);
    return sum / count;
}

TEST_F(ResponseCommand, ThePlotShowsTheGain) {
    ASSERT_EQ(brindle("response flat.png").status, 0);
    ASSERT_EQ(brindle("response up.png --drawn --phase --set trim=12").status, 0);
    ASSERT_EQ(brindle("response down.png --set trim=-12").status, 0);
    ASSERT_EQ(brindle("response low.png --set b1_gain=12").status, 0);
    const double flat = curve_height(path("flat.png"), 0.5);
    const double step = flat - curve_height(path("up.png"), 0.5);
    EXPECT_GT(step, 100.0);
    EXPECT_NEAR(curve_height(path("down.png"), 0.5) - flat, step, 1.5);
    EXPECT_NEAR(flat - curve_height(path("low.png"), 0.08), step, 0.15 * step);
    EXPECT_NEAR(flat - curve_height(path("low.png"), 0.9), 0.0, 1.5);
    EXPECT_NEAR(curve_height(path("up.png"), 0.5, is_blue), flat, 1.5);
    EXPECT_GT(curve_height(path("up.png"), 0.5, is_violet), 2.0 * flat);
}

TEST_F(ResponseCommand, ThePlotComesAsSvgToo) {
    ASSERT_EQ(brindle("response plot.svg --preset Dialog").status, 0);
    EXPECT_THAT(text_of("plot.svg"), AllOf(HasSubstr("<svg"), HasSubstr("</svg>")));
}

}  // namespace
}  // namespace brindle::test
