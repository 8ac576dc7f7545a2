// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLView.h"

namespace brindle {

/// The page's two help texts side by side, from its left edge on. It takes no pointer.
class GLView_HelpLine : public GLView {
  public:
    bool HitTest(GLPoint /*point*/) override { return false; }
    void DrawFront() override;
};

}  // namespace brindle
