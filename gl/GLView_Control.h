// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>

#include "gl/GLView.h"
#include "gl/host_link.h"

namespace brindle {

/// A view that takes the pointer. An outline shows that it is hovered or held.
class GLView_Control : public GLView {
  public:
    void DrawFront() override { DrawFrontOutlined(); }

  protected:
    /// The front pass, with an outline around the view's rectangle.
    void DrawFrontOutlined();
};

/// A control for one port of the plugin.
class GLView_PortControl : public GLView_Control {
  public:
    /// Sets the port that is written, and the writer.
    void SetPort(const HostWriter& hostWriter, uint32_t index);
    /// Sets the host's touch feature, null for none, and the port that touches are reported for.
    void SetTouch(const LV2UI_Touch* touch, uint32_t touchedPort);

    HostWriter writer;
    uint32_t port = 0;
    TouchGesture gesture;
};

}  // namespace brindle
