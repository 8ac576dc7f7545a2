// SPDX-License-Identifier: ISC
/// The mean squares that the meters show.
#pragma once

#include <algorithm>
#include <cstddef>

namespace brindle {

/// Two one-pole followers, of the loudest channel's square before and after the cascade. Most of
/// their time is waiting for themselves, and so is the cascade's; it steps them as samples leave.
/// Real-time safe.
struct Followers {
    float take, keep;        ///< weights of a square and of the power before
    const float* in_square;  ///< one for each sample, weighted already
    float in_power, out_power;
    float *in_powers, *out_powers;  ///< after each sample

    /// Follows sample `i`, which left the cascade as `left` and `right`; mono passes one for both.
    void step(size_t i, float left, float right) noexcept {
        in_power = in_square[i] + keep * in_power;
        out_power = take * std::max(left * left, right * right) + keep * out_power;
        in_powers[i] = in_power;
        out_powers[i] = out_power;
    }
};

/// Follows `n` samples that have left the cascade.
inline void follow(Followers followers, const float* left, const float* right, size_t n) noexcept {
    for (size_t i = 0; i < n; ++i) followers.step(i, left[i], right[i]);
}

}  // namespace brindle
