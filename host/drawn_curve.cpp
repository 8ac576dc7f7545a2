// SPDX-License-Identifier: ISC
#include "host/drawn_curve.h"

#include <algorithm>
#include <cmath>

#include "contract/ports.h"
#include "graph/curves/type_curves.h"

namespace brindle {
namespace {

/// As many points as the graph has.
constexpr uint32_t kPoints = 800;
constexpr float kLowHz = 20.0f;
constexpr float kHighHz = 20000.0f;

}  // namespace

DrawnCurve::DrawnCurve(const Plugin& plugin) {
    SetFrequencyGrid(grid_, kPoints, kLowHz, kHighHz);
    for (int strip = 0; strip < kStripCount; ++strip) {
        const uint32_t port = strip_port(strip);
        if (plugin.get(port + kEnable) == 0.0f) continue;
        const float type = plugin.get(port + kType);
        const CurveSettings settings = {plugin.get(port + kGain), plugin.get(port + kFrequency),
                                        plugin.get(port + kQ)};
        Curve curve{};  // of its own: a notch sets a point of its curve
        if (is_band(strip)) {
            AddBandCurve(grid_, curve, decode_type<BandType>(type), settings);
        } else {
            AddSectionCurve(grid_, curve, decode_type<SectionType>(type), settings);
        }
        for (size_t i = 0; i < kPoints; ++i) total_[i] += curve[i];
    }
}

double DrawnCurve::level_db(double freq_hz) const {
    const double position = std::log(freq_hz / double{kLowHz}) /
                            std::log(double{kHighHz} / double{kLowHz}) * double{kPoints};
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
