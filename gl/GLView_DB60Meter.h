// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLView.h"

namespace brindle {

/// A vertical bar on a scale from -60 dB at its bottom to 0 dB at its top. It shows a new level at
/// once; the caller implements the ballistics.
class GLView_DB60Meter : public GLView {
  public:
    void DrawBack() override;
    void DrawFront() override;
    GLRect DrawnArea() override;

    /// The filled share of the height, 0 to 1; 0 for NaN and negative levels.
    float GetFill() const;

    /// `newLevel` is a linear amplitude; 1 is 0 dB.
    void SetLevel(float newLevel);

    float level = 0.0f;
};

}  // namespace brindle
