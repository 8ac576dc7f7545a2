// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLView_Control.h"

namespace brindle {

/// A button that opens a dialog or, without one, closes the dialog that contains it. It acts when
/// it is released with the pointer over it. It shows its label.
class GLView_PopButton : public GLView_Control {
  public:
    void DrawBack() override;
    void Draw() override;
    void MouseDown(GLPoint point, GLPoint pagePoint) override;
    void MouseUp(GLPoint point) override;

    GLView* dialog = nullptr;  ///< observed; null closes the open dialog
};

}  // namespace brindle
