// SPDX-License-Identifier: ISC
/// The loops of run over samples that do not depend on each other.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brindle {

/// How many values `dither` writes beyond `n`.
inline constexpr size_t kDitherRoom = 8;

/// One set of loops for each instruction set; all yield the same bits. Arrays hold `n` samples of
/// one channel each and do not overlap. Real-time safe.
struct SampleLoops {
    /// Writes dither with a peak of about 1e-6, far below audibility, which keeps the recursions
    /// off denormal numbers. The first value is `noise`, the others come from the generator
    /// state ← state · 16807 in 32 bits. `out` has room for n + kDitherRoom values. Updates `state`
    /// and `noise` for the next call.
    void (*dither)(int32_t& state, float& noise, float* out, size_t n) noexcept;

    /// Adds `dither` to the inputs, writes the louder channel's square times `weight` to `square`
    /// and the inputs times `gain` to `out`.
    struct Input {
        const float* in[2];
        const float* dither;
        float gain, weight;
        float* out[2];
        float* square;
    };
    void (*trim_mono)(const Input& input, size_t n) noexcept;
    void (*trim_stereo)(const Input& input, size_t n) noexcept;
};

/// Returns the fastest loops for this processor. Call at instantiation.
SampleLoops choose_sample_loops();

}  // namespace brindle
