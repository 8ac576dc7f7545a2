// SPDX-License-Identifier: ISC
#include "gl/GLView_PopButton.h"

#include "gl/look.h"

namespace brindle {

void GLView_PopButton::MouseDown(GLPoint /*point*/, GLPoint /*pagePoint*/) {
    SetCaptured(true);
}

void GLView_PopButton::MouseUp(GLPoint point) {
    if (GetCapturedView() != this) return;
    SetCaptured(false);
    // A view that has captured the pointer gets page coordinates.
    if (!HitTest(parent->PageToLocal(point))) return;
    if (dialog != nullptr) {
        OpenDialog(dialog);
    } else {
        CloseDialog(false);
    }
}

void GLView_PopButton::DrawBack() {
    const Look look(*this);
    Enter();
    DrawKey(look, hw, hh);
    DrawChildrenBack();
}

void GLView_PopButton::Draw() {
    const Look look(*this);
    Enter();
    DrawKeyText(look, label, labelSize * look.s, 2.0f * (hw - 3.0f * look.s), color);
    DrawChildren();
}

}  // namespace brindle
