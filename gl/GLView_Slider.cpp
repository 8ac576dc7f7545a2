// SPDX-License-Identifier: ISC
#include "gl/GLView_Slider.h"

#include <algorithm>

#include "gl/value_display.h"

namespace brindle {
namespace {

constexpr float kCapLength = 5.0f;  // design points, half extents
constexpr float kCapWidth = 9.0f;

/// Rotates horizontal drawing to bottom-to-top for vertical sliders.
void TurnToAxis(bool horizontal) {
    if (!horizontal) glRotatef(90.0f, 0.0f, 0.0f, 1.0f);
}

}  // namespace

bool GLView_Slider::HitTest(GLPoint point) {
    ParentToLocal(point);
    return visible && point.x * point.x < hw * hw && point.y * point.y < hh * hh;
}

void GLView_Slider::DrawBack() {
    Enter();
    {
        const MatrixScope matrix;
        DrawTrack();
    }
    DrawChildrenBack();
}

void GLView_Slider::Draw() {
    Enter();
    {
        const MatrixScope matrix;
        DrawValue();
    }
    DrawChildren();
}

float GLView_Slider::LabelBelow() {
    const float s = GetInterfaceScale();
    return (horizontal ? std::min(hh, kCapWidth * s) : hh) + 7.0f * s;
}

GLRect GLView_Slider::DrawnArea() {
    return DrawnAreaWithLabel(LabelBelow());
}

float GLView_Slider::GetTravel() {
    return (horizontal ? hw : hh) - (kCapLength + 2.0f) * GetInterfaceScale();
}

void GLView_Slider::DrawTrack() {
    const Look look(*this);
    {
        const MatrixScope matrix;
        TurnToAxis(horizontal);
        DrawDisplay(look, GetTravel() + 3.0f * look.s, 3.0f * look.s);
        DrawGroove(look, color, GetTravel(), NormalisedZero());
    }
    glTranslatef(0.0f, -LabelBelow(), 0.0f);
    color.ApplyFaded(0.6f);
    DrawFittedText(look, label, kAlignCentre, labelSize * look.s, kLabelRoom * hw);
}

void GLView_Slider::DrawValue() {
    Look look(*this);
    TurnToAxis(horizontal);
    DrawFill(look, knobColor, GetTravel(), {normalised, NormalisedZero()});
    glTranslatef(GetTravel() * (2.0f * normalised - 1.0f), 0.0f, 0.0f);
    const float across = std::min(horizontal ? hh : hw, kCapWidth * look.s);
    const GLColor accent = look.Accent(knobColor);
    look.captured = false;  // a cap is moved, never pressed
    DrawKey(look, kCapLength * look.s, across);
    Lightened(accent, look.enabled ? 0.4f : 0.0f).Apply();
    DrawRect(0.75f * look.s, across - 2.0f * look.s);
}

}  // namespace brindle
