// SPDX-License-Identifier: ISC
/// The logarithmic frequency axis that every response curve is sampled on.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "contract/ports.h"

namespace brindle {

/// Capacity of a curve and of the frequency axis. It exceeds the 800 points drawn, so that the
/// index of the highest frequency, one past the last point, is still inside.
inline constexpr size_t kCurveCapacity = 1024;

/// Points of the curves that the graph draws.
inline constexpr uint32_t kGraphPoints = 800;

/// Levels in dB, one for each grid point.
using Curve = std::array<float, kCurveCapacity>;

/// Frequencies in Hz at which curves are evaluated; the first `count` are in use.
struct FrequencyGrid {
    int32_t count = 0;
    float low_hz = kLowestHz;
    float high_hz = kHighestBandHz;
    std::array<float, kCurveCapacity> hz = {};
};

/// Fills the grid with `count` frequencies of equal ratio from `low_hz` upwards. The range is
/// divided into `count` steps, not count - 1, so the last point is one step below `high_hz`. Points
/// that are no longer in use become 1 Hz. Ignored if `count` exceeds the capacity or the bounds are
/// not 0 < low < high < infinity.
void SetFrequencyGrid(FrequencyGrid& grid, uint32_t count, float low_hz, float high_hz);

/// Sets the points in use to 0 dB.
void ClearCurve(const FrequencyGrid& grid, Curve& curve);

/// The grid point at or just below a frequency; `high_hz` gives `count`, one past the points in
/// use. Empty for NaN and if the index is outside a curve's capacity.
std::optional<size_t> GridIndex(const FrequencyGrid& grid, float freq_hz);

}  // namespace brindle
