// SPDX-License-Identifier: ISC
#pragma once

#include <string>

#include "host/bundle.h"
#include "host/settings.h"

namespace brindle {

struct ResponseRequest {
    std::string output;  ///< ends in .csv, .txt, .png or .svg
    Settings settings;
    int rate_hz = 48000;
    bool phase = false;  ///< a plot gets a panel with phase and group delay
    bool drawn = false;  ///< table and plot get the curve that the editor draws
};

/// Measures and writes a table or a plot. Throws UserError; then there is no output.
void response(Bundle& bundle, const ResponseRequest& request);

}  // namespace brindle
