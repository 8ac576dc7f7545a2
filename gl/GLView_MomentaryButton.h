// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLView_PresetButton.h"

namespace brindle {

/// A button that auditions its preset: it restores the previous values when it is released or
/// another view captures the pointer. A button that is destroyed while held restores nothing,
/// because its writer may be gone by then.
class GLView_MomentaryButton : public GLView_PresetButton {
  public:
    void MouseDown(GLPoint point, GLPoint pagePoint) override;
    void MouseUp(GLPoint point) override;
    void SetCaptured(bool on) override;

    Values saved{};  ///< values of the preset's ports at the press

  private:
    void Restore();

    bool held_ = false;
};

}  // namespace brindle
