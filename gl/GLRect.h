// SPDX-License-Identifier: ISC
#pragma once

#include <algorithm>

namespace brindle {

/// A rectangle. Its user documents the coordinate system.
struct GLRect {
    float left = 0.0f;
    float bottom = 0.0f;
    float right = 0.0f;
    float top = 0.0f;

    bool IsEmpty() const { return left >= right || bottom >= top; }
    /// The smallest rectangle that contains both. Empty rectangles are ignored.
    GLRect JoinedWith(const GLRect& other) const {
        if (IsEmpty()) return other;
        if (other.IsEmpty()) return *this;
        return {std::min(left, other.left), std::min(bottom, other.bottom),
                std::max(right, other.right), std::max(top, other.top)};
    }
};

}  // namespace brindle
