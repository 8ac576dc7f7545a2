// SPDX-License-Identifier: ISC
// Compares the loaded plugin's measured response with the analogue prototypes. The impulse is 200
// dB above the dither and comes after the glides; single-precision rounding between the stages is
// 140 dB down. So a tolerance of 0.01 dB tests the designs alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <functional>
#include <string>

#include "contract/ports.h"
#include "tests/support/plugin_host.h"

namespace brindle::test {
namespace {

constexpr int kBand = 2, kSectionA = kBandCount;

/// The measured gain [dB] at a frequency [Hz] of a strip whose type has the given name.
std::function<double(double)> measure(int strip, const std::string& type, double gain, double hz,
                                      double q = 1.0, double rate = 48000.0) {
    const auto types = strip_types(strip);
    const auto row = std::find_if(types.begin(), types.end(),
                                  [&type](const TypeRow& each) { return each.name == type; });
    PluginHost host(1, rate);
    host.set_strip(strip, static_cast<int>(row - types.begin()), static_cast<float>(gain),
                   static_cast<float>(hz), static_cast<float>(q));
    return [response = host.impulse_response(1 << 16), rate](double at_hz) {
        return gain_db(response, at_hz, rate);
    };
}

// n equal stages of a section: their frequency is moved so that the cascade's corner is between 3.0
// and 4.1 dB.
TEST(Physics, PassesHaveTheirCornersAndSlopes) {
    const double corner = 640.0;  // far below Nyquist, as the prototype
    for (int strip : {kBand, kSectionA}) {
        for (int db_per_octave : {6, 12, 24, 36, 48}) {
            if (is_band(strip) ? db_per_octave > 12 : db_per_octave < 12) continue;
            for (const char* kind : {"LP ", "HP "}) {
                const std::string type = kind + std::to_string(db_per_octave) + "dB/oct";
                SCOPED_TRACE(strip_row(strip).name + (' ' + type));
                const auto gain = measure(strip, type, 0.0, corner);
                EXPECT_LE(gain(corner), -2.95);
                EXPECT_GE(gain(corner), is_band(strip) ? -3.05 : -4.15);
                const double out = type[0] == 'L' ? 1.0 : -1.0;
                const double octave =
                    gain(corner * std::exp2(out * 2.5)) - gain(corner * std::exp2(out * 1.5));
                // Here each stage is up to 0.4 dB from its asymptote. Further out, eight poles
                // reach the rounding between the stages.
                EXPECT_NEAR(octave, -1.00343 * db_per_octave, std::max(0.4, db_per_octave / 30.0));
                EXPECT_NEAR(gain(corner * std::exp2(out * -5.0)), 0.0, 0.01);
            }
        }
    }
}

// With A² the gain at the centre, a bell is (s² + s·A/Q + 1) / (s² + s/(A·Q) + 1), and a search is
// A·s/Q over the same.
TEST(Physics, BellsAndSearchesAreTheirPrototypes) {
    for (double gain : {-18.0, -6.0, 3.0, 18.0}) {
        for (double q : {0.3, 1.0, 10.0}) {
            SCOPED_TRACE(testing::Message() << gain << " dB, Q " << q);
            const double A = std::pow(10.0, gain / 40.0);
            const auto bell = measure(kBand, "Bell", gain, 1000.0, q);
            const auto search = measure(kBand, "Search", gain, 1000.0, q);
            EXPECT_NEAR(bell(1000.0), gain, 0.01);
            // An octave from 1 kHz is still far from Nyquist: within 0.1 dB of the prototype.
            for (double hz : {250.0, 700.0, 950.0, 1100.0, 2000.0}) {
                const std::complex<double> s(0.0, hz / 1000.0);
                const auto poles = s * s + s / (A * q) + 1.0;
                EXPECT_NEAR(bell(hz),
                            20.0 * std::log10(std::abs((s * s + s * A / q + 1.0) / poles)), 0.1);
                EXPECT_NEAR(search(hz), 20.0 * std::log10(std::abs(A * s / q / poles)), 0.1) << hz;
            }
        }
    }
}

// The purpose of matching: near Nyquist the bell keeps its shape, while that of the bilinear
// transform cramps: it is up to 7.5 dB away from the prototype.
TEST(Physics, BellsNearNyquistKeepTheirShape) {
    for (double gain : {-12.0, 12.0}) {
        const double A = std::pow(10.0, gain / 40.0);
        const auto measured = measure(kBand, "Bell", gain, 15000.0, 1.0, 44100.0);
        EXPECT_NEAR(measured(15000.0), gain, 0.01);
        for (int hz = 2000; hz <= 20000; hz += 250) {
            const std::complex<double> s(0.0, hz / 15000.0);
            const double wanted =
                20.0 * std::log10(std::abs((s * s + s * A + 1.0) / (s * s + s / A + 1.0)));
            EXPECT_NEAR(measured(hz), wanted, 2.0) << hz << " Hz, " << gain << " dB";
        }
    }
}

TEST(Physics, ShelvesReachTheirPlateaus) {
    for (int strip : {kBand, kSectionA}) {
        for (const TypeRow& type : strip_types(strip)) {
            if (!type.heeds_gain || type.heeds_q) continue;
            for (double gain : {-18.0, -3.0, 9.0, 18.0}) {
                SCOPED_TRACE(testing::Message() << type.name << ' ' << gain);
                const auto measured = measure(strip, type.name, gain, 1000.0);
                const bool low = type.name[0] != 'H';
                EXPECT_NEAR(measured(low ? 20.0 : 23900.0), gain, 0.05);
                EXPECT_NEAR(measured(low ? 23900.0 : 20.0), 0.0, 0.05);
            }
        }
    }
}

TEST(Physics, NotchesAreDeepAndAsWideAsTheirQ) {
    for (double q : {1.0, 5.0}) {
        const auto measured = measure(kBand, "Notch", 0.0, 1000.0, q);
        EXPECT_LT(measured(1000.0), -90.0);
        const double half = 1.0 / (2.0 * q);  // edges at sqrt(1 + 1/(4Q²)) ± 1/(2Q)
        for (double sign : {-1.0, 1.0}) {
            const double edge_hz = 1000.0 * (std::sqrt(1.0 + half * half) + sign * half);
            EXPECT_NEAR(measured(edge_hz), -3.01, 0.05) << edge_hz;
        }
    }
    const auto wide = measure(kSectionA, "Wide Notch", 0.0, 1000.0);
    for (double hz : {681.4, 880.0, 1136.4, 1467.6}) EXPECT_LT(wide(hz), -50.0) << hz;
    EXPECT_LT(wide(1000.0), -24.0);
    for (double hz : {50.0, 15000.0}) EXPECT_NEAR(wide(hz), 0.0, 0.2) << hz;
}

}  // namespace
}  // namespace brindle::test
