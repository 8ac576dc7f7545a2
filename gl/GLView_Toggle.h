// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <string>

#include "gl/GLView.h"
#include "gl/host_link.h"

namespace brindle {

/// A lamp button that switches one port between 0 and 1. It lights when the host reports the value.
class GLView_Toggle : public GLView {
  public:
    GLView_Toggle();

    /// Which port is switched, through what.
    void SetPort(const HostWriter& hostWriter, uint32_t index);
    /// Whom to tell of presses, null for nobody, and of which port.
    void SetTouch(const LV2UI_Touch* touch, uint32_t touchedPort);

    void DrawBack() override;
    void Draw() override;
    void DrawFront() override;
    void MouseDown(GLPoint point, GLPoint pagePoint) override;
    void MouseUp(GLPoint point) override;
    /// A toggle that loses the pointer ends the gesture.
    void SetCaptured(bool on) override;

    /// True while the port's last reported value is not 0.
    virtual bool IsOn();
    /// The lamp's text.
    virtual void SetText(const char* newText);

    HostWriter writer;
    uint32_t port = 0;
    TouchGesture gesture;
    std::string text;
};

}  // namespace brindle
