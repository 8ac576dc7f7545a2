// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <string>

#include "gl/GLView_Control.h"

namespace brindle {

/// A lamp button that switches a port between 0 and 1. It lights when the host reports the value.
class GLView_Toggle : public GLView_PortControl {
  public:
    GLView_Toggle();

    void ParameterChanged(uint32_t index) override;
    void DrawBack() override;
    void Draw() override;
    /// Includes the glow around the button.
    GLRect DrawnArea() override;
    void MouseDown(GLPoint point, GLPoint pagePoint) override;
    void MouseUp(GLPoint point) override;
    /// Losing the pointer ends the gesture.
    void SetCaptured(bool on) override;

    /// True while the port's last reported value is not 0.
    virtual bool IsOn();
    /// The lamp's text.
    virtual void SetText(const char* newText);

    std::string text;
};

}  // namespace brindle
