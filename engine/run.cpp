// SPDX-License-Identifier: ISC
#include "engine/run.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "engine/cascade.h"
#include "engine/controls.h"
#include "engine/eq_instance.h"
#include "engine/messages.h"

namespace brindle {
namespace {

constexpr uint32_t kCounterMask = 0x3ffff;
constexpr size_t kMaxSegment = 128;  // between two control ticks

using Segment = std::array<float, kMaxSegment>;

// Input and output port of channel 0 or 1.
constexpr size_t in_port(size_t channel) {
    return kFirstAudioPort + 2 * channel;
}
constexpr size_t out_port(size_t channel) {
    return in_port(channel) + 1;
}

// The dither for the next n samples: about 1e-6 at its peak, which keeps the recursions off
// denormal numbers.
void next_noise(EqInstance& eq, Segment& noise, size_t n) {
    for (size_t i = 0; i < n; ++i) {
        noise[i] = eq.noise;
        eq.noise_state = static_cast<int32_t>(static_cast<uint32_t>(eq.noise_state) * 16807u);
        const auto state = static_cast<float>(eq.noise_state);
        eq.noise = static_cast<float>(static_cast<double>(state) * 4.6566e-16);
    }
}

// Follows the mean square of the loudest channel over n samples; yields the value after the first.
template <size_t kChannels>
float follow_power(const EqInstance& eq, float& power, const std::array<Segment, kChannels>& v,
                   size_t n) {
    float after_first = power;
    for (size_t i = 0; i < n; ++i) {
        float square = v[0][i] * v[0][i];
        if constexpr (kChannels == 2) square = std::max(square, v[1][i] * v[1][i]);
        power = eq.power_take * square + eq.power_keep * power;
        if (i == 0) after_first = power;
    }
    return after_first;
}

// A held meter falls from tick to tick and is lifted by what exceeds it. Powers that are no finite
// number (from such input) do not reach it.
void update_meter(const EqInstance& eq, uint32_t port, float power) {
    float* meter = eq.ports[port];
    if (!meter) return;
    float held = *meter;
    if (!std::isfinite(held)) held = 0.0f;
    if (std::isfinite(power)) held = std::max(power, held);
    *meter = static_cast<float>(static_cast<double>(eq.meter_decay * held) + 1e-20);
}

template <typename Function>
void for_each_stage(EqInstance& eq, Function&& function) {
    for (SectionStages& section : eq.sections) {
        for (FilterStage& stage : section) function(stage);
    }
    for (FilterStage& stage : eq.bands) function(stage);
}

// Input that is no finite number makes every later state so for good; start again from silence.
template <size_t kChannels>
void clear_poisoned_state(EqInstance& eq) {
    for (size_t channel = 0; channel < kChannels; ++channel) {
        bool finite = true;
        for_each_stage(eq, [&finite, channel](const FilterStage& stage) {
            finite = finite && std::isfinite(stage.state[2 * channel]) &&
                     std::isfinite(stage.state[2 * channel + 1]);
        });
        if (finite) continue;
        for_each_stage(eq, [channel](FilterStage& stage) {
            stage.state[2 * channel] = 0.0;
            stage.state[2 * channel + 1] = 0.0;
        });
    }
    if (!std::isfinite(eq.in_power)) eq.in_power = 0.0f;
    if (!std::isfinite(eq.out_power)) eq.out_power = 0.0f;
}

// n samples from `offset` on, none beyond the next control tick; true when a meter tick was among
// them. All input is read before output is written: the host may pass one buffer for both.
template <size_t kChannels>
bool process_segment(EqInstance& eq, size_t offset, size_t n) {
    Segment noise;
    next_noise(eq, noise, n);
    std::array<Segment, kChannels> v;
    for (size_t channel = 0; channel < kChannels; ++channel) {
        const float* in = eq.ports[in_port(channel)] + offset;
        for (size_t i = 0; i < n; ++i) v[channel][i] = in[i] + noise[i];
    }
    const float in_power = follow_power(eq, eq.in_power, v, n);

    for (size_t channel = 0; channel < kChannels; ++channel) {
        float* samples = v[channel].data();
        for (size_t i = 0; i < n; ++i) samples[i] *= eq.trim_gain;
        for_each_stage(eq, [channel, samples, n](FilterStage& stage) {
            run_stage(stage, channel, samples, n);
        });
        std::copy_n(samples, n, eq.ports[out_port(channel)] + offset);
    }
    const float out_power = follow_power(eq, eq.out_power, v, n);

    const bool meter_tick = (eq.sample_counter & eq.meter_mask) == 0;
    if (meter_tick) {
        update_meter(eq, kMeterInPort, in_power);
        update_meter(eq, kMeterOutPort, out_power);
    }
    eq.sample_counter = (eq.sample_counter + static_cast<uint32_t>(n)) & kCounterMask;
    return meter_tick;
}

template <size_t kChannels>
bool audio_connected(const EqInstance& eq) {
    for (size_t channel = 0; channel < kChannels; ++channel) {
        if (!eq.ports[in_port(channel)] || !eq.ports[out_port(channel)]) return false;
    }
    return true;
}

template <size_t kChannels>
void run(EqInstance& eq, uint32_t n) {
    eq.ui_active = read_requests(eq.control_port, eq.uris, eq.ui_active);
    read_controls(eq);
    if (!audio_connected<kChannels>(eq)) return;
    if (eq.ui_active) analyse(eq.analyser, eq.ports[in_port(0)], n);

    bool meter_tick = false;
    for (size_t done = 0; done < n;) {
        const uint32_t since_tick = eq.sample_counter & eq.control_mask;
        if (since_tick == 0) {
            clear_poisoned_state<kChannels>(eq);
            control_tick(eq);
        }
        const size_t segment = std::min<size_t>(n - done, eq.control_mask + 1 - since_tick);
        meter_tick |= process_segment<kChannels>(eq, done, segment);
        done += segment;
    }
    if (meter_tick) {
        write_notify(eq.forge, eq.notify_port, eq.uris, eq.ui_active, eq.sample_rate, eq.analyser);
    }
}

}  // namespace

void run_mono(EqInstance& eq, uint32_t n) noexcept {
    run<1>(eq, n);
}

void run_stereo(EqInstance& eq, uint32_t n) noexcept {
    run<2>(eq, n);
}

}  // namespace brindle
