// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLView.h"

namespace brindle {

/// A framed box that holds a group of controls together, with a label at its upper edge. It takes
/// the pointer only for its children, and leaves what it merely surrounds alone.
class GLView_DecoratorBox : public GLView {
  public:
    GLView_DecoratorBox();

    bool HitTest(GLPoint point) override;
    void DrawBack() override;

    int style = 0;  ///< 0 closed; 1 to 4 open sides, as the framed boxes of the drawing routines
};

}  // namespace brindle
