// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>

#include "gl/GLView.h"
#include "gl/host_link.h"

namespace brindle {

/// What takes the pointer: an outline tells that it is pointed at or held.
class GLView_Control : public GLView {
  public:
    void DrawFront() override { DrawFrontOutlined(); }

  protected:
    /// The front pass with the outline around the view's rectangle.
    void DrawFrontOutlined();
};

/// A control of one port of the plugin.
class GLView_PortControl : public GLView_Control {
  public:
    /// Which port is written, through what.
    void SetPort(const HostWriter& hostWriter, uint32_t index);
    /// Whom to tell that the control is held, null for nobody, and of which port.
    void SetTouch(const LV2UI_Touch* touch, uint32_t touchedPort);

    HostWriter writer;
    uint32_t port = 0;
    TouchGesture gesture;
};

}  // namespace brindle
