// SPDX-License-Identifier: ISC
#pragma once

#include <string>
#include <vector>

#include "host/bundle.h"
#include "host/plot.h"
#include "host/plugin.h"
#include "host/settings.h"

namespace brindle {

/// The plugin's magnitude response from 20 Hz to 20 kHz (below Nyquist), 192 points an octave,
/// measured by letting it settle and sending a short broadband signal through it. Takes its first
/// channel.
std::vector<ResponsePoint> measure_response(Plugin& plugin);

struct ResponseRequest {
    std::string output;  ///< ends in .csv, .png or .svg
    Settings settings;
    int rate_hz = 48000;
};

/// Measures and writes a table or a plot. Throws UserError; then there is no output.
void response(Bundle& bundle, const ResponseRequest& request);

}  // namespace brindle
