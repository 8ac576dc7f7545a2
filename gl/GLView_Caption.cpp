// SPDX-License-Identifier: ISC
#include "gl/GLView_Caption.h"

#include "gl/look.h"

namespace brindle {

bool GLView_Caption::HitTest(GLPoint /*point*/) {
    return false;
}

void GLView_Caption::Draw() {
    const Look look(*this);
    Enter();
    {
        const MatrixScope matrix;
        if (alignment == kAlignLeft || alignment == kAlignRight) {
            glTranslatef(alignment == kAlignLeft ? -hw : hw, 0.0f, 0.0f);
        }
        (inContrast ? look.contrast : color).Apply();
        DrawFittedText(look, label, alignment, labelSize * look.s, 2.0f * hw);
    }
    DrawChildren();
}

}  // namespace brindle
