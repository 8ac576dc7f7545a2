// SPDX-License-Identifier: ISC
// Compares the loaded plugin's measured response with the analogue prototypes. The impulse is 200
// dB above the dither and comes after the glides; single-precision rounding between the stages is
// 140 dB down. So a tolerance of 0.01 dB tests the designs alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

#include "contract/brindle.h"
#include "contract/types.h"
#include "tests/support/plugin_host.h"

namespace brindle::test {
namespace {

using std::numbers::pi;
using Complex = std::complex<double>;

constexpr double kRate = 48000.0;
constexpr size_t kLength = 1 << 16;

/// A band's or section's measured response.
class Measured {
  public:
    Measured(const std::vector<double>& response, double rate) : response_(response), rate_(rate) {}
    double operator()(double hz) const { return gain_db(response_, hz, rate_); }

  private:
    std::vector<double> response_;
    double rate_;
};

Measured measure_band(BandType type, double gain, double hz, double q, double rate = kRate) {
    PluginHost host(1, rate);
    host.set_band(2, static_cast<int>(type), static_cast<float>(gain), static_cast<float>(hz),
                  static_cast<float>(q));
    return {host.impulse_response(kLength), rate};
}

Measured measure_section(int section, SectionType type, double gain, double hz, double q = 1.0) {
    PluginHost host(1, kRate);
    host.set_section(section, static_cast<int>(type), static_cast<float>(gain),
                     static_cast<float>(hz), static_cast<float>(q));
    return {host.impulse_response(kLength), kRate};
}

// (s² + s·A/Q + 1) / (s² + s/(A·Q) + 1) with A² the gain at the centre.
double analogue_bell_db(double gain, double centre_hz, double q, double hz) {
    const double A = std::pow(10.0, gain / 40.0);
    const Complex s(0.0, hz / centre_hz);
    return 20.0 * std::log10(std::abs((s * s + s * A / q + 1.0) / (s * s + s / (A * q) + 1.0)));
}

// The bell by the bilinear transform, prewarped to keep the centre: the tangent bends frequencies
// toward Nyquist.
double bilinear_bell_db(double gain, double centre_hz, double q, double hz, double rate) {
    return analogue_bell_db(gain, std::tan(pi * centre_hz / rate), q, std::tan(pi * hz / rate));
}

TEST(Physics, OffAndFlatPassTheInputTimesTrim) {
    PluginHost host(1, kRate);
    host.port(kTrimPort) = -6.0f;
    for (int band = 0; band < kBandCount; ++band) host.set_band(band, 0, 12.0f, 1000.0f, 1.0f);
    const Measured gain(host.impulse_response(kLength), kRate);
    for (double hz : {20.0, 1000.0, 20000.0}) EXPECT_NEAR(gain(hz), -6.0, 1e-4) << hz;
}

TEST(Physics, PassBandsHaveTheirCornersAndSlopes) {
    const struct {
        BandType type;
        int db_per_octave;  // rising for high-passes
    } kRows[] = {{BandType::LowPass6, -6},
                 {BandType::HighPass6, 6},
                 {BandType::LowPass12, -12},
                 {BandType::HighPass12, 12}};
    for (const auto& row : kRows) {
        SCOPED_TRACE(kBandTypes[type_index(row.type)].name);
        const double corner = 640.0;  // far below Nyquist, as the prototype
        const Measured gain = measure_band(row.type, 0.0, corner, 1.0);
        EXPECT_NEAR(gain(corner), -3.01, 0.02);
        const double direction = row.db_per_octave < 0 ? 1.0 : -1.0;
        const double octave =
            gain(corner * std::exp2(direction * 4)) - gain(corner * std::exp2(direction * 3));
        // Three octaves out, the prototypes are 0.1 dB from their asymptote, and a low-pass another
        // 0.1 dB because it ends at Nyquist.
        EXPECT_NEAR(octave, -std::abs(row.db_per_octave) * 6.0206 / 6.0, 0.5);
        EXPECT_NEAR(gain(corner * std::exp2(-direction * 5)), 0.0, 0.01);
    }
}

// n equal stages; their frequency is moved so that the cascade's corner is between 3.0 and 4.1 dB.
TEST(Physics, SteepSectionsHaveTheirCornersAndSlopes) {
    for (int stages = 1; stages <= 4; ++stages) {
        for (bool high_pass : {true, false}) {
            const auto first = high_pass ? SectionType::HighPass12 : SectionType::LowPass12;
            const auto type = static_cast<SectionType>(static_cast<int>(first) + stages - 1);
            SCOPED_TRACE(kSectionTypes[type_index(type)].name);
            const double corner = 640.0;
            const Measured gain = measure_section(high_pass ? 0 : 1, type, 0.0, corner);
            EXPECT_LE(gain(corner), -2.95);
            EXPECT_GE(gain(corner), -4.15);
            const double direction = high_pass ? -1.0 : 1.0;
            const double octave = gain(corner * std::exp2(direction * 2.5)) -
                                  gain(corner * std::exp2(direction * 1.5));
            // Here each stage, whose own corner is up to 0.6 octaves nearer, is 0.35 dB from its
            // asymptote. Further out, eight poles reach the rounding between the stages.
            EXPECT_NEAR(octave, -12.04 * stages, 0.4 * stages);
            EXPECT_NEAR(gain(corner * std::exp2(-direction * 4)), 0.0, 0.01);
        }
    }
}

TEST(Physics, BellsReachTheirGainAndHaveTheWidthOfTheirQ) {
    for (double gain : {-18.0, -6.0, 3.0, 18.0}) {
        for (double q : {0.3, 1.0, 10.0}) {
            SCOPED_TRACE(testing::Message() << gain << " dB, Q " << q);
            const Measured measured = measure_band(BandType::Bell, gain, 1000.0, q);
            EXPECT_NEAR(measured(1000.0), gain, 0.01);
            // An octave from 1 kHz is still far from Nyquist: within 0.1 dB of the prototype.
            for (double hz : {250.0, 700.0, 950.0, 1100.0, 2000.0}) {
                EXPECT_NEAR(measured(hz), analogue_bell_db(gain, 1000.0, q, hz), 0.1) << hz;
            }
        }
    }
}

// The purpose of matching: near Nyquist the bell keeps its shape, while the bilinear one cramps.
TEST(Physics, BellsNearNyquistKeepTheirShape) {
    constexpr double kCdRate = 44100.0, kCentre = 15000.0;
    for (double gain : {-12.0, 12.0}) {
        SCOPED_TRACE(gain);
        const Measured measured = measure_band(BandType::Bell, gain, kCentre, 1.0, kCdRate);
        double matched_error = 0.0, bilinear_error = 0.0;
        for (double hz = 2000.0; hz <= 20000.0; hz += 250.0) {
            const double wanted = analogue_bell_db(gain, kCentre, 1.0, hz);
            matched_error = std::max(matched_error, std::abs(measured(hz) - wanted));
            bilinear_error =
                std::max(bilinear_error,
                         std::abs(bilinear_bell_db(gain, kCentre, 1.0, hz, kCdRate) - wanted));
        }
        RecordProperty("matched_error_db", std::to_string(matched_error));
        RecordProperty("bilinear_error_db", std::to_string(bilinear_error));
        EXPECT_NEAR(measured(kCentre), gain, 0.01);
        EXPECT_GT(bilinear_error, 5.0);
        EXPECT_LT(matched_error, bilinear_error / 3.0);
    }
}

TEST(Physics, SearchPassesItsBandOnly) {
    for (double gain : {-6.0, 12.0}) {
        SCOPED_TRACE(gain);
        const double q = 4.0, A = std::pow(10.0, gain / 40.0);
        const Measured measured = measure_band(BandType::Search, gain, 1000.0, q);
        for (double hz : {100.0, 500.0, 900.0, 1000.0, 1200.0, 4000.0}) {
            const Complex s(0.0, hz / 1000.0);
            const double wanted =
                20.0 * std::log10(std::abs(A * s / q / (s * s + s / (A * q) + 1.0)));
            EXPECT_NEAR(measured(hz), wanted, 0.1) << hz;
        }
    }
}

TEST(Physics, ShelvesReachTheirPlateaus) {
    const struct {
        BandType type;
        double hz;
        bool low;
    } kRows[] = {{BandType::LoShelf, 1000.0, true},
                 {BandType::LoShelf2, 1000.0, true},
                 {BandType::SymLoShelf, 1000.0, true},
                 {BandType::HiShelf, 1000.0, false},
                 {BandType::HiShelf2, 1000.0, false}};
    for (const auto& row : kRows) {
        for (double gain : {-18.0, -3.0, 9.0, 18.0}) {
            SCOPED_TRACE(testing::Message()
                         << kBandTypes[type_index(row.type)].name << " " << gain);
            const Measured measured = measure_band(row.type, gain, row.hz, 1.0);
            EXPECT_NEAR(measured(row.low ? 20.0 : 23900.0), gain, 0.05);
            EXPECT_NEAR(measured(row.low ? 23900.0 : 20.0), 0.0, 0.05);
        }
    }
    for (int type = static_cast<int>(SectionType::HiShelf12);
         type <= static_cast<int>(SectionType::LoShelf48); ++type) {
        SCOPED_TRACE(kSectionTypes[type_index(type)].name);
        const bool low = type >= static_cast<int>(SectionType::LoShelf12);
        const Measured measured =
            measure_section(low ? 0 : 1, static_cast<SectionType>(type), 12.0, 1000.0);
        EXPECT_NEAR(measured(low ? 20.0 : 23900.0), 12.0, 0.05);
        EXPECT_NEAR(measured(low ? 23900.0 : 20.0), 0.0, 0.05);
    }
}

TEST(Physics, NotchesAreDeepAndAsWideAsTheirQ) {
    for (double q : {1.0, 5.0}) {
        SCOPED_TRACE(q);
        const Measured measured = measure_band(BandType::Notch, 0.0, 1000.0, q);
        EXPECT_LT(measured(1000.0), -90.0);
        const double half = 1.0 / (2.0 * q);  // edges at sqrt(1 + 1/(4Q²)) ± 1/(2Q)
        for (double sign : {-1.0, 1.0}) {
            const double edge_hz = 1000.0 * (std::sqrt(1.0 + half * half) + sign * half);
            EXPECT_NEAR(measured(edge_hz), -3.01, 0.05) << edge_hz;
        }
    }
}

// At 1 kHz with Q 1, the notches are at 681, 880, 1136 and 1468 Hz.
TEST(Physics, WideNotchSpreadsItsFourNotches) {
    const Measured measured = measure_section(0, SectionType::WideNotch, 0.0, 1000.0, 1.0);
    for (double hz : {681.4, 880.0, 1136.4, 1467.6}) EXPECT_LT(measured(hz), -50.0) << hz;
    EXPECT_LT(measured(1000.0), -24.0);
    EXPECT_NEAR(measured(50.0), 0.0, 0.2);
    EXPECT_NEAR(measured(15000.0), 0.0, 0.2);
}

}  // namespace
}  // namespace brindle::test
