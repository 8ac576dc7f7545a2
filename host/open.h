// SPDX-License-Identifier: ISC
#pragma once

#include <string>

#include "host/bundle.h"
#include "host/settings.h"

namespace brindle {

struct OpenRequest {
    std::string input;            ///< sound file; empty for a built-in signal
    std::string signal = "pink";  ///< or "sweep"
    Settings settings;
    std::string save;     ///< LV2 state to write at the end; empty for none
    bool silent = false;  ///< use no sound device
};

/// Opens the editor in a window over running audio until the window is closed or a request to stop
/// comes. Throws UserError if that is impossible.
void open_editor(Bundle& bundle, const OpenRequest& request);

}  // namespace brindle
