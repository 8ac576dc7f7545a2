// SPDX-License-Identifier: ISC
#pragma once

#include "host/bundle.h"

namespace brindle {

/// Prints the variants, the controls with their ranges and choices, and the presets.
void print_info(const Bundle& bundle);

}  // namespace brindle
