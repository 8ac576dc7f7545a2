// SPDX-License-Identifier: ISC
#include "engine/run.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>

#include "engine/cascade.h"
#include "engine/controls.h"
#include "engine/eq_instance.h"
#include "engine/followers.h"
#include "engine/messages.h"

namespace brindle {
namespace {

constexpr uint32_t kCounterMask = 0x3ffff;

// The stretches of a chunk. Each begins with a control tick, but the first one may not.
struct Stretches {
    std::array<Stretch, kMaxStretches> list;
    size_t count;
    bool first_is_tick;

    std::span<const Stretch> all() const { return {list.data(), count}; }
};

// Port numbers for channel 0 or 1.
constexpr size_t in_port(size_t channel) {
    return kFirstAudioPort + 2 * channel;
}
constexpr size_t out_port(size_t channel) {
    return in_port(channel) + 1;
}

// Adds dither and trim to the samples from `begin` to `end` of the chunk at `offset`.
template <size_t kChannels>
void prepare_input(EqInstance& eq, size_t offset, size_t begin, size_t end) {
    Workspace& work = eq.work;
    const auto trim = kChannels == 1 ? eq.loops.trim_mono : eq.loops.trim_stereo;
    trim(
        {{eq.ports[in_port(0)] + offset + begin, eq.ports[in_port(kChannels - 1)] + offset + begin},
         &work.dither[begin],
         eq.trim_gain,
         eq.power_take,
         {&work.in[0][begin], &work.in[1][begin]},
         &work.in_square[begin]},
        end - begin);
}

// Cuts `n` samples into stretches at the control ticks, and reads and trims them.
template <size_t kChannels>
Stretches prepare_chunk(EqInstance& eq, size_t offset, size_t n) {
    Stretches stretches;
    stretches.count = 0;
    stretches.first_is_tick = (eq.sample_counter & eq.control_mask) == 0;
    eq.loops.dither(eq.noise_state, eq.noise, eq.work.dither, n);
    for (size_t begin = 0; begin < n;) {
        const size_t since_tick = (eq.sample_counter + begin) & eq.control_mask;
        if (since_tick == 0) control_tick(eq);
        const size_t end = std::min(n, begin + eq.control_mask + 1 - since_tick);
        stretches.list[stretches.count++] = {begin, end, &eq.weights[eq.newest_weights]};
        prepare_input<kChannels>(eq, offset, begin, end);
        begin = end;
    }
    return stretches;
}

// Input that is not finite makes all later states and output of its channel not finite either.
// Where the output before a control tick is not finite, the channel starts again from silence at
// the tick. True when it did.
bool restart_poisoned(EqInstance& eq, const Stretches& stretches, size_t channel,
                      const Followers& followers) {
    bool restarted = false;
    for (const auto& [begin, end, weights] : stretches.all()) {
        const float* in = &eq.work.in[channel][begin];
        float* out = &eq.work.out[channel][begin];
        if (begin > 0 && !std::isfinite(out[-1])) {
            eq.states[channel] = {};
            restarted = true;
        }
        if (!restarted) continue;
        // The powers that this writes are wrong; follow_again writes them anew.
        const Stretch alone = {0, end - begin, weights};
        eq.cascade.mono({&alone, 1}, &eq.states[channel], &in, &out, followers);
    }
    return restarted;
}

// Follows the powers again where they or a channel were poisoned. They too start again at the next
// control tick.
template <size_t kChannels>
void follow_again(const EqInstance& eq, const Stretches& stretches, Followers followers) {
    for (const Stretch& stretch : stretches.all()) {
        if (stretch.begin > 0 || stretches.first_is_tick) {
            if (!std::isfinite(followers.in_power)) followers.in_power = 0.0f;
            if (!std::isfinite(followers.out_power)) followers.out_power = 0.0f;
        }
        for (size_t i = stretch.begin; i < stretch.end; ++i) {
            followers.step(i, eq.work.out[0][i], eq.work.out[kChannels - 1][i]);
        }
    }
}

template <size_t kChannels>
void run_stages(EqInstance& eq, const Stretches& stretches, size_t n) {
    for (size_t channel = 0; channel < kChannels; ++channel) {
        if (stretches.first_is_tick && !std::isfinite(eq.last_out[channel])) {
            eq.states[channel] = {};
        }
    }
    Workspace& work = eq.work;
    const std::array<const float*, 2> in = {work.in[0], work.in[1]};
    const std::array<float*, 2>& out = work.out;
    const Followers followers = {eq.power_take, eq.power_keep,  work.in_square, eq.in_power,
                                 eq.out_power,  work.in_powers, work.out_powers};
    const RunCascade run_cascade = kChannels == 1 ? eq.cascade.mono : eq.cascade.stereo;
    run_cascade(stretches.all(), eq.states.data(), in.data(), out.data(), followers);
    bool poisoned = !std::isfinite(work.in_powers[n - 1]) || !std::isfinite(work.out_powers[n - 1]);
    for (size_t channel = 0; channel < kChannels; ++channel) {
        poisoned |= restart_poisoned(eq, stretches, channel, followers);
        eq.last_out[channel] = out[channel][n - 1];
    }
    if (poisoned) follow_again<kChannels>(eq, stretches, followers);
    eq.in_power = work.in_powers[n - 1];
    eq.out_power = work.out_powers[n - 1];
}

template <size_t kChannels>
void put_output(EqInstance& eq, size_t offset, size_t n) {
    for (size_t channel = 0; channel < kChannels; ++channel) {
        std::copy_n(eq.work.out[channel], n, eq.ports[out_port(channel)] + offset);
    }
}

// A held meter falls from tick to tick; a greater power lifts it. Powers that are not finite, from
// input that is not finite, do not reach it.
void update_meter(const EqInstance& eq, uint32_t port, float power) {
    float* meter = eq.ports[port];
    if (meter == nullptr) return;
    float held = *meter;
    if (!std::isfinite(held)) held = 0.0f;
    if (std::isfinite(power)) held = std::max(power, held);
    *meter = static_cast<float>(static_cast<double>(eq.meter_decay * held) + 1e-20);
}

// Updates the meters from the powers after each meter tick's own sample; true when the chunk has a
// meter tick.
bool update_meters(EqInstance& eq, const Stretches& stretches) {
    bool meter_tick = false;
    for (const auto& [begin, end, weights] : stretches.all()) {
        if (((eq.sample_counter + begin) & eq.meter_mask) != 0) continue;
        update_meter(eq, kMeterInPort, eq.work.in_powers[begin]);
        update_meter(eq, kMeterOutPort, eq.work.out_powers[begin]);
        meter_tick = true;
    }
    return meter_tick;
}

// Processes `n` samples, kChunk at most, from `offset` on; true when a meter tick is among them.
// Reads all input before it writes output: the host may pass one buffer for both.
template <size_t kChannels>
bool process_chunk(EqInstance& eq, size_t offset, size_t n) {
    eq.work.hold(n);
    const Stretches stretches = prepare_chunk<kChannels>(eq, offset, n);
    run_stages<kChannels>(eq, stretches, n);
    put_output<kChannels>(eq, offset, n);
    const bool meter_tick = update_meters(eq, stretches);
    eq.sample_counter = (eq.sample_counter + static_cast<uint32_t>(n)) & kCounterMask;
    return meter_tick;
}

template <size_t kChannels>
bool audio_connected(const EqInstance& eq) {
    for (size_t channel = 0; channel < kChannels; ++channel) {
        if (eq.ports[in_port(channel)] == nullptr) return false;
        if (eq.ports[out_port(channel)] == nullptr) return false;
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
    for (size_t done = 0; done < n; done += kChunk) {
        meter_tick |= process_chunk<kChannels>(eq, done, std::min(kChunk, n - done));
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
