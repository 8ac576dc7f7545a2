// SPDX-License-Identifier: ISC
/// The sixteen stages of an instance as one cascade, the part of run that every sample pays for.
///
/// One array per quantity, so that neighbouring stages are neighbouring lanes of a vector.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "engine/followers.h"

namespace brindle {

inline constexpr size_t kStageCount = 16;

/// One value of every stage in chain order. Aligned to the widest vectors.
struct alignas(64) StageArray : std::array<double, kStageCount> {};

/// What a stage does to its input v: y = s1 + b0·v, rounded to single precision;
/// s1 ← s2 + b1·v + a1·y; s2 ← b2·v + a2·y; then wet·y + dry·v, rounded likewise.
struct CascadeWeights {
    StageArray b0, b1, b2, a1, a2, wet, dry;
};

/// The recursions of one channel.
struct CascadeState {
    StageArray s1, s2;
};

/// Samples over which no weight changes, from `begin` to where the next stretch begins.
struct Stretch {
    size_t begin;
    const CascadeWeights* weights;
};

/// No less lies between the beginnings of two stretches, but for the first.
inline constexpr size_t kMinStretch = 64;

/// Sends `n` samples of each channel through the cascade, from `in` to `out` (which are not the
/// same), with the weights that the stretches say; the first begins at 0, all at or before `n`.
/// Writes the followers' powers. Yields the same bits on every instruction set. Real-time safe.
using RunCascade = void (*)(std::span<const Stretch> stretches, CascadeState* states,
                            const float* const* in, float* const* out, size_t n,
                            const Followers& followers) noexcept;

/// The cascade of one channel and of two.
struct CascadeKernels {
    RunCascade mono, stereo;
};

/// One stage after the other and one sample after the other; what the others yield too.
CascadeKernels plain_cascade() noexcept;

/// The fastest cascade for the processor at hand. Asks the processor: call at instantiation.
CascadeKernels choose_cascade();

}  // namespace brindle
