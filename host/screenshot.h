// SPDX-License-Identifier: ISC
#pragma once

#include <string>

#include "host/bundle.h"
#include "host/settings.h"

namespace brindle {

struct ScreenshotRequest {
    std::string output;
    Settings settings;
    std::string size = "1000x600";  ///< WIDTHxHEIGHT, pixels
};

/// Writes a picture (PNG) of the editor while pink noise runs through the plugin. Starts a virtual
/// display if there is none with room. Throws UserError, and then leaves no picture.
void screenshot(Bundle& bundle, const ScreenshotRequest& request);

}  // namespace brindle
