// SPDX-License-Identifier: ISC
#pragma once

#include <string>

#include "host/bundle.h"
#include "host/output_file.h"
#include "host/plugin.h"

namespace brindle {

/// The controls' values in an LV2 state: a Turtle file, or a folder with one as hosts save it.
/// Throws UserError where there is none of this plugin.
ControlValues load_state(Bundle& bundle, const std::string& path);

/// Writes the plugin's controls as an LV2 state that hosts can read. Throws UserError where that
/// fails. No audio runs meanwhile.
void save_state(Bundle& bundle, const Plugin& plugin, OutputFile& file);

}  // namespace brindle
