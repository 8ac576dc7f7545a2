// SPDX-License-Identifier: ISC
#pragma once

namespace brindle {

/// A rectangle; which coordinates it is in, its user says.
struct GLRect {
    float left = 0.0f;
    float bottom = 0.0f;
    float right = 0.0f;
    float top = 0.0f;
};

}  // namespace brindle
