// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLView.h"

namespace brindle {

/// A vertical bar over a scale from -60 dB at its bottom edge to 0 dB at its top. It shows the
/// level that it holds at once; ballistics belong to whoever sets it.
class GLView_DB60Meter : public GLView {
  public:
    void DrawBack() override;
    void DrawFront() override;
    GLRect DrawnArea() override;

    /// The part of the height that is filled, 0 to 1; 0 for what is no level.
    float GetFill() const;

    /// Linear amplitude, 1 is 0 dB.
    void SetLevel(float newLevel);

    float level = 0.0f;
};

}  // namespace brindle
