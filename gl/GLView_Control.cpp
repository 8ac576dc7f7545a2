// SPDX-License-Identifier: ISC
#include "gl/GLView_Control.h"

#include "gl/look.h"

namespace brindle {

void GLView_Control::DrawFrontOutlined() {
    Enter();
    DrawStateOutline(Look(*this), hw, hh);
    DrawChildrenFront();
}

void GLView_PortControl::SetPort(const HostWriter& hostWriter, uint32_t index) {
    writer = hostWriter;
    port = index;
}

void GLView_PortControl::SetTouch(const LV2UI_Touch* touch, uint32_t touchedPort) {
    gesture.Bind(touch, touchedPort);
}

}  // namespace brindle
