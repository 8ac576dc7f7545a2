// SPDX-License-Identifier: ISC
#include "gl/GLView_DecoratorBox.h"

#include <algorithm>

#include "gl/look.h"

namespace brindle {
namespace {

constexpr GLColor kBoxColor{0.145f, 0.148f, 0.152f};
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
    const auto layer = [&](float inset) {
        DrawFramedBox(look.resources, style, hw - inset, hh - inset, corner);
    };
    kEdgeColor.ApplyFaded(look.flat ? 0.6f : 0.45f);
    layer(0.0f);
    kBoxColor.Apply();
    layer(look.s);
    if (label[0] != '\0') {
        const MatrixScope matrix;
        glTranslatef(0.0f, hh - (labelSize + 2.0f) * look.s, 0.0f);
        color.ApplyFaded(0.8f);
        DrawFittedText(look, label, kAlignCentre, labelSize * look.s, 2.0f * (hw - corner));
    }
    DrawChildrenBack();
}

}  // namespace brindle
