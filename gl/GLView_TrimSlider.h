// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLView_TextSlider.h"

namespace brindle {

/// A text slider with its label before the value: "Output Trim: 0.0dB".
class GLView_TrimSlider : public GLView_TextSlider {
  public:
    using GLView_TextSlider::GLView_TextSlider;

  protected:
    const char* Caption() override { return label; }
};

}  // namespace brindle
