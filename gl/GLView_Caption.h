// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLView.h"

namespace brindle {

/// A line of text: its label in its colour at its label size, made smaller where it would be wider
/// than the view. It takes no pointer.
class GLView_Caption : public GLView {
  public:
    bool HitTest(GLPoint point) override;
    void Draw() override;

    bool inContrast = false;  ///< in the page's contrast colour instead of its own
    int alignment = 1;        ///< 0 begins at the left edge, 1 is centred, 2 ends at the right edge
};

}  // namespace brindle
