// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>

#include "gl/GLView.h"

namespace brindle {

/// A menu entry: writes one value to one port and closes the menu.
class GLView_Menu_Item : public GLView {
  public:
    GLView_Menu_Item(uint32_t index, float entryValue);

    /// Writes, and closes the menu. The entry captures the pointer to receive the release.
    void MouseDown(GLPoint point, GLPoint pagePoint) override;
    /// Writes again.
    void MouseUp(GLPoint point) override;
    void Draw() override;

    /// True if the port's last reported value is this entry's. Both are read as the engine reads
    /// them: the integer part of value + 0.1.
    bool IsPresent();

    uint32_t port;
    float value;
};

}  // namespace brindle
