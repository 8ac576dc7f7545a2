// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <string>

#include "host/bundle.h"
#include "host/settings.h"

namespace brindle {

struct RenderRequest {
    std::string input;
    std::string output;
    Settings settings;
    uint32_t block = 1024;  ///< frames that the plugin gets at a time
    bool settle = true;     ///< let the controls' glides end before the first sample
};

/// Runs a sound file through the plugin, sample by sample aligned with the input and of the same
/// length. Throws UserError; then there is no output.
void render(Bundle& bundle, const RenderRequest& request);

}  // namespace brindle
