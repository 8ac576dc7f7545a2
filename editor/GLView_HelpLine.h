// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLView.h"

namespace brindle {

/// The page's two help texts side by side, starting at its left edge. It ignores the pointer.
class GLView_HelpLine : public GLView {
  public:
    bool HitTest(GLPoint /*point*/) override { return false; }
    void DrawFront() override;
};

}  // namespace brindle
