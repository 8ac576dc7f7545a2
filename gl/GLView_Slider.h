// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLView_Knob.h"

namespace brindle {

/// A linear control: a cap that moves along a slot, left to right or bottom to top. Only its own
/// rectangle takes the pointer, not its children.
class GLView_Slider : public GLView_Knob {
  public:
    using GLView_Knob::GLView_Knob;

    bool HitTest(GLPoint point) override;
    void DrawBack() override;
    void Draw() override;
    void DrawFront() override { DrawFrontOutlined(); }
    GLRect DrawnArea() override;

    /// Draw, around the view's centre, what is beneath the value (back pass) and the value (main
    /// pass).
    virtual void DrawTrack();
    virtual void DrawValue();
    /// Travel of the value's mark to either side of the centre, in the view's units.
    virtual float GetTravel();

  private:
    /// Distance of the label below the view's middle.
    float LabelBelow();
};

}  // namespace brindle
