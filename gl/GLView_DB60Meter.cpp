// SPDX-License-Identifier: ISC
#include "gl/GLView_DB60Meter.h"

#include <algorithm>
#include <cmath>

#include "gl/drawing.h"
#include "gl/settings.h"

namespace brindle {

void GLView_DB60Meter::SetLevel(float newLevel) {
    const float before = GetFill();
    level = newLevel;
    if (GetFill() != before) Redraw(Layer::Front);
}

float GLView_DB60Meter::GetFill() const {
    // NaN and negative levels are not greater than 0.
    const float amplitude = level > 0.0f ? level : 0.0f;
    return std::clamp(std::log10(amplitude + 1e-10f) * 0.333332f + 1.0f, 0.0f, 1.0f);
}

void GLView_DB60Meter::DrawBack() {
    constexpr float kMarksDb[] = {0, -3, -6, -12, -20, -30, -40, -50, -60};
    const GLResources* resources = GetResources();
    const float s = GetInterfaceScale();
    glTranslatef(x, y, 0.0f);
    DrawWell(resources, hw, hh + 6.0f * s, 4.0f * s, lightColor);
    for (const float mark_db : kMarksDb) {
        const MatrixScope matrix;
        glTranslatef(0.0f, 2.0f * hh * ((mark_db + 60.0f) / 60.0f) - hh, 0.0f);
        shadeColor.ApplyFaded(0.3f);
        DrawRect(5.0f * s, s);
    }
}

GLRect GLView_DB60Meter::DrawnArea() {
    const float s = GetInterfaceScale();
    return {x - hw - s, y - hh - 7.0f * s, x + hw + s, y + hh + 7.0f * s};
}

void GLView_DB60Meter::DrawFront() {
    const float s = GetInterfaceScale();
    glTranslatef(x, y, 0.0f);
    {
        const MatrixScope matrix;
        const float half = hh * GetFill();
        glTranslatef(0.0f, half - hh, 0.0f);
        glColor4f(0.8f, 0.9f, 0.0f, 0.6f);
        DrawRect(5.0f * s, half);
    }
    DrawShadow(GetResources(), hw, hh + 6.0f * s, 4.0f * s, true);
}

}  // namespace brindle
