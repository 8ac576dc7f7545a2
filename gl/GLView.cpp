// SPDX-License-Identifier: ISC
#include "gl/GLView.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "gl/drawing.h"
#include "gl/gl.h"
#include "gl/info_format.h"

namespace brindle {
namespace {

/// Calls an operation on each child in list order. A child may remove itself meanwhile.
template <typename... Parameters, typename... Arguments>
void ForEachChild(const GLView& view, void (GLView::*operation)(Parameters...),
                  Arguments... arguments) {
    for (GLView* child = view.firstChild; child != nullptr;) {
        GLView* next = child->nextSibling;
        (child->*operation)(arguments...);
        child = next;
    }
}

/// Runs one drawing pass over a copy of the child list, so children may be removed while drawing.
void DrawEachChild(GLView& view, void (GLView::*pass)()) {
    std::vector<GLView*> children;
    for (GLView* child = view.firstChild; child != nullptr; child = child->nextSibling) {
        if (view.IsDrawn(child->DrawnArea())) children.push_back(child);
    }
    const auto top = std::ranges::find(children, view.TopChild());
    if (top != children.end()) std::rotate(top, top + 1, children.end());
    for (GLView* child : children) {
        const MatrixScope matrix;
        (child->*pass)();
    }
}

/// Transfers a role: the current holder gives it up, then the page is told the new holder.
void ChangeRole(GLView* view, bool on, GLView* (GLView::*holderOf)(), void (GLView::*change)(bool),
                void (GLView::*give)(GLView*)) {
    GLView* holder = (view->*holderOf)();
    if (holder != nullptr && holder != view) (holder->*change)(false);
    (view->*give)(on ? view : nullptr);
}

}  // namespace

GLView::~GLView() {
    GLView::DeleteChildren();
    std::free(name);
}

void GLView::SetPosition(float newX, float newY) {
    ChangeLook([&] {
        x = newX;
        y = newY;
    });
}

void GLView::SetPosition(GLPoint position) {
    SetPosition(position.x, position.y);
}

void GLView::SetScale(float newScale) {
    ChangeLook([&] { scale = newScale; });
}

void GLView::SetWidth(float width) {
    ChangeLook([&] { hw = width * 0.5f; });
}

void GLView::SetHeight(float height) {
    ChangeLook([&] { hh = height * 0.5f; });
}

void GLView::SetSize(float width, float height) {
    SetWidth(width);
    SetHeight(height);
}

void GLView::SetSize(GLPoint size) {
    SetSize(size.x, size.y);
}

GLPoint GLView::GetPosition() {
    return {x, y};
}

GLView* GLView::Page() {
    if (parent == nullptr) {
        std::puts("Page() called with no parent.  crash.");
        return nullptr;
    }
    return parent->Page();
}

void GLView::AddChild(GLView* child) {
    if (child == nullptr || child == this) return;
    GLView** link = &firstChild;
    while (*link != nullptr) {
        if (*link == child) return;
        link = &(*link)->nextSibling;
    }
    *link = child;
    child->parent = this;
}

void GLView::RemoveChild(GLView* child) {
    for (GLView** link = &firstChild; *link != nullptr; link = &(*link)->nextSibling) {
        if (*link == child) {
            *link = child->nextSibling;
            // With its old link, a child that is added again would bring its former siblings along.
            child->nextSibling = nullptr;
            return;
        }
    }
}

void GLView::DeleteChildren() {
    while (firstChild != nullptr) {
        GLView* child = firstChild;
        firstChild = child->nextSibling;
        delete child;
    }
}

int32_t GLView::CountChildren() {
    int32_t count = 0;
    for (const GLView* child = firstChild; child != nullptr; child = child->nextSibling) ++count;
    return count;
}

void GLView::ParameterChanged(uint32_t index) {
    ForEachChild(*this, &GLView::ParameterChanged, index);
}

void GLView::Close() {
    ForEachChild(*this, &GLView::Close);
}

void GLView::DrawBack() {
    Enter();
    DrawChildrenBack();
}

void GLView::Draw() {
    Enter();
    DrawChildren();
}

void GLView::DrawFront() {
    Enter();
    DrawChildrenFront();
}

void GLView::DrawChildrenBack() {
    DrawEachChild(*this, &GLView::DrawBack);
}

void GLView::DrawChildren() {
    DrawEachChild(*this, &GLView::Draw);
}

void GLView::DrawChildrenFront() {
    DrawEachChild(*this, &GLView::DrawFront);
}

GLPoint GLView::LocalToPage(GLPoint point) {
    LocalToParent(point);
    return parent != nullptr ? parent->LocalToPage(point) : point;
}

GLPoint GLView::PageToLocal(GLPoint point) {
    if (parent != nullptr) point = parent->PageToLocal(point);
    ParentToLocal(point);
    return point;
}

bool GLView::HitTest(GLPoint point) {
    ParentToLocal(point);
    if (ChildAt(point) != nullptr) return true;
    return visible && point.x * point.x < hw * hw && point.y * point.y < hh * hh;
}

void GLView::ShowInfoAt(GLPoint point) {
    ParentToLocal(point);
    if (GLView* hit = ChildAt(point)) {
        hit->ShowInfoAt(point);
        return;
    }
    SetSelected(true);
    if (GLView* page = Page()) {
        page->SetInfoTitle(infoTitle);
        page->SetInfoText(infoText);
    }
}

void GLView::MouseDown(GLPoint point, GLPoint pagePoint) {
    ParentToLocal(point);
    if (GLView* hit = ChildAt(point)) hit->MouseDown(point, pagePoint);
}

void GLView::MouseUp(GLPoint point) {
    ParentToLocal(point);
    if (GLView* hit = ChildAt(point)) {
        hit->MouseUp(point);
    } else {
        SetCaptured(false);
    }
}

void GLView::MouseDragTo(GLPoint /*pagePoint*/) {}

void GLView::Scroll(float /*delta*/) {}

void GLView::DoubleClick(GLPoint /*point*/) {}

void GLView::SetName(const char* newName) {
    char* copy = newName != nullptr ? strdup(newName) : nullptr;
    std::free(name);
    name = copy;
}

void GLView::SetInfoTitle(const char* text) {
    FormatInfo(infoTitle, text);
}

void GLView::SetInfoText(const char* text) {
    FormatInfo(infoText, text);
}

void GLView::SetLabel(const char* text) {
    const size_t length = text != nullptr ? strnlen(text, sizeof label - 1) : 0;
    // `text` may be this view's own label.
    std::memmove(label, text != nullptr ? text : "", length);
    label[length] = '\0';
    Redraw(Layer::Back);
}

void GLView::ReleaseAll() {
    if (GLView* view = GetSelectedView()) view->SetSelected(false);
    if (GLView* view = GetHoverView()) view->SetHover(false);
    if (GLView* view = GetCapturedView()) view->SetCaptured(false);
}

void GLView::SetHover(bool on) {
    ChangeRole(this, on, &GLView::GetHoverView, &GLView::SetHover, &GLView::SetHoverView);
}

void GLView::SetCaptured(bool on) {
    ChangeRole(this, on, &GLView::GetCapturedView, &GLView::SetCaptured, &GLView::SetCapturedView);
    Redraw(Layer::Back);
}

void GLView::SetSelected(bool on) {
    ChangeRole(this, on, &GLView::GetSelectedView, &GLView::SetSelected, &GLView::SetSelectedView);
}

void GLView::SetVisible(bool on) {
    if (visible != on) Redraw(Layer::Back);
    visible = on;
    if (!on && GetSelectedView() == this) SetSelected(false);
    ForEachChild(*this, &GLView::SetVisible, on);
}

void GLView::SetTextSize(float size) {
    ChangeLook([&] { textSize = size; });
}

void GLView::SetLabelSize(float size) {
    ChangeLook([&] { labelSize = size; });
}

void GLView::SetColor(const GLColor& newColor) {
    ChangeLook([&] { color = newColor; });
}

void GLView::ParentToLocal(GLPoint& point) {
    point.x = (point.x - x) / scale;
    point.y = (point.y - y) / scale;
}

void GLView::LocalToParent(GLPoint& point) {
    point.x = point.x * scale + x;
    point.y = point.y * scale + y;
}

bool GLView::IsOnPage() const {
    const GLView* top = this;
    while (top->parent != nullptr) top = top->parent;
    return top->IsPage();
}

void GLView::Redraw(Layer layer) {
    if (parent != nullptr && IsOnPage()) parent->RedrawArea(DrawnArea(), layer);
}

void GLView::RedrawArea(const GLRect& area, Layer layer) {
    if (parent != nullptr) parent->RedrawArea(ToParent(area), layer);
}

bool GLView::IsDrawn(const GLRect& area) {
    return parent == nullptr || parent->IsDrawn(ToParent(area));
}

GLRect GLView::DrawnArea() {
    const float edge = 2.0f * GetInterfaceScale();
    GLRect area = {x - hw - edge, y - hh - edge, x + hw + edge, y + hh + edge};
    for (GLView* child = firstChild; child != nullptr; child = child->nextSibling) {
        area = area.JoinedWith(ToParent(child->DrawnArea()));
    }
    return area;
}

GLView* GLView::ChildAt(GLPoint local) const {
    GLView* child = firstChild;
    while (child != nullptr && !child->HitTest(local)) child = child->nextSibling;
    return child;
}

void GLView::Enter() const {
    glTranslatef(x, y, 0.0f);
    glScalef(scale, scale, 1.0f);
}

void GLView::SetEnabled(bool on) {
    if (enabled == on) return;
    enabled = on;
    Redraw(Layer::Back);
}

GLRect GLView::ToParent(const GLRect& area) const {
    return {area.left * scale + x, area.bottom * scale + y, area.right * scale + x,
            area.top * scale + y};
}

}  // namespace brindle
