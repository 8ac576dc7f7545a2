// SPDX-License-Identifier: ISC
#include "engine/filter_stage.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "contract/types.h"
#include "engine/filter_design.h"

namespace brindle {
namespace {

// How a type's stages are designed.
struct Design {
    Coefficients (*function)(const Prototype&) noexcept;
    double band_damping;
    bool has_fixed_q;
};

// Indexed by BandType.
constexpr auto kDesigns = std::to_array<Design>({
    {design_flat, -kBandDamping, false},
    {design_low_pass6, -kBandDamping, false},
    {design_high_pass6, -kBandDamping, false},
    {design_low_pass12, -kBandDamping, true},
    {design_high_pass12, -kBandDamping, true},
    {design_lo_shelf, kBandDamping, false},
    {design_hi_shelf, kBandDamping, false},
    {design_lo_shelf2, kBandDamping, false},
    {design_hi_shelf2, kBandDamping, false},
    {design_bell, kBandDamping, false},
    {design_search, kBandDamping, false},
    {design_sym_lo_shelf, kBandDamping, false},
    {design_notch, kBandDamping, false},
});
static_assert(kDesigns.size() == kTypeCount<BandType>);

const Design& design_of(BandType type) {
    return kDesigns[type_index(type)];
}

Coefficients designed(const FilterStage& stage) {
    return design_of(stage.type)
        .function({stage.gain, stage.freq, stage.q, stage.damping, stage.dt});
}

// The tiny addend keeps a value that falls toward zero off the denormal numbers.
void smooth(double& value, double target) {
    value = 0.95 * value + 0.05 * target + 1e-24;
}

}  // namespace

double band_damping(BandType type) noexcept {
    return design_of(type).band_damping;
}

void init(FilterStage& stage, BandType type, double gain, double freq, double q, double damping,
          double dt) noexcept {
    stage = FilterStage{};
    stage.type = type;
    stage.damping = damping;
    stage.dt = dt;
    stage.freq_low = kMinFreqShare / dt;
    stage.freq_high = kMaxFreqShare / dt;
    stage.wet = 1.0;
    set_targets(stage, gain, freq, q);
    stage.gain = stage.gain_target;
    stage.freq = stage.freq_target;
    stage.q = stage.q_target;
}

void set_targets(FilterStage& stage, double gain, double freq, double q) noexcept {
    stage.gain_target = gain;
    stage.freq_target = std::clamp(freq, stage.freq_low, stage.freq_high);
    stage.q_target = q;
}

bool design(FilterStage& stage, const FilterStage* alike) noexcept {
    smooth(stage.gain, stage.gain_target);
    smooth(stage.freq, stage.freq_target);
    smooth(stage.q, stage.q_target);
    const bool pass = design_of(stage.type).has_fixed_q;
    if (pass) stage.q = kFixedQ;

    FilterStage::Origin origin = {stage.type, stage.gain, stage.freq, stage.q, stage.damping};
    if (pass) origin.gain = origin.damping = 0.0;
    if (origin == stage.origin) return false;
    stage.origin = origin;
    const bool same = (alike != nullptr) && alike->origin == origin;
    stage.coefficients = same ? alike->coefficients : designed(stage);
    return true;
}

}  // namespace brindle
