// SPDX-License-Identifier: ISC
/// What run does to each sample beside the cascade and without waiting for the one before.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brindle {

/// Values that `dither` writes beyond those asked for.
inline constexpr size_t kDitherRoom = 8;

/// One set of loops for each instruction set; all of them yield the same bits. Arrays hold `n`
/// samples, one array for each of one or two channels, and do not overlap. Real-time safe.
struct SampleLoops {
    /// Dither of about 1e-6 at its peak, far below audibility, which keeps the recursions off
    /// denormal numbers. The first value is `noise`, each other one comes from the generator, state
    /// ← state · 16807 in 32 bits. `out` has room for n + kDitherRoom; `state` and `noise` are left
    /// for the next call.
    void (*dither)(int32_t& state, float& noise, float* out, size_t n) noexcept;

    /// Adds `dither` to each input, writes the louder channel's square times `weight` to `square`,
    /// and the inputs times `trim` to `out`.
    struct Input {
        const float* in[2];
        const float* dither;
        float trim, weight;
        float* out[2];
        float* square;
    };
    void (*take_mono)(const Input& input, size_t n) noexcept;
    void (*take_stereo)(const Input& input, size_t n) noexcept;
};

/// The fastest loops for the processor at hand. Asks the processor: call at instantiation.
SampleLoops choose_sample_loops();

}  // namespace brindle
