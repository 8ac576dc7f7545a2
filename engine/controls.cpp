// SPDX-License-Identifier: ISC
#include "engine/controls.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>

#include "engine/eq_instance.h"

namespace brindle {
namespace {

struct Limits {
    float start;  // before a value is read
    float low, high;
};

// 16 stages of 40 dB (44 dB at worst, by rounding) and a trim of 40 dB stay within a float's range.
// The limits of Q keep poles inside the unit circle and the designs' exponentials in range. The
// stages limit frequencies, as shares of the sample rate.
constexpr Limits kGainLimits = {0.0f, -40.0f, 40.0f};
constexpr std::array<Limits, kControlCount> kLimits = {{
    {0.0f, -1e6f, 1e6f},       // enable
    {0.0f, -1e6f, 1e6f},       // type
    kGainLimits,               // dB
    {1000.0f, -1e30f, 1e30f},  // Hz
    {1.0f, 0.025f, 1e3f},      // Q
}};

// Bands and sections follow each other, with their controls in the same order.
const Limits& limits_of(uint32_t port) {
    return port == kTrimPort ? kGainLimits : kLimits[(port - band_port(0)) % kControlCount];
}

bool is_on(float value) {
    return static_cast<int32_t>(value + 0.1) != 0;
}

// Reads the bits of all control ports; true when any differ from those of the last call.
bool ports_changed(EqInstance& eq) {
    uint32_t difference = 0;
    for (uint32_t port = band_port(0); port <= kTrimPort; ++port) {
        const float* data = eq.ports[port];
        if (data == nullptr) continue;
        const auto bits = std::bit_cast<uint32_t>(*data);
        difference |= bits ^ eq.port_bits[port];
        eq.port_bits[port] = bits;
    }
    return difference != 0;
}

// Keeps each port's last finite value, within its limits.
void clamp_controls(EqInstance& eq) {
    for (uint32_t port = band_port(0); port <= kTrimPort; ++port) {
        const auto value = std::bit_cast<float>(eq.port_bits[port]);
        if (!std::isfinite(value)) continue;
        const Limits& limits = limits_of(port);
        eq.controls[port] = std::clamp(value, limits.low, limits.high);
    }
}

// The tiny addend keeps a value that falls toward zero off the denormal numbers.
void glide(double& value, double target) {
    value = 0.98 * value + 0.02 * target + 1e-20;
}

// Glides one stage, then designs it, perhaps from the stage `alike`; true when any value is new.
bool tick_stage(FilterStage& stage, bool on, const FilterStage* alike) {
    const FilterStage before = stage;
    glide(stage.gain, stage.gain_target);
    glide(stage.freq, stage.freq_target);
    glide(stage.q, stage.q_target);
    double& rising = on ? stage.wet : stage.dry;
    double& falling = on ? stage.dry : stage.wet;
    rising = 0.98 * rising + 0.02;
    falling = 0.98 * falling + 1e-20;
    const bool designed = design(stage, alike);
    return designed || stage.gain != before.gain || stage.freq != before.freq ||
           stage.q != before.q || stage.wet != before.wet || stage.dry != before.dry;
}

}  // namespace

void set_default_controls(EqInstance& eq) noexcept {
    for (uint32_t port = band_port(0); port <= kTrimPort; ++port) {
        eq.controls[port] = limits_of(port).start;
    }
    eq.port_bits.fill(std::bit_cast<uint32_t>(std::numeric_limits<float>::quiet_NaN()));
    eq.trim_target = 1.0;
}

void read_controls(EqInstance& eq) noexcept {
    if (!ports_changed(eq)) return;
    clamp_controls(eq);
    eq.turned = true;
    eq.trim_target = exp10(static_cast<double>(eq.controls[kTrimPort]) * 0.05);
    for (int s = 0; s < kSectionCount; ++s) {
        const auto i = static_cast<size_t>(s);
        const float* control = &eq.controls[section_port(s)];
        eq.section_on[i] = is_on(control[kEnable]);
        eq.section_type[i] = decode_type<SectionType>(control[kType]);
        eq.section_gain[i] = control[kGain];
        eq.section_freq[i] = section_frequency(eq.section_type[i], control[kFrequency]);
        eq.section_q[i] = control[kQ];
    }
    for (int b = 0; b < kBandCount; ++b) {
        const auto i = static_cast<size_t>(b);
        const float* control = &eq.controls[band_port(b)];
        FilterStage& stage = eq.bands[i];
        eq.band_on[i] = is_on(control[kEnable]);
        stage.type = decode_type<BandType>(control[kType]);
        stage.damping = band_damping(stage.type);
        set_targets(stage, control[kGain], control[kFrequency], control[kQ]);
    }
}

void update_weights(EqInstance& eq) noexcept {
    eq.newest_weights = (eq.newest_weights + 1) % eq.weights.size();
    CascadeWeights& weights = eq.weights[eq.newest_weights];
    size_t i = 0;
    const auto gather = [&weights, &i](const FilterStage& stage) {
        const auto& [b0, b1, b2, a1, a2] = stage.coefficients;
        weights.b0[i] = b0;
        weights.b1[i] = b1;
        weights.b2[i] = b2;
        weights.a1[i] = a1;
        weights.a2[i] = a2;
        weights.wet[i] = stage.wet;
        weights.dry[i] = stage.dry;
        ++i;
    };
    for (const SectionStages& section : eq.sections) {
        for (const FilterStage& stage : section) gather(stage);
    }
    for (const FilterStage& stage : eq.bands) gather(stage);
}

void control_tick(EqInstance& eq) noexcept {
    if (eq.at_rest && !eq.turned) return;
    bool changed = false;
    for (size_t i = 0; i < eq.sections.size(); ++i) {
        if (eq.turned) {
            apply_section(eq.sections[i], eq.section_type[i], eq.section_gain[i],
                          eq.section_freq[i], eq.section_q[i]);
        }
        const FilterStage* last = nullptr;  // all stages of a steep pass are alike
        for (FilterStage& stage : eq.sections[i]) {
            changed |= tick_stage(stage, eq.section_on[i], last);
            last = &stage;
        }
    }
    for (size_t i = 0; i < eq.bands.size(); ++i) {
        changed |= tick_stage(eq.bands[i], eq.band_on[i], nullptr);
    }
    if (changed) update_weights(eq);

    const float trim_before = eq.trim_gain;
    eq.trim_gain = static_cast<float>(0.98 * static_cast<double>(eq.trim_gain) +
                                      0.02 * eq.trim_target + 1e-20);
    eq.at_rest = !changed && eq.trim_gain == trim_before;
    eq.turned = false;
}

}  // namespace brindle
