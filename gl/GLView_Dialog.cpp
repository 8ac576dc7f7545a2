// SPDX-License-Identifier: ISC
#include "gl/GLView_Dialog.h"

namespace brindle {

GLView_Dialog::GLView_Dialog() : slide({{0.2f, {0.0f, -0.06f}, {0.0f, 0.0f}}}) {}

void GLView_Dialog::Close() {
    slide.Restart();
    GLView::Close();
}

}  // namespace brindle
