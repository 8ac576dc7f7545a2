// SPDX-License-Identifier: ISC
// Controls and designs where no sound of the loaded plugin can show them.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <memory>
#include <numbers>

#include "engine/controls.h"
#include "engine/eq_instance.h"
#include "engine/filter_design.h"
#include "engine/lifecycle.h"
#include "tests/support/urid_map.h"

namespace brindle {
namespace {

// Without the addends, gains that fall to 0 dB would end in denormal numbers, which cost time. With
// them, a tick turns g into 0.95·(0.98·g + 1e-20) + 1e-24.
TEST(Glides, ToZeroEndWhereTheAddendsHoldThem) {
    test::UridMap map;
    const std::unique_ptr<EqInstance, void (*)(EqInstance*) noexcept> eq(
        create_instance(48000.0, map.get()), destroy_instance);
    float band_gain = -18.0f, section_gain = 18.0f;
    connect(*eq, band_port(7) + kGain, &band_gain);
    connect(*eq, section_port(0) + kGain, &section_gain);
    const auto glide = [&eq](int ticks) {
        read_controls(*eq);
        for (int tick = 0; tick < ticks; ++tick) control_tick(*eq);
    };
    glide(100);
    EXPECT_NEAR(eq->bands[7].gain, -18.0, 0.1);
    EXPECT_NEAR(eq->sections[0][3].gain, 18.0, 0.1);
    band_gain = section_gain = 0.0f;
    glide(1500);
    const double end = (0.95 * 1e-20 + 1e-24) / (1.0 - 0.95 * 0.98);
    EXPECT_NEAR(eq->bands[7].gain, end, 1e-6 * end);
    EXPECT_NEAR(eq->sections[0][3].gain, end, 1e-6 * end);
}

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
