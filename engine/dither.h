// SPDX-License-Identifier: ISC
/// The dither that run adds to its input: about 1e-6 at its peak, far below audibility, it keeps
/// the recursions off denormal numbers.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brindle {

/// Values that next_dither writes beyond those asked for.
inline constexpr size_t kDitherRoom = 8;

/// Writes `n` values to `dither`, which has room for n + kDitherRoom: the first is `noise`, each
/// other one comes from the generator, state ← state · 16807 in 32 bits. `state` and `noise` are
/// left for the next call. Real-time safe.
void next_dither(int32_t& state, float& noise, float* dither, size_t n) noexcept;

}  // namespace brindle
