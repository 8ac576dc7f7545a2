// SPDX-License-Identifier: ISC
#pragma once

#include <lv2/options/options.h>
#include <lv2/urid/urid.h>

#include <cstdint>

#include "gl/GLColor.h"

namespace brindle {

/// What the host has told about itself and its looks.
struct HostOptions {
    float sampleRate = 46000.0f;   ///< Hz; an odd figure that tells "not given" from all real ones
    uint32_t backgroundColor = 0;  ///< 0xRRGGBBAA; 0 for none
    uint32_t contrastColor = 0;
    bool boxy = false;
    bool flat = false;
};

/// Reads the options up to their end mark, telling each one that is used on standard output. Those
/// of another context, another type or unknown are passed over.
HostOptions ReadHostOptions(const LV2_Options_Option* options, LV2_URID_Map* map);

/// Sets a colour from a host's word. A colour that is not opaque is left out, not blended.
void ApplyHostColor(GLColor& color, uint32_t rgba);

}  // namespace brindle
