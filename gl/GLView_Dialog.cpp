// SPDX-License-Identifier: ISC
#include "gl/GLView_Dialog.h"

#include "gl/look.h"

namespace brindle {

GLView_Dialog::GLView_Dialog() : slide({{0.2f, {0.0f, -0.06f}, {0.0f, 0.0f}}}) {}

void GLView_Dialog::Close() {
    slide.Restart();
    GLView::Close();
}

void GLView_Dialog::DimPage(float share) {
    const MatrixScope matrix;
    const float left = GetViewLeft();
    const float right = GetViewRight();
    const float bottom = GetViewBottom();
    const float top = GetViewTop();
    glTranslatef((left + right) * 0.5f, (bottom + top) * 0.5f, 0.0f);
    kBlack.ApplyFaded(share);
    DrawRect((right - left) * 0.5f, (top - bottom) * 0.5f);
}

void GLView_Dialog::DrawBack() {}

void GLView_Dialog::Draw() {
    const Look look(*this);
    Enter();
    if (slide.Apply() >= 0.0f) Redraw(Layer::Front);
    DrawPopup(look, hw, hh);
    DrawChildrenBack();
    DrawChildren();
}

void GLView_Dialog::DrawFront() {
    Enter();
    slide.Apply();
    DrawChildrenFront();
}

GLRect GLView_Dialog::DrawnArea() {
    return {};
}

void GLView_Dialog::RedrawArea(const GLRect& area, Layer /*layer*/) {
    GLView::RedrawArea(area, Layer::Front);
}

}  // namespace brindle
