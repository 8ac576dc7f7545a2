// SPDX-License-Identifier: ISC
#pragma once

#include <vector>

#include "host/plugin.h"

namespace brindle {

struct ResponsePoint {
    double freq_hz;
    double gain_db;
    double phase_deg;  ///< -180 to 180; negative where the output lags behind
    double delay_ms;   ///< group delay
};

inline constexpr double kFinePointsPerOctave = 192.0;

/// The plugin's response from 20 Hz to 20 kHz (below Nyquist), measured by letting it settle and
/// sending a short broadband signal through it. Takes its first channel.
std::vector<ResponsePoint> measure_response(Plugin& plugin,
                                            double points_per_octave = kFinePointsPerOctave);

}  // namespace brindle
