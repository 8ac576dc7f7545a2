// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLView_Control.h"

namespace brindle {

/// A button with its label on it that opens a dialog, or, where it has none, closes the dialog in
/// which it stands. It acts when it is released over itself.
class GLView_PopButton : public GLView_Control {
  public:
    void DrawBack() override;
    void Draw() override;
    void MouseDown(GLPoint point, GLPoint pagePoint) override;
    void MouseUp(GLPoint point) override;

    GLView* dialog = nullptr;  ///< observed; null for the one around the button
};

}  // namespace brindle
