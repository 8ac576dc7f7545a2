// SPDX-License-Identifier: ISC
#include "gl/GLView_Toggle.h"

namespace brindle {

GLView_Toggle::GLView_Toggle() {
    color = kGreen;
    labelSize = 10.0f;
}

void GLView_Toggle::SetPort(const HostWriter& hostWriter, uint32_t index) {
    writer = hostWriter;
    port = index;
}

void GLView_Toggle::SetTouch(const LV2UI_Touch* touch, uint32_t touchedPort) {
    gesture.Bind(touch, touchedPort);
}

bool GLView_Toggle::IsOn() {
    return GetParameter(port) != 0.0f;
}

void GLView_Toggle::SetText(const char* newText) {
    text = newText != nullptr ? newText : "";
}

void GLView_Toggle::MouseDown(GLPoint /*point*/, GLPoint /*pagePoint*/) {
    const float value = IsOn() ? 0.0f : 1.0f;
    gesture.Begin();
    writer.Write(port, value);
    SetCaptured(true);
}

void GLView_Toggle::MouseUp(GLPoint /*point*/) {
    SetCaptured(false);
}

void GLView_Toggle::SetCaptured(bool on) {
    GLView::SetCaptured(on);
    if (!on) {
        gesture.End();
    }
}

}  // namespace brindle
