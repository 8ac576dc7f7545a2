// SPDX-License-Identifier: ISC
#include "gl/GLView_DecoratorBox.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "gl/look.h"

namespace brindle {
namespace {

constexpr GLColor kBoxColor{0.068f, 0.07f, 0.074f};
constexpr GLColor kEdgeColor = kGrey60;

}  // namespace

GLView_DecoratorBox::GLView_DecoratorBox() {
    labelSize = 10.0f;
}

bool GLView_DecoratorBox::HitTest(GLPoint point) {
    ParentToLocal(point);
    return ChildAt(point) != nullptr;
}

void GLView_DecoratorBox::DrawBack() {
    const Look look(*this);
    Enter();
    const float corner = std::min(hh, (look.boxy ? 1.0f : 12.0f) * look.s);
    // The side that is open has no edge.
    constexpr std::array<GLPoint, 5> kOpenTowards = {
        {{0.0f, 0.0f}, {0.0f, 1.0f}, {0.0f, -1.0f}, {-1.0f, 0.0f}, {1.0f, 0.0f}}};
    const GLPoint open = kOpenTowards[style >= 1 && style <= 4 ? static_cast<size_t>(style) : 0];
    const auto layer = [&](float inset, float rim) {
        const float half = 0.5f * inset;
        const MatrixScope matrix;
        glTranslatef(half * open.x, half * open.y, 0.0f);
        DrawFramedBox(look.resources, style, hw - inset + half * std::abs(open.x),
                      hh - inset + half * std::abs(open.y), corner, rim);
    };
    kEdgeColor.ApplyFaded(look.flat ? 0.6f : 0.45f);
    layer(0.0f, 2.0f * look.s);
    kBoxColor.Apply();
    layer(look.s, kNoRim);
    if (label[0] != '\0') {
        const MatrixScope matrix;
        glTranslatef(0.0f, hh - (labelSize + 2.0f) * look.s, 0.0f);
        color.ApplyFaded(0.8f);
        DrawFittedText(look, label, kAlignCentre, labelSize * look.s, 2.0f * (hw - corner));
    }
    DrawChildrenBack();
}

}  // namespace brindle
