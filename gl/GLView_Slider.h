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
    void DrawBack() override;
    void Draw() override;
    void DrawFront() override { DrawFrontOutlined(); }
    GLRect DrawnArea() override;

    /// Draw around the view's centre what lies beneath the value (back pass), and what shows the
    /// value (main pass).
    virtual void DrawTrack();
    virtual void DrawValue();
    /// How far the value's mark travels to either side of the centre, in the view's units.
    virtual float GetTravel();

  private:
    /// How far below its middle the label stands.
    float LabelBelow();
};

}  // namespace brindle
