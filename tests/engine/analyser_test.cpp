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
#include <random>
#include <vector>

namespace brindle {
namespace {

constexpr double kPi = std::numbers::pi;
using Row = std::array<float, kPlotBins>;

double centre_hz(int bin) {
    return 20.0 * std::pow(2.0, bin / 24.0);
}

std::unique_ptr<SpectrumAnalyser> make(double rate) {
    auto analyser = std::make_unique<SpectrumAnalyser>();
    init_analyser(*analyser, rate);
    return analyser;
}

const Row& newest(const SpectrumAnalyser& analyser) {
    return analyser.rows[analyser.row_index];
}

/// Plays `seconds` of `signal`, a function of time in seconds.
void play(SpectrumAnalyser& analyser, double seconds, const std::function<double(double)>& signal) {
    std::vector<float> input(static_cast<size_t>(seconds * analyser.rate));
    for (size_t i = 0; i < input.size(); ++i) {
        input[i] = static_cast<float>(signal(static_cast<double>(i) / analyser.rate));
    }
    analyse(analyser, input.data(), static_cast<uint32_t>(input.size()));
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
            auto analyser = make(rate);
            play(*analyser, 3.0, sine(hz, 0.25));
            const Row& row = newest(*analyser);
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

TEST(Analyser, TwoSinesKeepTheirDifference) {
    auto analyser = make(48000.0);
    play(*analyser, 3.0,
         [low = sine(centre_hz(100), 0.03), high = sine(centre_hz(170), 0.3)](double time) {
             return low(time) + high(time);
         });
    EXPECT_EQ(newest(*analyser)[170], -10.0f);
    EXPECT_NEAR(newest(*analyser)[100], -30.0, 0.01);
}

/// Up to the limit of the lift, the loudest bin reads -10 dB. A sine of amplitude A has a mean
/// power of A²/4 in its bin.
TEST(Analyser, LiftsQuietMaterialByAtMost36Decibels) {
    for (const auto& [peak_db, shown_db] :
         {std::pair{-39.9, -10.0}, {-40.1, -10.1}, {-80.0, -50.0}, {-120.0, -90.0}}) {
        SCOPED_TRACE(peak_db);
        auto analyser = make(48000.0);
        play(*analyser, 3.0, sine(centre_hz(120), std::pow(10.0, peak_db / 20.0)));
        EXPECT_NEAR(newest(*analyser)[120], shown_db, 0.002);
    }
    auto analyser = make(48000.0);
    play(*analyser, 2.0, [](double) { return 0.0; });
    for (float level_db : newest(*analyser)) {
        EXPECT_LT(level_db, -180.0f) << "silence stays far below every display";
        EXPECT_TRUE(std::isfinite(level_db));
    }
}

/// Mean power in dB of the bins of `octave` above 640 Hz over ten seconds of `next` samples.
std::array<double, 4> octave_levels_db(const std::function<double()>& next) {
    auto analyser = make(48000.0);
    analyser->normalise = false;
    std::array<double, 4> power = {};
    std::array<float, 2048> input;
    for (int block = 0; block < 240; ++block) {
        std::generate(input.begin(), input.end(), [&] { return static_cast<float>(next()); });
        analyse(*analyser, input.data(), input.size());
        for (size_t bin = 0; block >= 20 && bin < 4 * 24; ++bin) {
            power[bin / 24] += std::pow(10.0, newest(*analyser)[120 + bin] / 10.0f);
        }
    }
    for (double& level : power) level = 10.0 * std::log10(level);
    return power;
}

TEST(Analyser, WhiteNoiseRisesAndPinkNoiseLiesLevel) {
    std::mt19937 random(3);
    std::normal_distribution<double> white(0.0, 0.1);
    const auto white_db = octave_levels_db([&] { return white(random); });
    // Paul Kellet's filter, a sum of one-pole low-passes, falls by 3 dB an octave.
    std::array<double, 6> state = {};
    double last = 0.0;
    const auto pink_db = octave_levels_db([&] {
        constexpr double kKeep[] = {0.99886, 0.99332, 0.96900, 0.86650, 0.55000, -0.7616};
        constexpr double kTake[] = {0.0555179, 0.0750759, 0.1538520,
                                    0.3104856, 0.5329522, -0.0168980};
        const double x = white(random);
        double sum = 0.5362 * x + last;
        last = 0.115926 * x;
        for (size_t i = 0; i < state.size(); ++i) {
            state[i] = kKeep[i] * state[i] + kTake[i] * x;
            sum += state[i];
        }
        return sum;
    });
    for (size_t octave = 1; octave < 4; ++octave) {
        SCOPED_TRACE(octave);
        EXPECT_NEAR(white_db[octave] - white_db[octave - 1], 3.01, 0.25);
        EXPECT_NEAR(pink_db[octave] - pink_db[octave - 1], 0.0, 0.35);
    }
}

TEST(Analyser, ClosesARowWithItsFirstSampleAndThenEveryFrame) {
    struct Case {
        double rate;
        uint32_t frame, rows;
    };
    constexpr uint32_t kOnceAround = kPlotRows + 1;
    for (const auto& [rate, frame, rows] : {Case{44100.0, 2048, kOnceAround},
                                            {48000.0, 2048, 3},
                                            {64000.9, 2048, 3},
                                            {64001.0, 4096, 3},
                                            {88200.0, 4096, 3},
                                            {96000.0, 4096, 3}}) {
        SCOPED_TRACE(rate);
        auto analyser = make(rate);
        EXPECT_EQ(analyser->row_index, 0u);
        const std::vector<float> input(frame - 1, 0.5f);
        for (uint32_t row = 1; row <= rows; ++row) {
            analyse(*analyser, input.data(), 1);
            ASSERT_EQ(analyser->row_index, row % kPlotRows);
            analyse(*analyser, input.data(), frame - 1);
            ASSERT_EQ(analyser->row_index, row % kPlotRows);
        }
    }
}

/// At odd rates, the low-pass of a bin beyond half the rate stays stable.
TEST(Analyser, StaysFiniteAtLowRatesAndBeginsAnewAfterTheLastRow) {
    for (double rate : {1.0, 860.0, 44100.0}) {
        SCOPED_TRACE(rate);
        auto analyser = make(rate);
        const std::vector<float> input(2048 * kPlotRows + 1, 0.5f);  // a row ends with its first
        analyse(*analyser, input.data(), static_cast<uint32_t>(input.size()));
        EXPECT_EQ(analyser->row_index, 1u);
        for (float level_db : newest(*analyser)) ASSERT_TRUE(std::isfinite(level_db));
    }
}

}  // namespace
}  // namespace brindle
