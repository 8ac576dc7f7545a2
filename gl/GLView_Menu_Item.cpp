// SPDX-License-Identifier: ISC
#include "gl/GLView_Menu_Item.h"

#include <cmath>

#include "gl/look.h"

namespace brindle {

GLView_Menu_Item::GLView_Menu_Item(uint32_t index, float entryValue)
    : port(index), value(entryValue) {
    pointerShape = PointerShape::Hand;
}

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

void GLView_Menu_Item::Draw() {
    constexpr float kTextMargin = 17.0f;  // design points, room for the tick
    const Look look(*this);
    const float s = look.s;
    Enter();
    if (look.hovered) {
        look.contrast.Apply();
        DrawRoundRect(look.resources, hw, hh - 0.5f * s, look.Corner(hh));
    }
    const bool present = IsPresent();
    const GLColor& ink = look.hovered ? InkOn(look.contrast) : color;
    ink.ApplyFaded(present || look.hovered ? 1.0f : 0.75f);
    glTranslatef(-hw, 0.0f, 0.0f);
    if (present) {
        const MatrixScope matrix;
        glTranslatef(9.0f * s, 0.0f, 0.0f);
        DrawFittedText(look, kTickGlyph, kAlignCentre, labelSize * s, hw);
    }
    glTranslatef(kTextMargin * s, 0.0f, 0.0f);
    DrawFittedText(look, label, kAlignLeft, labelSize * s, 2.0f * hw - (kTextMargin + 3.0f) * s);
}

}  // namespace brindle
