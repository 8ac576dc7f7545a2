// SPDX-License-Identifier: ISC
#pragma once

#include <string>
#include <vector>

#include "host/bundle.h"

namespace brindle {

/// The controls that a command line asks for: a saved state, a preset, then single values over it.
struct Settings {
    std::string state;                     ///< path of an LV2 state; empty for none
    std::string preset;                    ///< label; empty for none
    std::vector<std::string> assignments;  ///< each "SYMBOL=VALUE"

    /// Port numbers and values in the order in which they are to be set. A value is a number
    /// within the port's range, or one of its choices by name, or on/off for a switch. Throws
    /// UserError where anything is unknown.
    [[nodiscard]] ControlValues resolve(Bundle& bundle) const;
};

/// A number as a person would write it: "0.71", "15000".
std::string short_number(float value);

}  // namespace brindle
