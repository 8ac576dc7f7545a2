// SPDX-License-Identifier: ISC
#pragma once

#include <string>
#include <vector>

#include "host/bundle.h"

namespace CLI {
class App;
}

namespace brindle {

/// The settings on a command line: a saved state or a preset, then single values over it.
struct Settings {
    std::string state;                     ///< path of an LV2 state; empty for none
    std::string preset;                    ///< label; empty for none
    std::vector<std::string> assignments;  ///< each "SYMBOL=VALUE"

    /// Port numbers and values in the order of setting. A value is a number within the port's
    /// range, the name of a choice, or on/off for a switch. Throws UserError for anything unknown.
    [[nodiscard]] ControlValues resolve(Bundle& bundle) const;
};

/// Adds a command's options for them.
void add_settings(CLI::App& command, Settings& settings);

/// A number in its shortest form: "0.71", "15000".
std::string short_number(float value);

}  // namespace brindle
