// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLView_PresetButton.h"

namespace brindle {

/// A button that auditions its preset: the values that it found come back when it lets go, whether
/// it is released or another view takes the pointer. One that is destroyed while held restores
/// nothing: what it writes through may be gone by then.
class GLView_MomentaryButton : public GLView_PresetButton {
  public:
    void MouseDown(GLPoint point, GLPoint pagePoint) override;
    void MouseUp(GLPoint point) override;
    void SetCaptured(bool on) override;

    Values saved{};  ///< what the ports of the preset read at the press

  private:
    void Restore();

    bool held_ = false;
};

}  // namespace brindle
