// SPDX-License-Identifier: ISC
#pragma once

#include <lv2/options/options.h>
#include <lv2/urid/urid.h>

#include <cstdint>

#include "gl/GLColor.h"

namespace brindle {

/// What the host reports about itself and its theme.
struct HostOptions {
    float sampleRate = 46000.0f;   ///< Hz; an unusual rate that means "not given"
    uint32_t backgroundColor = 0;  ///< 0xRRGGBBAA; 0 for none
    uint32_t contrastColor = 0;
    bool boxy = false;
    bool flat = false;
};

/// Reads the options up to their end mark, and prints each one used on standard output. Unknown
/// options and those with another context or type are ignored.
HostOptions ReadHostOptions(const LV2_Options_Option* options, LV2_URID_Map* map);

/// Sets a colour from a host's 0xRRGGBBAA value. Ignored if the value is not opaque.
void ApplyHostColor(GLColor& color, uint32_t rgba);

}  // namespace brindle
