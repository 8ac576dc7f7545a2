// SPDX-License-Identifier: ISC
/// The logarithmic frequency axis that every response curve is sampled on.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "contract/ports.h"

namespace brindle {

/// Room of a curve and of the frequency axis. Larger than the 800 points drawn, so that the index
/// of the topmost frequency, which is one past the last point, is still inside.
inline constexpr size_t kCurveCapacity = 1024;

/// Levels in dB, one for each grid point.
using Curve = std::array<float, kCurveCapacity>;

/// Frequencies in Hz at which curves are evaluated; the first `count` are in use.
struct FrequencyGrid {
    int32_t count = 0;
    float low_hz = kLowestHz;
    float high_hz = kHighestBandHz;
    std::array<float, kCurveCapacity> hz = {};
};

/// Fills the grid with `count` frequencies in equal ratios from `low_hz` upward. The ratio divides
/// the range into `count` steps, not count - 1, so the last point lies one step below `high_hz`.
/// Points in use before and no longer now become 1 Hz. Ignored when `count` exceeds the capacity
/// or the bounds are not 0 < low < high < infinity.
void SetFrequencyGrid(FrequencyGrid& grid, uint32_t count, float low_hz, float high_hz);

/// Sets the points in use to 0 dB.
void ClearCurve(const FrequencyGrid& grid, Curve& curve);

/// The grid point at or next below a frequency; for `high_hz` that is `count`, a point beyond those
/// in use. Nothing where the index would fall outside a curve's capacity, or for NaN.
std::optional<size_t> GridIndex(const FrequencyGrid& grid, float freq_hz);

}  // namespace brindle
