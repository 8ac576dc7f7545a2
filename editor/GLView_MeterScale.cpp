// SPDX-License-Identifier: ISC
#include "editor/GLView_MeterScale.h"

#include <array>
#include <cstdlib>

#include "gl/look.h"

namespace brindle {

void GLView_MeterName::DrawBack() {
    const float s = GetInterfaceScale();
    Enter();
    color.ApplyDimmed(0.8f);  // a plate that makes black text readable
    DrawRoundRect(GetResources(), hw, hh, (IsBoxy() ? 1.0f : 4.0f) * s);
    kBlack.ApplyFaded(0.8f);
    glScalef(labelSize * s, labelSize * s, 1.0f);
    DrawText(GetResources(), label, kAlignCentre);
}

void GLView_MeterScale::DrawBack() {
    // The ports report power, but the meter expects an amplitude: a level of x dB is at the meter's
    // mark for 2x dB.
    constexpr std::array<const char*, 6> kLevelsDb = {"0", "3", "6", "10", "20", "30"};
    constexpr float kLowestDb = 30.0f;
    const float s = GetInterfaceScale();
    const float size = labelSize * s;
    const float height = 2.0f * hh / s;  // in points, so that the levels fall on round numbers
    Enter();
    glTranslatef(alignment == kAlignLeft ? -hw : hw, 0.0f, 0.0f);
    color.ApplyFaded(0.75f);
    for (const char* level : kLevelsDb) {
        const float share = 0.5f - std::strtof(level, nullptr) / kLowestDb;
        const MatrixScope matrix;
        glTranslatef(0.0f, share * height * s, 0.0f);
        glScalef(size, size, 1.0f);
        DrawText(GetResources(), level, alignment);
    }
}

GLRect GLView_MeterScale::DrawnArea() {
    const float size = labelSize * GetInterfaceScale();
    return GLView::DrawnArea().JoinedWith({x - hw, y - hh - size, x + hw, y + hh + size});
}

}  // namespace brindle
