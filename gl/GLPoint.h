// SPDX-License-Identifier: ISC
#pragma once

namespace brindle {

/// A position or a size. Its user documents the coordinate system.
struct GLPoint {
    float x = 0.0f;
    float y = 0.0f;
};

}  // namespace brindle
