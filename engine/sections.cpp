// SPDX-License-Identifier: ISC
#include "engine/sections.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "contract/types.h"

namespace brindle {
namespace {

constexpr double kNoCap = std::numeric_limits<double>::infinity();

using Damping = std::array<double, kSectionStages>;

// Butterworth pole pairs: 2·cos of the pole angles for 2, 4, 6 and 8 poles. Unused stages are Flat
// and have the value of two poles.
constexpr Damping kPoles2 = {1.4142135624, 1.4142135624, 1.4142135624, 1.4142135624};
constexpr Damping kPoles4 = {0.7653668647, 1.847759065, 1.4142135624, 1.4142135624};
constexpr Damping kPoles6 = {0.5176380902, 1.4142135624, 1.9318516526, 1.4142135624};
constexpr Damping kPoles8 = {0.390180644, 1.111140466, 1.6629392246, 1.9615705608};

struct SectionPlan {
    size_t count;         // stages in use
    BandType stage;       // their type
    double gain_share;    // of the section's gain in dB, per stage
    double freq_factor;   // of the section's frequency
    double freq_cap;      // Hz
    double damping_sign;  // negative for the passes
    Damping damping;
};

// Indexed by SectionType. 0.3333 is meant: three stages reach 0.9999 of the gain.
// clang-format off
constexpr auto kSectionPlans = std::to_array<SectionPlan>({
    // count stage                 gain    factor  cap [Hz]  sign  damping
    {0, BandType::Flat,       1.0,    1.0,   kNoCap,  -1.0, kPoles2},
    {1, BandType::HighPass12, 1.0,    1.0,   kNoCap,  -1.0, kPoles2},
    {2, BandType::HighPass12, 1.0,    0.88,  kNoCap,  -1.0, kPoles4},
    {3, BandType::HighPass12, 1.0,    0.75,  kNoCap,  -1.0, kPoles6},
    {4, BandType::HighPass12, 1.0,    0.7,   kNoCap,  -1.0, kPoles8},
    {1, BandType::LowPass12,  1.0,    1.0,   kNoCap,  -1.0, kPoles2},
    {2, BandType::LowPass12,  1.0,    1.2,   20000.0, -1.0, kPoles4},
    {3, BandType::LowPass12,  1.0,    1.4,   20000.0, -1.0, kPoles6},
    {4, BandType::LowPass12,  1.0,    1.5,   20000.0, -1.0, kPoles8},
    {1, BandType::HiShelf,    1.0,    1.0,   kNoCap,  +1.0, kPoles2},
    {2, BandType::HiShelf,    0.5,    1.0,   kNoCap,  +1.0, kPoles4},
    {3, BandType::HiShelf,    0.3333, 1.0,   kNoCap,  +1.0, kPoles6},
    {4, BandType::HiShelf,    0.25,   1.0,   kNoCap,  +1.0, kPoles8},
    {1, BandType::LoShelf,    1.0,    1.0,   kNoCap,  +1.0, kPoles2},
    {2, BandType::LoShelf,    0.5,    1.0,   kNoCap,  +1.0, kPoles4},
    {3, BandType::LoShelf,    0.3333, 1.0,   kNoCap,  +1.0, kPoles6},
    {4, BandType::LoShelf,    0.25,   1.0,   kNoCap,  +1.0, kPoles8},
    {4, BandType::Notch,      1.0,    1.0,   kNoCap,  +1.0, kPoles2},
});
// clang-format on
static_assert(kSectionPlans.size() == kTypeCount<SectionType>);

const SectionPlan& plan_of(SectionType type) {
    return kSectionPlans[type_index(type)];
}

// Spreads the notches of a wide notch around its frequency; a lower Q spreads them wider.
std::array<double, kSectionStages> notch_frequencies(float freq, float section_q, double dt) {
    const double q = section_q * 3.9f;
    const double r = (std::sqrt(4.0 * q * q + 1.0) + 1.0) / (2.0 * q);
    const double f = freq;
    const double limit = 0.45 / dt;
    std::array<double, kSectionStages> frequencies = {f / (r * r * r), f / r, f * r,
                                                      f * (r * r * r)};
    for (double& frequency : frequencies) frequency = std::min(frequency, limit);
    return frequencies;
}

}  // namespace

float section_frequency(SectionType type, float freq_hz) noexcept {
    const SectionPlan& plan = plan_of(type);
    return static_cast<float>(
        std::min(static_cast<double>(freq_hz) * plan.freq_factor, plan.freq_cap));
}

void apply_section(SectionStages& section, SectionType type, float gain, float freq,
                   float q) noexcept {
    const SectionPlan& plan = plan_of(type);
    std::array<double, kSectionStages> frequencies{};
    frequencies.fill(freq);
    if (plan.stage == BandType::Notch) frequencies = notch_frequencies(freq, q, section[0].dt);

    for (size_t i = 0; i < kSectionStages; ++i) {
        FilterStage& stage = section[i];
        stage.type = i < plan.count ? plan.stage : BandType::Flat;
        stage.damping = plan.damping_sign * plan.damping[i];
        set_targets(stage, gain * plan.gain_share, frequencies[i], q);
    }
}

}  // namespace brindle
