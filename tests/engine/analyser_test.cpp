// SPDX-License-Identifier: ISC
// The analyser's rows for signals with known spectra.
#include "engine/analyser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <memory>
#include <numbers>
#include <vector>

namespace brindle {
namespace {

constexpr double kPi = std::numbers::pi;
using Row = std::array<float, kPlotBins>;

double centre_hz(int bin) {
    return 20.0 * std::pow(2.0, bin / 24.0);
}

/// The newest row after three seconds of `signal`, a function of time in seconds.
Row row_of(double rate, const std::function<double(double)>& signal) {
    auto analyser = std::make_unique<SpectrumAnalyser>();
    init_analyser(*analyser, rate);
    std::vector<float> input(static_cast<size_t>(3.0 * rate));
    for (size_t i = 0; i < input.size(); ++i) {
        input[i] = static_cast<float>(signal(static_cast<double>(i) / rate));
    }
    analyse(*analyser, input.data(), static_cast<uint32_t>(input.size()));
    return analyser->rows[analyser->row_index];
}

auto sine(double hz, double peak) {
    return [=](double time) { return peak * std::sin(2.0 * kPi * hz * time); };
}

/// Power response of a bin's low-pass at a distance from its centre: a digital second-order
/// Butterworth falls with the fourth power of the ratio of the tangents.
double low_pass_power(int bin, double distance_hz, double rate) {
    const double cutoff_hz = 0.707 * (centre_hz(bin + 1) - centre_hz(bin));
    const double ratio = std::tan(kPi * distance_hz / rate) / std::tan(kPi * cutoff_hz / rate);
    return 1.0 / (1.0 + std::pow(ratio, 4.0));
}

/// Other bins see the sine at the difference of the frequencies and, weaker, at their sum, and the
/// two beat. At low frequencies, a row is too short to average out the beat far from the centre.
TEST(Analyser, SineStandsInItsBinAndFallsOffWithTheLowPass) {
    for (double rate : {44100.0, 96000.0}) {
        for (const auto& [bin, reach] : {std::pair{30, 6}, {120, 20}, {210, 20}}) {
            SCOPED_TRACE(testing::Message() << "rate " << rate << " bin " << bin);
            const double hz = centre_hz(bin);
            const Row row = row_of(rate, sine(hz, 0.25));
            EXPECT_EQ(std::max_element(row.begin(), row.end()) - row.begin(), bin);
            EXPECT_EQ(row[static_cast<size_t>(bin)], -10.0f);
            for (int other = bin - reach; other <= bin + reach; ++other) {
                const double power = low_pass_power(other, hz - centre_hz(other), rate) +
                                     low_pass_power(other, hz + centre_hz(other), rate);
                EXPECT_NEAR(row[static_cast<size_t>(other)], -10.0 + 10.0 * std::log10(power), 0.01)
                    << "in bin " << other;
            }
        }
    }
}

/// Up to the limit of the lift, the loudest bin reads -10 dB. A sine of amplitude A has a mean
/// power of A²/4 in its bin; a weaker one beside it keeps its distance.
TEST(Analyser, LiftsQuietMaterialByAtMost36Decibels) {
    for (const auto& [peak_db, shown_db] :
         {std::pair{-39.9, -10.0}, {-40.1, -10.1}, {-80.0, -50.0}, {-120.0, -90.0}}) {
        SCOPED_TRACE(peak_db);
        const double peak = std::pow(10.0, peak_db / 20.0);
        const Row row = row_of(
            48000.0, [loud = sine(centre_hz(170), peak), weak = sine(centre_hz(100), 0.1 * peak)](
                         double time) { return loud(time) + weak(time); });
        EXPECT_NEAR(row[170], shown_db, 0.002);
        EXPECT_NEAR(row[100], shown_db - 20.0, 0.01);
    }
    for (float level_db : row_of(48000.0, [](double) { return 0.0; })) {
        EXPECT_LT(level_db, -180.0f) << "silence stays far below every display";
        EXPECT_TRUE(std::isfinite(level_db));
    }
}

/// At odd rates, the low-pass of a bin beyond half the rate stays stable.
TEST(Analyser, StaysFiniteAtLowRatesAndBeginsAnewAfterTheLastRow) {
    for (double rate : {1.0, 860.0, 44100.0}) {
        SCOPED_TRACE(rate);
        auto analyser = std::make_unique<SpectrumAnalyser>();
        init_analyser(*analyser, rate);
        const std::vector<float> input(2048 * kPlotRows + 1, 0.5f);  // a row ends with its first
        analyse(*analyser, input.data(), static_cast<uint32_t>(input.size()));
        EXPECT_EQ(analyser->row_index, 1u);
        for (float level_db : analyser->rows[1]) ASSERT_TRUE(std::isfinite(level_db));
    }
}

}  // namespace
}  // namespace brindle
