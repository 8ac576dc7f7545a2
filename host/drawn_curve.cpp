// SPDX-License-Identifier: ISC
#include "host/drawn_curve.h"

#include <algorithm>
#include <cmath>

#include "contract/ports.h"
#include "graph/curves/type_curves.h"

namespace brindle {
namespace {

constexpr uint32_t kPoints = kGraphPoints;

}  // namespace

DrawnCurve::DrawnCurve(const Plugin& plugin) {
    SetFrequencyGrid(grid_, kPoints, kLowestHz, kHighestBandHz);
    for (int strip = 0; strip < kStripCount; ++strip) {
        const uint32_t port = strip_port(strip);
        if (plugin.get(port + kEnable) == 0.0f) continue;
        const float type = plugin.get(port + kType);
        const CurveSettings settings = {plugin.get(port + kGain), plugin.get(port + kFrequency),
                                        plugin.get(port + kQ)};
        Curve curve{};  // of its own: a notch sets a point of its curve
        AddStripCurve(grid_, curve, strip, type, settings);
        for (size_t i = 0; i < kPoints; ++i) total_[i] += curve[i];
    }
}

double DrawnCurve::level_db(double freq_hz) const {
    const double position = std::log(freq_hz / double{kLowestHz}) /
                            std::log(double{kHighestBandHz} / double{kLowestHz}) * double{kPoints};
    const double held = std::clamp(position, 0.0, double{kPoints - 1});
    const auto before = std::min(static_cast<size_t>(held), size_t{kPoints - 2});
    return std::lerp(double{total_[before]}, double{total_[before + 1]},
                     held - static_cast<double>(before));
}

bool DrawnCurve::shows(double freq_hz) const {
    return freq_hz <= double{grid_.hz[kPoints - 1]} &&
           std::abs(level_db(freq_hz)) <= double{kGainRangeDb};
}

}  // namespace brindle
