// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>

#include "gl/GLView_Control.h"
#include "gl/GLView_Menu.h"

namespace brindle {

/// A button that shows the present entry of a menu and opens it. Attach it to a page before its
/// entries are added.
class GLView_MenuSelector : public GLView_Control {
  public:
    GLView_MenuSelector();
    /// Puts its menu away.
    ~GLView_MenuSelector() override;

    /// Appends an entry; `width` is the whole menu's. Ignored while there is no page.
    virtual void AddItem(uint32_t port, float value, float width, const char* text);

    /// Another entry may be the present one.
    void ParameterChanged(uint32_t index) override;
    /// The key's face.
    void DrawBack() override;
    void Draw() override;
    /// A text for what is chosen, `size` page units to a text unit where it fits, and the key's
    /// bevelled edges with the menu's mark: what `Draw` draws around the view's centre, for
    /// versions that show another text than the present entry's.
    void DrawEntry(const char* text, float size);
    void DrawFrame();

    /// Opens the menu. The selector keeps the pointer: the release of the press that opened the
    /// menu chooses an entry only where the pointer was dragged onto one.
    void MouseDown(GLPoint point, GLPoint pagePoint) override;
    void MouseUp(GLPoint point) override;

    GLView_Menu menu;
    GLView* page = nullptr;  ///< observed: where the menu opens
};

}  // namespace brindle
