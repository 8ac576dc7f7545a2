// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLView_Knob.h"

namespace brindle {

/// A linear control: a cap that runs along a slot, from left to right or from bottom to top. Only
/// its own rectangle takes the pointer, not its children.
class GLView_Slider : public GLView_Knob {
  public:
    using GLView_Knob::GLView_Knob;

    bool HitTest(GLPoint point) override;

    /// Draw around the view's centre what lies beneath the value (back pass), and what shows the
    /// value (main pass).
};

}  // namespace brindle
