// SPDX-License-Identifier: ISC
#include "engine/cascade.h"

#include <algorithm>

namespace brindle {
namespace {

void run_stage(const CascadeWeights& weights, CascadeState& state, size_t stage, float* samples,
               size_t n) noexcept {
    const double b0 = weights.b0[stage], b1 = weights.b1[stage], b2 = weights.b2[stage];
    const double a1 = weights.a1[stage], a2 = weights.a2[stage];
    const double wet = weights.wet[stage], dry = weights.dry[stage];
    double s1 = state.s1[stage];
    double s2 = state.s2[stage];
    for (size_t i = 0; i < n; ++i) {
        const double v = static_cast<double>(samples[i]);
        const double y = static_cast<double>(static_cast<float>(s1 + b0 * v));
        s1 = s2 + b1 * v + a1 * y;
        s2 = b2 * v + a2 * y;
        samples[i] = static_cast<float>(wet * y + dry * v);
    }
    state.s1[stage] = s1;
    state.s2[stage] = s2;
}

template <size_t kChannels>
void run_plain(std::span<const Stretch> stretches, CascadeState* states, const float* const* in,
               float* const* out, const Followers& followers) noexcept {
    const size_t n = stretches.back().end;
    for (size_t channel = 0; channel < kChannels; ++channel) {
        std::copy_n(in[channel], n, out[channel]);
        for (const auto& [begin, end, weights] : stretches) {
            for (size_t stage = 0; stage < kStageCount; ++stage) {
                run_stage(*weights, states[channel], stage, out[channel] + begin, end - begin);
            }
        }
    }
    follow(followers, out[0], out[kChannels - 1], n);
}

}  // namespace

CascadeKernels plain_cascade() noexcept {
    return {run_plain<1>, run_plain<2>};
}

}  // namespace brindle
