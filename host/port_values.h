// SPDX-License-Identifier: ISC
#pragma once

#include <lilv/lilv.h>

#include "host/bundle.h"

namespace brindle {

/// The port values of an LV2 state or preset, in port order. Symbols that are no control inputs of
/// the plugin and values that are no numbers are left out.
ControlValues port_values(Bundle& bundle, const LilvState& state);

}  // namespace brindle
