// SPDX-License-Identifier: ISC
#include "gl/GLView_PopButton.h"

namespace brindle {

void GLView_PopButton::MouseDown(GLPoint /*point*/, GLPoint /*pagePoint*/) {
    SetCaptured(true);
}

void GLView_PopButton::MouseUp(GLPoint point) {
    if (GetCapturedView() != this) {
        return;
    }
    SetCaptured(false);
    // A view that holds the pointer gets page coordinates.
    if (!HitTest(parent->PageToLocal(point))) {
        return;
    }
    if (dialog != nullptr) {
        OpenDialog(dialog);
    } else {
        CloseDialog(false);
    }
}

}  // namespace brindle
