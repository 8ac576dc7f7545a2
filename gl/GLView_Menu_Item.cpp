// SPDX-License-Identifier: ISC
#include "gl/GLView_Menu_Item.h"

#include <cmath>

namespace brindle {

GLView_Menu_Item::GLView_Menu_Item(uint32_t index, float entryValue)
    : port(index), value(entryValue) {}

bool GLView_Menu_Item::IsPresent() {
    return std::floor(GetParameter(port) + 0.1f) == std::floor(value + 0.1f);
}

void GLView_Menu_Item::MouseDown(GLPoint /*point*/, GLPoint /*pagePoint*/) {
    SetCaptured(true);
    SendParameter(port, value);
    CloseDialog(false);
}

void GLView_Menu_Item::MouseUp(GLPoint /*point*/) {
    SetCaptured(false);
    SendParameter(port, value);
    CloseDialog(false);
}

}  // namespace brindle
