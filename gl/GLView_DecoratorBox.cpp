// SPDX-License-Identifier: ISC
#include "gl/GLView_DecoratorBox.h"

namespace brindle {

GLView_DecoratorBox::GLView_DecoratorBox() {
    labelSize = 10.0f;
}

bool GLView_DecoratorBox::HitTest(GLPoint point) {
    ParentToLocal(point);
    for (GLView* child = firstChild; child != nullptr; child = child->nextSibling) {
        if (child->HitTest(point)) {
            return true;
        }
    }
    return false;
}

}  // namespace brindle
