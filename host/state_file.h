// SPDX-License-Identifier: ISC
#pragma once

#include <string>

#include "host/bundle.h"
#include "host/output_file.h"
#include "host/plugin.h"

namespace brindle {

/// Reads the controls' values from an LV2 state: a Turtle file, or a folder as hosts save it.
/// Throws UserError if it holds no state of this plugin.
ControlValues load_state(Bundle& bundle, const std::string& path);

/// Writes the plugin's controls as an LV2 state that hosts can read, while no audio runs. Throws
/// UserError on failure.
void save_state(Bundle& bundle, const Plugin& plugin, OutputFile& file);

}  // namespace brindle
