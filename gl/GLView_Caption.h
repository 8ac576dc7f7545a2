// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLView.h"

namespace brindle {

/// A line of text: its label in its colour and label size, shrunk to fit the view's width. It
/// ignores the pointer.
class GLView_Caption : public GLView {
  public:
    bool HitTest(GLPoint point) override;
    void Draw() override;

    bool inContrast = false;  ///< uses the page's contrast colour
    int alignment = 1;        ///< 0 left, 1 centred, 2 right
};

}  // namespace brindle
