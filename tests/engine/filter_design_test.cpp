// SPDX-License-Identifier: ISC
// Designs at a millionth of the sample rate, where the loaded plugin cannot be measured.
#include "engine/filter_design.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>

namespace brindle {
namespace {

/// Gain in dB; the frequency is a share of the sample rate.
double gain_db(const Coefficients& c, double share) {
    const std::complex<double> z = std::polar(1.0, -2.0 * std::numbers::pi * share);
    return 20.0 *
           std::log10(std::abs((c.b0 + c.b1 * z + c.b2 * z * z) / (1.0 - c.a1 * z - c.a2 * z * z)));
}

// Differences of nearly equal numbers must not add gain: a chain of sixteen has none to spare.
TEST(Designs, FarBelowThePortsRangeStayWithinTheirGain) {
    for (double freq : {1e-6, 1.5e-6, 2.2e-6, 1e-5, 2.6e-5}) {
        for (double gain : {0.0, 18.0, 40.0}) {
            for (double q : {0.025, 1.0, 100.0}) {
                const Prototype p = {gain, freq, q, 1.0, 1.0};
                for (double factor : {0.001, 0.1, 0.5, 0.99, 1.0, 1.01, 2.0, 10.0}) {
                    const double share = factor * freq;
                    ASSERT_LT(gain_db(design_bell(p), share), gain + 0.1)
                        << "Bell at " << freq << ", " << gain << " dB, Q " << q;
                    ASSERT_LT(gain_db(design_search(p), share), gain + 0.1)
                        << "Search at " << freq << ", " << gain << " dB, Q " << q;
                }
            }
        }
    }
}

}  // namespace
}  // namespace brindle
