// SPDX-License-Identifier: ISC
/// The mean squares that the meters show.
#pragma once

#include <algorithm>
#include <cstddef>

namespace brindle {

/// Two one-pole followers of the loudest channel's square, before and after the cascade. They and
/// the cascade mostly wait for their own recursions, so the cascade steps them as samples leave.
/// Real-time safe.
struct Followers {
    float weight, keep;      ///< of a new square and of the last power
    const float* in_square;  ///< of each sample, already weighted
    float in_power, out_power;
    float *in_powers, *out_powers;  ///< of each sample

    /// Follows sample `i`, which left the cascade as `left` and `right`; mono passes it twice.
    void step(size_t i, float left, float right) noexcept {
        in_power = in_square[i] + keep * in_power;
        out_power = weight * std::max(left * left, right * right) + keep * out_power;
        in_powers[i] = in_power;
        out_powers[i] = out_power;
    }
};

/// Follows `n` samples of the cascade's output.
inline void follow(Followers followers, const float* left, const float* right, size_t n) noexcept {
    for (size_t i = 0; i < n; ++i) followers.step(i, left[i], right[i]);
}

}  // namespace brindle
