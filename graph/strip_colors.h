// SPDX-License-Identifier: ISC
/// The colours of strips and handles: bands are green, sections amber.
#pragma once

#include "contract/ports.h"
#include "gl/GLColor.h"

namespace brindle {

constexpr const GLColor& HandleColor(int strip) {
    return is_band(strip) ? kSage : kAmber;
}

/// The colour of a strip's button, knobs and outline: lamps, so brighter than handles.
constexpr GLColor LampColor(int strip) {
    return is_band(strip) ? GLColor{0.5f, 0.9f, 0.65f} : GLColor{1.0f, 0.68f, 0.2f};
}

}  // namespace brindle
