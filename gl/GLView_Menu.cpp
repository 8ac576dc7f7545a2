// SPDX-License-Identifier: ISC
#include "gl/GLView_Menu.h"

#include <algorithm>

#include "gl/look.h"

namespace brindle {
namespace {

constexpr float kItemHeight = 18.0f;  // design points, like the margin
constexpr float kMargin = 5.0f;

/// Moves a span [centre + low, centre + high] into bounds. A span that is too long shows its start.
float KeepInside(float centre, float low, float high, float lowBound, float highBound) {
    return std::max(std::min(centre, highBound - high), lowBound - low);
}

}  // namespace

GLView_Menu::GLView_Menu() {
    SetName("Menu");
}

void GLView_Menu::AddItem(uint32_t port, float value, const char* text) {
    const float height = kItemHeight * GetInterfaceScale();
    auto& item = Add<GLView_Menu_Item>(port, value);
    item.SetSize(hw * 2.0f, height);
    item.SetLabel(text);
    item.SetPosition(0.0f, itemOffset);
    itemOffset += height;
    ports_.push_back(port);
}

void GLView_Menu::PlaceAt(GLPoint pagePoint) {
    const float s = GetInterfaceScale();
    const float margin = kMargin * s;
    const float below = -kItemHeight * 0.5f * s - margin;
    const float above = itemOffset + below + 2.0f * margin;
    SetPosition(KeepInside(pagePoint.x, -hw - margin, hw + margin, GetViewLeft(), GetViewRight()),
                KeepInside(pagePoint.y, below, above, GetViewBottom(), GetViewTop()));
    fade = 0.0f;
}

bool GLView_Menu::HasPort(uint32_t port) const {
    return std::ranges::find(ports_, port) != ports_.end();
}

GLView_Menu_Item* GLView_Menu::PresentItem() {
    for (GLView* child = firstChild; child != nullptr; child = child->nextSibling) {
        auto* item = dynamic_cast<GLView_Menu_Item*>(child);
        if (item != nullptr && item->IsPresent()) return item;
    }
    return nullptr;
}

bool GLView_Menu::HitTest(GLPoint point) {
    ParentToLocal(point);
    return ChildAt(point) != nullptr;
}

void GLView_Menu::Draw() {
    constexpr float kDarkest = 0.6f;
    constexpr float kFadeStep = 0.02f;
    fade = std::min(fade + kFadeStep, kDarkest);
    if (fade < kDarkest) Redraw(Layer::Front);
    const Look look(*this);
    DimPage(fade);
    Enter();
    {
        const MatrixScope matrix;
        const float half = 0.5f * itemOffset;
        glTranslatef(0.0f, half - 0.5f * kItemHeight * look.s, 0.0f);
        DrawPopup(look, hw + kMargin * look.s, half + kMargin * look.s);
    }
    DrawChildren();
}

void GLView_Menu::DrawFront() {
    Enter();
    DrawChildrenFront();
}

}  // namespace brindle
