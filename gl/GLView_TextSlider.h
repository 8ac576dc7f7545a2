// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLView_Slider.h"

namespace brindle {

/// A slider that shows its value as text above a slim track, in a display.
class GLView_TextSlider : public GLView_Slider {
  public:
    using GLView_Slider::GLView_Slider;

    void DrawTrack() override;
    void DrawValue() override;
    float GetTravel() override;

  protected:
    /// The text before the value's text.
    virtual const char* Caption() { return ""; }
};

}  // namespace brindle
