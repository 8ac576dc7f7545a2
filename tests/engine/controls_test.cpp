// SPDX-License-Identifier: ISC
// Effects of the controls on an instance that no sound can show.
#include "engine/controls.h"

#include <gtest/gtest.h>

#include <memory>

#include "engine/eq_instance.h"
#include "engine/lifecycle.h"
#include "tests/support/plugin_host.h"

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

}  // namespace
}  // namespace brindle
