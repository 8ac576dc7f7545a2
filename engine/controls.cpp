// SPDX-License-Identifier: ISC
#include "engine/controls.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "engine/eq_instance.h"

namespace brindle {
namespace {

struct Limits {
    float start;  // before any value was read
    float low, high;
};

// 16 stages of 40 dB (rounding makes it 44 at worst) and a trim of 40 dB stay within the range of a
// float. Q is held where poles stay inside the unit circle and the designs' exponentials in range.
// Frequencies are held by the stages, in shares of the sample rate.
constexpr Limits kGainLimits = {0.0f, -40.0f, 40.0f};
constexpr std::array<Limits, kControlCount> kLimits = {{
    {0.0f, -1e6f, 1e6f},       // enable
    {0.0f, -1e6f, 1e6f},       // type
    kGainLimits,               // dB
    {1000.0f, -1e30f, 1e30f},  // Hz
    {1.0f, 0.025f, 1e3f},      // Q
}};

// Bands and sections have their controls in the same order, one after the other.
const Limits& limits_of(uint32_t port) {
    return port == kTrimPort ? kGainLimits : kLimits[(port - band_port(0)) % kControlCount];
}

// Switches and types travel as floats.
int32_t to_integer(float value) {
    return static_cast<int32_t>(value + 0.1);
}

void read_ports(EqInstance& eq) {
    for (uint32_t port = band_port(0); port <= kTrimPort; ++port) {
        const float* data = eq.ports[port];
        if (!data || !std::isfinite(*data)) continue;
        const Limits& limits = limits_of(port);
        eq.controls[port] = std::clamp(*data, limits.low, limits.high);
    }
}

// Glides of the control ticks. The tiny addend keeps what falls toward zero off denormals.
void glide(double& value, double target) {
    value = 0.98 * value + 0.02 * target + 1e-20;
}

void glide_stage(FilterStage& stage, bool on) {
    glide(stage.gain, stage.gain_target);
    glide(stage.freq, stage.freq_target);
    glide(stage.q, stage.q_target);
    double& rising = on ? stage.wet : stage.dry;
    double& falling = on ? stage.dry : stage.wet;
    rising = 0.98 * rising + 0.02;
    falling = 0.98 * falling + 1e-20;
}

}  // namespace

void set_default_controls(EqInstance& eq) noexcept {
    for (uint32_t port = band_port(0); port <= kTrimPort; ++port) {
        eq.controls[port] = limits_of(port).start;
    }
}

void read_controls(EqInstance& eq) noexcept {
    read_ports(eq);
    for (int s = 0; s < kSectionCount; ++s) {
        const auto i = static_cast<size_t>(s);
        const float* control = &eq.controls[section_port(s)];
        eq.section_on[i] = to_integer(control[kEnable]) != 0;
        eq.section_type[i] = to_integer(control[kType]);
        eq.section_gain[i] = control[kGain];
        eq.section_freq[i] = section_frequency(eq.section_type[i], control[kFrequency]);
        eq.section_q[i] = control[kQ];
    }
    for (int b = 0; b < kBandCount; ++b) {
        const auto i = static_cast<size_t>(b);
        const float* control = &eq.controls[band_port(b)];
        FilterStage& stage = eq.bands[i];
        eq.band_on[i] = to_integer(control[kEnable]) != 0;
        stage.type = to_integer(control[kType]);
        stage.damping = band_damping(stage.type);
        set_targets(stage, control[kGain], control[kFrequency], control[kQ]);
    }
}

void control_tick(EqInstance& eq) noexcept {
    for (size_t i = 0; i < eq.sections.size(); ++i) {
        apply_section(eq.sections[i], eq.section_type[i], eq.section_gain[i], eq.section_freq[i],
                      eq.section_q[i]);
        for (FilterStage& stage : eq.sections[i]) {
            glide_stage(stage, eq.section_on[i]);
            design(stage);
        }
    }
    for (size_t i = 0; i < eq.bands.size(); ++i) {
        glide_stage(eq.bands[i], eq.band_on[i]);
        design(eq.bands[i]);
    }
    const double trim = exp10(static_cast<double>(eq.controls[kTrimPort]) * 0.05);
    eq.trim_gain =
        static_cast<float>(0.98 * static_cast<double>(eq.trim_gain) + 0.02 * trim + 1e-20);
}

}  // namespace brindle
