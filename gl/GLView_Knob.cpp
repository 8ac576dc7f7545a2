// SPDX-License-Identifier: ISC
#include "gl/GLView_Knob.h"

#include <algorithm>
#include <cmath>

#include "gl/value_display.h"

namespace brindle {
namespace {

constexpr float kWheelStep = 0.02f;
constexpr float kFineWheelStep = 0.002f;
constexpr float kFine = 0.1f;
constexpr uint32_t kFineModifiers = 3;  // Shift, Ctrl

/// Clamps to 0 to 1; NaN becomes 0.
float Clamp01(float value) {
    return value > 0.0f ? std::min(value, 1.0f) : 0.0f;
}

}  // namespace

GLView_Knob::GLView_Knob(bool dragsAlongX, float lowValue, float highValue)
    : low(lowValue), high(highValue), horizontal(dragsAlongX) {
    activePort = -1;
    pointerShape = horizontal ? PointerShape::Sideways : PointerShape::UpDown;
}

void GLView_Knob::SetMapping(float (*toValue)(float), float (*toNormalised)(float)) {
    map = toValue;
    unmap = toNormalised;
    Redraw(Layer::Back);
}

void GLView_Knob::SetLimits(float lowest, float highest) {
    limitLow = lowest;
    limitHigh = highest;
}

void GLView_Knob::SetResetValue(float value) {
    resetValue = value;
    sendOnReset = true;
}

void GLView_Knob::SetUnit(const char* text) {
    unit = text != nullptr ? text : "";
}

void GLView_Knob::SetColor(const GLColor& newColor) {
    knobColor = newColor;
    Redraw(Layer::Back);
}

void GLView_Knob::SetSensitivity(float changePerPixel) {
    sensitivity = changePerPixel;
}

void GLView_Knob::ReanchorX() {
    dragStart.x = dragLast.x;
}

void GLView_Knob::ReanchorY() {
    dragStart.y = dragLast.y;
}

float GLView_Knob::MapValue(float n) {
    return map != nullptr ? map(n) : low + (high - low) * n;
}

float GLView_Knob::Normalise(float value) const {
    return Clamp01(unmap != nullptr ? unmap(value) : (value - low) / (high - low));
}

float GLView_Knob::NormalisedZero() const {
    return low < 0.0f ? Normalise(0.0f) : 0.0f;
}

bool GLView_Knob::IsFine() {
    return (GetModifiers() & kFineModifiers) != 0;
}

void GLView_Knob::ParameterChanged(uint32_t index) {
    GLView::ParameterChanged(index);
    if (index != port) return;
    const float value = GetParameter(index);
    if (!std::isfinite(value)) {
        return;  // the engine ignores it too and keeps the last valid value
    }
    normalised = Normalise(value);
    FormatValue(infoText, sizeof infoText, value, style, unit.c_str());
    Redraw(Layer::Main);
    if (GLView* page = Page()) {
        if (infoTitle[0] != '\0') {
            page->SetInfoTitle(infoTitle);  // the control's, even if another is hovered
        }
        page->SetInfoText(infoText);
    }
    if (horizontal) {
        ReanchorX();
    } else {
        ReanchorY();
    }
}

void GLView_Knob::MouseDown(GLPoint point, GLPoint pagePoint) {
    GLPoint local = point;
    ParentToLocal(local);
    if (GLView* child = ChildAt(local); child != nullptr) {
        child->MouseDown(local, pagePoint);
        return;
    }
    dragStart = dragLast = pagePoint;
    SetCaptured(true);
    gesture.Begin();
    if (IsResetPress() && sendOnReset) writer.Write(port, resetValue);
    activePort = static_cast<int32_t>(port);
}

void GLView_Knob::MouseDragTo(GLPoint pagePoint) {
    const float step = IsFine() ? sensitivity * kFine : sensitivity;
    const float moved = horizontal ? pagePoint.x - dragStart.x : dragStart.y - pagePoint.y;
    const float wanted = normalised + step * moved;
    const float reached = Clamp01(wanted);
    // Beyond an end the anchor stays, so dragging back takes effect once it is in range again.
    if (wanted == reached) dragLast = pagePoint;
    float value = MapValue(reached);
    if (limitLow != kNoLimit) value = std::min(std::max(value, limitLow), limitHigh);
    writer.Write(port, value);
    if (gesturePort != kNoGesturePort) writer.Write(gesturePort, 1.0f);
}

void GLView_Knob::LetGo() {
    gesture.End();
    activePort = -1;
}

void GLView_Knob::MouseUp(GLPoint /*point*/) {
    LetGo();
    SetCaptured(false);
}

void GLView_Knob::SetCaptured(bool on) {
    if (!on) LetGo();
    GLView::SetCaptured(on);
}

void GLView_Knob::Scroll(float delta) {
    const float step = IsFine() ? kFineWheelStep : kWheelStep;
    writer.Write(port, MapValue(Clamp01(normalised + delta * step)));
}

bool GLView_Knob::IsRound() const {
    return hh > 0.7f * hw;
}

ControlFace GLView_Knob::Face(const char* text) {
    return {hw,    hh,       normalised, NormalisedZero(), text, textSize * GetInterfaceScale(),
            color, knobColor};
}

void GLView_Knob::DrawBack() {
    const Look look(*this);
    Enter();
    const bool round = IsRound();
    (round ? DrawRoundKnobBack : DrawValueDisplayBack)(look, Face(infoText));
    {
        const MatrixScope matrix;
        glTranslatef(0.0f, -LabelBelow(), 0.0f);
        color.ApplyFaded(look.enabled ? 0.6f : 0.5f);
        DrawFittedText(look, label, kAlignCentre, labelSize * look.s, kLabelRoom * hw);
    }
    DrawChildrenBack();
}

void GLView_Knob::Draw() {
    const Look look(*this);
    Enter();
    {
        const MatrixScope matrix;
        (IsRound() ? DrawRoundKnob : DrawValueDisplay)(look, Face(infoText));
    }
    DrawChildren();
}

void GLView_Knob::DrawFront() {
    if (!IsRound()) {
        DrawFrontOutlined();
        return;
    }
    Enter();
    DrawRoundKnobState(Look(*this), Face(infoText));
    DrawChildrenFront();
}

float GLView_Knob::LabelBelow() {
    return IsRound() ? hw + 12.0f * GetInterfaceScale() : hh + 7.0f * GetInterfaceScale();
}

GLRect GLView_Knob::DrawnAreaWithLabel(float below) {
    const float reach = 0.5f * kLabelRoom * hw;
    const float bottom = y - below - labelSize * GetInterfaceScale();
    return GLView_PortControl::DrawnArea().JoinedWith({x - reach, bottom, x + reach, y});
}

GLRect GLView_Knob::DrawnArea() {
    return DrawnAreaWithLabel(LabelBelow());
}

}  // namespace brindle
