// SPDX-License-Identifier: ISC
#include "gl/GLView_DB60Meter.h"

#include <algorithm>
#include <cmath>

namespace brindle {

float GLView_DB60Meter::GetFill() const {
    // Neither a NaN nor a negative level is greater than 0.
    const float amplitude = level > 0.0f ? level : 0.0f;
    return std::clamp(std::log10(amplitude + 1e-10f) * 0.333332f + 1.0f, 0.0f, 1.0f);
}

}  // namespace brindle
