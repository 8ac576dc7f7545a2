// SPDX-License-Identifier: ISC
#include "graph/curves/frequency_grid.h"

#include <algorithm>
#include <cmath>

namespace brindle {

void SetFrequencyGrid(FrequencyGrid& grid, uint32_t count, float low_hz, float high_hz) {
    if (count > kCurveCapacity || !(low_hz > 0.0f) || !(high_hz > low_hz) ||
        !std::isfinite(high_hz)) {
        return;
    }
    const auto points = static_cast<size_t>(count);
    const float step = std::log(high_hz / low_hz) / static_cast<float>(count);
    for (size_t i = 0; i < points; ++i) {
        grid.hz[i] = low_hz * std::exp(step * static_cast<float>(i));
    }
    const auto before = static_cast<size_t>(grid.count);
    if (before > points) std::fill_n(grid.hz.begin() + count, before - points, 1.0f);
    grid.count = static_cast<int32_t>(count);
    grid.low_hz = low_hz;
    grid.high_hz = high_hz;
}

void ClearCurve(const FrequencyGrid& grid, Curve& curve) {
    std::fill_n(curve.begin(), grid.count, 0.0f);
}

std::optional<size_t> GridIndex(const FrequencyGrid& grid, float freq_hz) {
    const float position = std::log(freq_hz / grid.low_hz) / std::log(grid.high_hz / grid.low_hz) *
                           static_cast<float>(grid.count);
    if (!(position > -1.0f && position < static_cast<float>(kCurveCapacity))) return std::nullopt;
    return static_cast<size_t>(std::max(position, 0.0f));
}

}  // namespace brindle
