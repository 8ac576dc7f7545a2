// SPDX-License-Identifier: ISC
#include "gl/GLView_PresetButton.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "gl/look.h"

namespace brindle {

GLView_PresetButton::GLView_PresetButton() {
    values.fill(kNotSet);
    pointerShape = PointerShape::Hand;
}

void GLView_PresetButton::SetWriter(const HostWriter& hostWriter) {
    writer = hostWriter;
}

void GLView_PresetButton::SetPresetValue(uint32_t index, float value) {
    if (index < values.size()) values[index] = value;
}

void GLView_PresetButton::SetPresetName(const char* presetName) {
    SetName(presetName);
    Redraw(Layer::Back);
}

void GLView_PresetButton::WriteAll(const Values& from) const {
    for (uint32_t port = 0; port < values.size(); ++port) {
        if (values[port] != kNotSet) writer.Write(port, from[port]);
    }
}

void GLView_PresetButton::MouseDown(GLPoint /*point*/, GLPoint /*pagePoint*/) {
    SetCaptured(true);
    WriteAll(values);
    if (GLView* page = Page()) page->SetInfoText("");
}

void GLView_PresetButton::MouseUp(GLPoint /*point*/) {
    SetCaptured(false);
}

bool GLView_PresetButton::IsSet() {
    constexpr float kRounding = 1e-5f;  // of hosts that store values with few digits
    bool hasValues = false;
    for (uint32_t port = 0; port < values.size(); ++port) {
        if (values[port] == kNotSet) continue;
        hasValues = true;
        const float allowed = kRounding * std::max(1.0f, std::abs(values[port]));
        if (!(std::abs(GetParameter(port) - values[port]) <= allowed)) return false;
    }
    return hasValues;
}

void GLView_PresetButton::ParameterChanged(uint32_t index) {
    GLView::ParameterChanged(index);
    if (index >= values.size() || values[index] == kNotSet) return;
    const bool wasLit = std::exchange(lit_, IsSet());
    if (lit_ != wasLit) Redraw(Layer::Back);
}

void GLView_PresetButton::DrawBack() {
    const Look look(*this);
    Enter();
    DrawKey(look, hw, hh);
    if (lit_ && !look.captured) DrawLitKey(look, hw, hh);
    const char* shown = label[0] != '\0' || name == nullptr ? label : name;
    DrawKeyText(look, shown, labelSize * look.s, 2.0f * (hw - 2.0f * look.s), color);
    DrawChildrenBack();
}

}  // namespace brindle
