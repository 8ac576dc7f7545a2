// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLView.h"

namespace brindle {

/// A framed box around a group of controls, with a label at its upper edge. Only its children take
/// the pointer.
class GLView_DecoratorBox : public GLView {
  public:
    GLView_DecoratorBox();

    bool HitTest(GLPoint point) override;
    void DrawBack() override;

    int style = 0;  ///< as for DrawFramedBox
};

}  // namespace brindle
