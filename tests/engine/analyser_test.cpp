// SPDX-License-Identifier: ISC
// The analyser's rows for signals with known spectra, and at any rate.
#include "engine/analyser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <vector>

namespace brindle {
namespace {

/// Up to the limit of the lift, 36 dB, the loudest bin reads -10 dB. A sine of amplitude A has a
/// mean power of A²/4 in its bin.
TEST(Analyser, SinesStandInTheirBinsLiftedByAtMost36Decibels) {
    for (double rate : {44100.0, 96000.0}) {
        for (const auto& [bin, peak_db, shown_db] : {std::tuple{30, -12.0, -10.0},
                                                     {120, -39.9, -10.0},
                                                     {210, -40.1, -10.1},
                                                     {170, -120.0, -90.0}}) {
            SCOPED_TRACE(testing::Message() << rate << " Hz, bin " << bin);
            const double turn = 2.0 * std::numbers::pi * 20.0 * std::exp2(bin / 24.0) / rate;
            std::vector<float> input(static_cast<size_t>(3.0 * rate));
            for (size_t i = 0; i < input.size(); ++i) {
                input[i] = static_cast<float>(std::pow(10.0, peak_db / 20.0) *
                                              std::sin(turn * static_cast<double>(i)));
            }
            const auto analyser = std::make_unique<SpectrumAnalyser>();
            init_analyser(*analyser, rate);
            analyse(*analyser, input.data(), static_cast<uint32_t>(input.size()));
            const auto& row = analyser->rows[analyser->row_index];
            EXPECT_EQ(std::max_element(row.begin(), row.end()) - row.begin(), bin);
            EXPECT_NEAR(row[static_cast<size_t>(bin)], shown_db, 0.002);
        }
    }
}

/// At odd rates, the low-pass of a bin beyond half the rate stays stable.
TEST(Analyser, StaysFiniteAtLowRatesAndBeginsAnewAfterTheLastRow) {
    for (double rate : {1.0, 860.0, 44100.0}) {
        SCOPED_TRACE(rate);
        const auto analyser = std::make_unique<SpectrumAnalyser>();
        init_analyser(*analyser, rate);
        const std::vector<float> input(2048 * kPlotRows + 1, 0.5f);  // a row ends with its first
        analyse(*analyser, input.data(), static_cast<uint32_t>(input.size()));
        EXPECT_EQ(analyser->row_index, 1u);
        for (float level_db : analyser->rows[1]) ASSERT_TRUE(std::isfinite(level_db));
    }
}

}  // namespace
}  // namespace brindle
