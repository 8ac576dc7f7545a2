// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLView.h"

namespace brindle {

/// A meter's name on a light plate. It ignores the pointer.
class GLView_MeterName : public GLView {
  public:
    bool HitTest(GLPoint /*point*/) override { return false; }
    void DrawBack() override;
};

/// The scale beside a meter, as high as the meter, in dB below full scale. It ignores the pointer.
class GLView_MeterScale : public GLView {
  public:
    /// The numbers are at the left or right edge (kAlignLeft, kAlignRight).
    explicit GLView_MeterScale(int textAlignment) : alignment(textAlignment) {}

    bool HitTest(GLPoint /*point*/) override { return false; }
    void DrawBack() override;
    /// Includes the outer halves of the first and last number.
    GLRect DrawnArea() override;

    const int alignment;
};

}  // namespace brindle
