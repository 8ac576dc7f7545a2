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
// Where the output before a control tick is such, the channel starts again from silence there.
void restart_poisoned(EqInstance& eq, const Stretches& stretches, size_t channel, size_t n) {
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
        const Stretch alone = {0, stretches.list[i].weights};
        const float* from = in + begin;
        float* to = out + begin;
        eq.cascade.mono({&alone, 1}, &eq.states[channel], &from, &to, stretches.end(i, n) - begin);
    }
}

template <size_t kChannels>
void run_stages(EqInstance& eq, const Stretches& stretches, size_t n) {
    for (size_t channel = 0; channel < kChannels; ++channel) {
        if (stretches.first_is_tick && !std::isfinite(eq.last_out[channel])) {
            eq.states[channel] = {};
        }
    }
    const std::array<const float*, 2> in = {eq.work.in[0].data(), eq.work.in[1].data()};
    const std::array<float*, 2> out = {eq.work.out[0].data(), eq.work.out[1].data()};
    const RunCascade run_cascade = kChannels == 1 ? eq.cascade.mono : eq.cascade.stereo;
    run_cascade({stretches.list.data(), stretches.count}, eq.states.data(), in.data(), out.data(),
                n);
    for (size_t channel = 0; channel < kChannels; ++channel) {
        restart_poisoned(eq, stretches, channel, n);
        eq.last_out[channel] = out[channel][n - 1];
    }
}

template <size_t kChannels>
void put_output(EqInstance& eq, size_t offset, size_t n) {
    Workspace& work = eq.work;
    eq.loops.squares(work.out[0].data(), work.out[kChannels - 1].data(), eq.power_take,
                     work.out_square.data(), n);
    for (size_t channel = 0; channel < kChannels; ++channel) {
        std::copy_n(work.out[channel].data(), n, eq.ports[out_port(channel)] + offset);
    }
}

// Follows the mean squares of the loudest channel, before and after, from `begin` to `end`.
void follow_powers(EqInstance& eq, size_t begin, size_t end) {
    const float keep = eq.power_keep;
    float in_power = eq.in_power;
    float out_power = eq.out_power;
    for (size_t i = begin; i < end; ++i) {
        in_power = eq.work.in_square[i] + keep * in_power;
        out_power = eq.work.out_square[i] + keep * out_power;
    }
    eq.in_power = in_power;
    eq.out_power = out_power;
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

// Followers and meters over a chunk; true when a meter tick was in it. The meters take what the
// followers hold after the tick's own sample.
bool follow_chunk(EqInstance& eq, const Stretches& stretches, size_t n) {
    bool meter_tick = false;
    for (size_t i = 0; i < stretches.count; ++i) {
        size_t begin = stretches.list[i].begin;
        if (stretches.is_tick(i)) {
            if (!std::isfinite(eq.in_power)) eq.in_power = 0.0f;
            if (!std::isfinite(eq.out_power)) eq.out_power = 0.0f;
        }
        if (((eq.sample_counter + begin) & eq.meter_mask) == 0) {
            follow_powers(eq, begin, begin + 1);
            ++begin;
            update_meter(eq, kMeterInPort, eq.in_power);
            update_meter(eq, kMeterOutPort, eq.out_power);
            meter_tick = true;
        }
        follow_powers(eq, begin, stretches.end(i, n));
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
    const bool meter_tick = follow_chunk(eq, stretches, n);
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
