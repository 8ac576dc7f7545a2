// SPDX-License-Identifier: ISC
#include "engine/run.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "engine/cascade.h"
#include "engine/controls.h"
#include "engine/eq_instance.h"
#include "engine/followers.h"
#include "engine/messages.h"

namespace brindle {
namespace {

constexpr uint32_t kCounterMask = 0x3ffff;

// The stretches of a chunk, each but perhaps the first beginning with a control tick.
struct Stretches {
    std::array<Stretch, kMaxStretches> list;
    size_t count;
    bool first_is_tick;

    bool is_tick(size_t i) const { return i > 0 || first_is_tick; }
    size_t end(size_t i, size_t n) const { return i + 1 < count ? list[i + 1].begin : n; }
};

// Input and output port of channel 0 or 1.
constexpr size_t in_port(size_t channel) {
    return kFirstAudioPort + 2 * channel;
}
constexpr size_t out_port(size_t channel) {
    return in_port(channel) + 1;
}

// Dithers and trims the input from `begin` to `end` of the chunk that starts at `offset`.
template <size_t kChannels>
void take_input(EqInstance& eq, size_t offset, size_t begin, size_t end) {
    Workspace& work = eq.work;
    const auto take = kChannels == 1 ? eq.loops.take_mono : eq.loops.take_stereo;
    take(
        {{eq.ports[in_port(0)] + offset + begin, eq.ports[in_port(kChannels - 1)] + offset + begin},
         &work.dither[begin],
         eq.trim_gain,
         eq.power_take,
         {&work.in[0][begin], &work.in[1][begin]},
         &work.in_square[begin]},
        end - begin);
}

// Cuts n samples at the control ticks among them, with the weights of each.
template <size_t kChannels>
Stretches take_chunk(EqInstance& eq, size_t offset, size_t n) {
    Stretches stretches;
    stretches.count = 0;
    stretches.first_is_tick = (eq.sample_counter & eq.control_mask) == 0;
    eq.loops.dither(eq.noise_state, eq.noise, eq.work.dither.data(), n);
    for (size_t begin = 0; begin < n;) {
        const size_t since_tick = (eq.sample_counter + begin) & eq.control_mask;
        if (since_tick == 0) control_tick(eq);
        const size_t end = std::min(n, begin + eq.control_mask + 1 - since_tick);
        stretches.list[stretches.count++] = {begin, &eq.weights[eq.newest_weights]};
        take_input<kChannels>(eq, offset, begin, end);
        begin = end;
    }
    return stretches;
}

// Input that is no finite number makes every later state and output of its channel so for good.
// Where the output before a control tick is such, the channel starts again from silence there; true
// when it did.
bool restart_poisoned(EqInstance& eq, const Stretches& stretches, size_t channel, size_t n,
                      const Followers& followers) {
    const float* in = eq.work.in[channel].data();
    float* out = eq.work.out[channel].data();
    bool restarted = false;
    for (size_t i = 1; i < stretches.count; ++i) {
        const size_t begin = stretches.list[i].begin;
        if (!std::isfinite(out[begin - 1])) {
            eq.states[channel] = {};
            restarted = true;
        }
        if (!restarted) continue;
        // What this writes of the powers is no use; they are followed again.
        const Stretch alone = {0, stretches.list[i].weights};
        const float* from = in + begin;
        float* to = out + begin;
        eq.cascade.mono({&alone, 1}, &eq.states[channel], &from, &to, stretches.end(i, n) - begin,
                        followers);
    }
    return restarted;
}

// Follows the powers once more where they or a channel were poisoned: they too start again at the
// next control tick.
template <size_t kChannels>
void follow_again(const EqInstance& eq, const Stretches& stretches, size_t n, Followers followers) {
    for (size_t i = 0; i < stretches.count; ++i) {
        if (stretches.is_tick(i)) {
            if (!std::isfinite(followers.in_power)) followers.in_power = 0.0f;
            if (!std::isfinite(followers.out_power)) followers.out_power = 0.0f;
        }
        for (size_t k = stretches.list[i].begin; k < stretches.end(i, n); ++k) {
            followers.step(k, eq.work.out[0][k], eq.work.out[kChannels - 1][k]);
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
    const std::array<const float*, 2> in = {work.in[0].data(), work.in[1].data()};
    const std::array<float*, 2> out = {work.out[0].data(), work.out[1].data()};
    const Followers followers = {eq.power_take,         eq.power_keep, work.in_square.data(),
                                 eq.in_power,           eq.out_power,  work.in_powers.data(),
                                 work.out_powers.data()};
    const RunCascade run_cascade = kChannels == 1 ? eq.cascade.mono : eq.cascade.stereo;
    run_cascade({stretches.list.data(), stretches.count}, eq.states.data(), in.data(), out.data(),
                n, followers);
    bool poisoned = !std::isfinite(work.in_powers[n - 1]) || !std::isfinite(work.out_powers[n - 1]);
    for (size_t channel = 0; channel < kChannels; ++channel) {
        poisoned |= restart_poisoned(eq, stretches, channel, n, followers);
        eq.last_out[channel] = out[channel][n - 1];
    }
    if (poisoned) follow_again<kChannels>(eq, stretches, n, followers);
    eq.in_power = work.in_powers[n - 1];
    eq.out_power = work.out_powers[n - 1];
}

template <size_t kChannels>
void put_output(EqInstance& eq, size_t offset, size_t n) {
    for (size_t channel = 0; channel < kChannels; ++channel) {
        std::copy_n(eq.work.out[channel].data(), n, eq.ports[out_port(channel)] + offset);
    }
}

// A held meter falls from tick to tick and is lifted by what exceeds it. Powers that are no finite
// number (from such input) do not reach it.
void update_meter(const EqInstance& eq, uint32_t port, float power) {
    float* meter = eq.ports[port];
    if (meter == nullptr) return;
    float held = *meter;
    if (!std::isfinite(held)) held = 0.0f;
    if (std::isfinite(power)) held = std::max(power, held);
    *meter = static_cast<float>(static_cast<double>(eq.meter_decay * held) + 1e-20);
}

// Meters over a chunk; true when a meter tick was in it. They take what the followers hold after
// the tick's own sample.
bool update_meters(EqInstance& eq, const Stretches& stretches) {
    bool meter_tick = false;
    for (size_t i = 0; i < stretches.count; ++i) {
        const size_t begin = stretches.list[i].begin;
        if (((eq.sample_counter + begin) & eq.meter_mask) != 0) continue;
        update_meter(eq, kMeterInPort, eq.work.in_powers[begin]);
        update_meter(eq, kMeterOutPort, eq.work.out_powers[begin]);
        meter_tick = true;
    }
    return meter_tick;
}

// At most kChunk samples from `offset` on; true when a meter tick was among them. All input is read
// before output is written: the host may pass one buffer for both.
template <size_t kChannels>
bool process_chunk(EqInstance& eq, size_t offset, size_t n) {
    const Stretches stretches = take_chunk<kChannels>(eq, offset, n);
    run_stages<kChannels>(eq, stretches, n);
    put_output<kChannels>(eq, offset, n);
    const bool meter_tick = update_meters(eq, stretches);
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
