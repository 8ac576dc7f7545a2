// SPDX-License-Identifier: ISC
#include <gmock/gmock.h>

#include <cstdio>
#include <cstring>
#include <numbers>
#include <string>

#include "tests/host/program.h"

namespace brindle::test {
namespace {

using testing::HasSubstr;

using ResponseCommand = ProgramTest;

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

TEST_F(ResponseCommand, GoesFrom20HzTo20kHzOrBelowNyquistAtLowRates) {
    ASSERT_EQ(brindle("response flat.csv").status, 0);
    const auto flat = table("flat.csv");
    EXPECT_NEAR(flat.begin()->first, 20.0, 0.001);
    EXPECT_NEAR(flat.rbegin()->first, 20000.0, 100.0);
    for (const auto& [freq_hz, gain_db] : flat) ASSERT_NEAR(gain_db, 0.0, 0.001) << freq_hz;
    ASSERT_EQ(brindle("response low.csv --rate 8000 --set b5_gain=6").status, 0);
    EXPECT_LT(table("low.csv").rbegin()->first, 4000.0);
    EXPECT_NEAR(table("low.csv").lower_bound(1000.0)->second, 6.0, 0.01);
}

// A sign or a factor in phase or delay: both are known at the corner of low filters, where a
// digital one is no more than a sample ahead of its analogue model.
TEST_F(ResponseCommand, TellsPhaseAndGroupDelay) {
    constexpr double kTurnMs = 1000.0 / (200.0 * std::numbers::pi);
    struct {
        const char* type;
        double phase_deg;
        double delay_ms;
    } constexpr kAtCorner[] = {{"HP 6dB/oct", 45.0, 0.5 * kTurnMs},
                               {"LP 12dB/oct", -90.0, std::numbers::sqrt2 * kTurnMs}};
    for (const auto& [type, phase_deg, delay_ms] : kAtCorner) {
        SCOPED_TRACE(type);
        const std::string settings = " --set b1_freq=100 --set b1_type='" + std::string(type) + "'";
        ASSERT_EQ(brindle("response --force p.csv" + settings).status, 0);
        const auto at_corner = [&](const char* column) {
            return table("p.csv", column).lower_bound(100.0)->second;
        };
        EXPECT_NEAR(at_corner("phase_deg"), phase_deg, 100.0 * 360.0 / 48000.0);
        EXPECT_NEAR(at_corner("group_delay_ms"), delay_ms, 1000.0 / 48000.0);
        // For other programs, in hertz, decibels and degrees.
        ASSERT_EQ(brindle("response --force p.txt" + settings).status, 0);
        const Outcome compared = shell(
            "for file in p.csv p.txt; do "
            "awk -F '[, ]+' '/^[0-9]/ { print $1, $2, $3 }' $file >told-$file; done; "
            "cmp told-p.csv told-p.txt && wc -l <told-p.txt");
        EXPECT_GT(std::stoi("0" + compared.out), 1000) << compared.err;
    }
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
    auto drawn = table("steep.csv", "drawn_db");
    EXPECT_NEAR(drawn.lower_bound(1000.0)->second, -3.01, 0.1);
    double told_db = 0.0;
    double at_hz = 0.0;
    const char* told = std::strstr(steep.out.c_str(), "at most");
    ASSERT_TRUE(told && std::sscanf(told, "at most %lf dB, at %lf", &told_db, &at_hz) == 2);
    for (auto& [freq_hz, level_db] : table("steep.csv")) drawn.at(freq_hz) -= level_db;
    EXPECT_NEAR(told_db, drawn.lower_bound(at_hz - 0.5)->second, 0.1);
    EXPECT_LT(told_db, -5.0);
}

}  // namespace
}  // namespace brindle::test
