// SPDX-License-Identifier: ISC
/// The sixteen stages of an instance as one cascade, which takes most of run's time.
///
/// Each quantity has an array of its own, so that neighbouring stages are neighbouring lanes.
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

/// The weights of all stages. Each filters its input v by y = s1 + b0·v, rounded to single
/// precision; s1 ← s2 + b1·v + a1·y; s2 ← b2·v + a2·y; and returns wet·y + dry·v, rounded again.
struct CascadeWeights {
    StageArray b0, b1, b2, a1, a2, wet, dry;
};

/// The filter states of one channel.
struct CascadeState {
    StageArray s1, s2;
};

/// The samples from `begin` up to `end`, over which no weight changes.
struct Stretch {
    size_t begin, end;
    const CascadeWeights* weights;
};

/// The least samples in a stretch; the first and the last may be shorter.
inline constexpr size_t kMinStretch = 64;

/// Filters each channel from `in` to `out`, which do not overlap, with the weights of each stretch.
/// The first stretch begins at sample 0, each other one at the end of the one before; none is
/// empty. Writes the followers' powers. Yields the same bits on every instruction set. Real-time
/// safe.
using RunCascade = void (*)(std::span<const Stretch> stretches, CascadeState* states,
                            const float* const* in, float* const* out,
                            const Followers& followers) noexcept;

/// One function for each number of channels.
struct CascadeKernels {
    RunCascade mono, stereo;
};

/// The cascade stage by stage and sample by sample, which defines the result.
CascadeKernels plain_cascade() noexcept;

/// Returns the fastest cascade for this processor. Call at instantiation.
CascadeKernels choose_cascade();

}  // namespace brindle
