// SPDX-License-Identifier: ISC
#include "gl/GLView_MenuSelector.h"

namespace brindle {

GLView_MenuSelector::GLView_MenuSelector() {
    menu.visible = false;
}

void GLView_MenuSelector::AddItem(uint32_t port, float value, float width, const char* text) {
    page = Page();
    if (page == nullptr) {
        return;
    }
    menu.parent = page;
    menu.SetWidth(width);
    menu.SetPosition(LocalToPage({0.0f, 0.0f}));
    menu.AddItem(port, value, text);
}

void GLView_MenuSelector::MouseDown(GLPoint /*point*/, GLPoint /*pagePoint*/) {
    if (page == nullptr) {
        return;
    }
    SetCaptured(true);
    menu.PlaceAt(LocalToPage({0.0f, 0.0f}));
    page->OpenDialog(&menu);
}

void GLView_MenuSelector::MouseUp(GLPoint point) {
    SetCaptured(false);
    // A view that holds the pointer gets page coordinates.
    const GLPoint inParent = parent != nullptr ? parent->PageToLocal(point) : point;
    if (menu.visible && menu.HitTest(point) && !HitTest(inParent)) {
        menu.MouseUp(point);
    }
}

}  // namespace brindle
