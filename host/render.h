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
    bool settle = true;     ///< end the controls' glides before the first sample
};

/// Processes a sound file with the plugin; the output is aligned with the input and as long. Throws
/// UserError, and then leaves no output.
void render(Bundle& bundle, const RenderRequest& request);

}  // namespace brindle
