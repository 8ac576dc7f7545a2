// SPDX-License-Identifier: ISC
/// The colours by which a strip and its handle on the graph are known: bands green, sections amber.
#pragma once

#include "contract/ports.h"
#include "gl/GLColor.h"

namespace brindle {

constexpr const GLColor& HandleColor(int strip) {
    return is_band(strip) ? kSage : kAmber;
}

/// Of a strip's key, knobs and outline; brighter than handles, as lamps are.
constexpr GLColor LampColor(int strip) {
    return is_band(strip) ? GLColor{0.5f, 0.9f, 0.65f} : kAmber;
}

}  // namespace brindle
