// SPDX-License-Identifier: ISC
#include "gl/GLView_MenuSelector.h"

#include <cmath>

#include "gl/look.h"

namespace brindle {
namespace {

constexpr float kArrowRoom = 9.0f;  // design points
/// A press is a drag onto the menu once it has moved this far or is this long; before, it is a
/// click.
constexpr float kDragPoints = 10.0f;
constexpr uint32_t kDragMs = 300;

void DrawEdge(float y, float halfLength, float halfThickness) {
    const MatrixScope matrix;
    glTranslatef(0.0f, y, 0.0f);
    DrawRect(halfLength, halfThickness);
}

}  // namespace

GLView_MenuSelector::GLView_MenuSelector() {
    menu.visible = false;
    pointerShape = PointerShape::Hand;
}

GLView_MenuSelector::~GLView_MenuSelector() {
    if (page != nullptr && menu.visible) page->CloseDialog(false);
}

void GLView_MenuSelector::AddItem(uint32_t port, float value, float width, const char* text) {
    page = Page();
    if (page == nullptr) return;
    menu.parent = page;
    menu.SetWidth(width);
    menu.SetPosition(LocalToPage({0.0f, 0.0f}));
    menu.AddItem(port, value, text);
}

void GLView_MenuSelector::ParameterChanged(uint32_t index) {
    if (menu.HasPort(index)) Redraw(Layer::Main);
    GLView::ParameterChanged(index);
}

void GLView_MenuSelector::MouseDown(GLPoint point, GLPoint /*pagePoint*/) {
    if (page == nullptr) return;
    SetCaptured(true);
    pressedAt_ = parent->LocalToPage(point);
    pressTime_ = GetEventTime();
    menu.PlaceAt(LocalToPage({0.0f, 0.0f}));
    page->OpenDialog(&menu);
}

void GLView_MenuSelector::MouseUp(GLPoint point) {
    SetCaptured(false);
    // A view that has captured the pointer gets page coordinates.
    const float moved = std::hypot(point.x - pressedAt_.x, point.y - pressedAt_.y);
    const bool isDrag =
        moved >= kDragPoints * GetInterfaceScale() || GetEventTime() - pressTime_ >= kDragMs;
    const GLPoint inParent = parent != nullptr ? parent->PageToLocal(point) : point;
    if (isDrag && menu.visible && menu.HitTest(point) && !HitTest(inParent)) menu.MouseUp(point);
}

void GLView_MenuSelector::DrawBack() {
    Enter();
    DrawKey(Look(*this), hw, hh);
    DrawChildrenBack();
}

void GLView_MenuSelector::Draw() {
    Enter();
    if (const GLView_Menu_Item* present = menu.PresentItem()) {
        DrawEntry(present->label, labelSize * GetInterfaceScale());
    }
    DrawFrame();
    DrawChildren();
}

void GLView_MenuSelector::DrawEntry(const char* text, float size) {
    const Look look(*this);
    const MatrixScope matrix;
    glTranslatef(-0.5f * kArrowRoom * look.s, 0.0f, 0.0f);
    DrawKeyText(look, text, size, 2.0f * hw - (kArrowRoom + 3.0f) * look.s, color);
}

void GLView_MenuSelector::DrawFrame() {
    const Look look(*this);
    const float edge = 0.5f * look.s;
    kWhite.ApplyFaded(look.enabled ? 0.4f : 0.1f);
    DrawEdge(hh - edge, hw - look.Corner(hh), edge);
    kBlack.ApplyFaded(0.3f);
    DrawEdge(edge - hh, hw - look.Corner(hh), edge);
    const MatrixScope matrix;
    glTranslatef(hw - 0.5f * (kArrowRoom + 1.0f) * look.s, 0.0f, 0.0f);
    color.ApplyFaded(look.TextAlpha());
    DrawFittedText(look, kTriangleGlyph, kAlignCentre, 5.0f * look.s, hw);
}

}  // namespace brindle
