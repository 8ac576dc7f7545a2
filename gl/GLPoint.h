// SPDX-License-Identifier: ISC
#pragma once

namespace brindle {

/// A position or a size; which coordinates it is in, its user says.
struct GLPoint {
    float x = 0.0f;
    float y = 0.0f;
};

}  // namespace brindle
