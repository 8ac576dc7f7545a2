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

/// The plugin's response from 20 Hz to 20 kHz (below Nyquist), 192 points an octave, measured by
/// letting it settle and sending a short broadband signal through it. Takes its first channel.
std::vector<ResponsePoint> measure_response(Plugin& plugin);

}  // namespace brindle
