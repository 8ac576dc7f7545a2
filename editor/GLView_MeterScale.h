// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLView.h"

namespace brindle {

/// A meter's name on a light plate. It takes no pointer.
class GLView_MeterName : public GLView {
  public:
    bool HitTest(GLPoint /*point*/) override { return false; }
    void DrawBack() override;
};

/// The levels beside a meter of the view's height, in dB below full scale. It takes no pointer.
class GLView_MeterScale : public GLView {
  public:
    /// The numbers stand at the left or the right edge (kAlignLeft, kAlignRight).
    explicit GLView_MeterScale(int textAlignment) : alignment(textAlignment) {}

    bool HitTest(GLPoint /*point*/) override { return false; }
    void DrawBack() override;
    /// With the halves of the outermost numbers.
    GLRect DrawnArea() override;

    const int alignment;
};

}  // namespace brindle
