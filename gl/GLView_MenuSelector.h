// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>

#include "gl/GLView_Control.h"
#include "gl/GLView_Menu.h"

namespace brindle {

/// A button that shows the current entry of a menu, and opens the menu. Attach it to a page before
/// adding entries.
class GLView_MenuSelector : public GLView_Control {
  public:
    GLView_MenuSelector();
    /// Closes its menu.
    ~GLView_MenuSelector() override;

    /// Appends an entry; `width` is the width of the whole menu. Ignored without a page.
    virtual void AddItem(uint32_t port, float value, float width, const char* text);

    /// Redraws if the current entry may have changed.
    void ParameterChanged(uint32_t index) override;
    void DrawBack() override;
    void Draw() override;
    /// The two parts of `Draw`, for subclasses that show another text. `DrawEntry` draws a text,
    /// `size` page units per text unit, shrunk to fit; `DrawFrame` draws the button's bevelled
    /// edges and the menu's triangle. Both draw around the view's centre.
    void DrawEntry(const char* text, float size);
    void DrawFrame();

    /// Opens the menu. The selector keeps the pointer: releasing the press that opened the menu
    /// chooses an entry only if the pointer was dragged onto one, by 10 design points or after
    /// 300 ms.
    void MouseDown(GLPoint point, GLPoint pagePoint) override;
    void MouseUp(GLPoint point) override;

    GLView_Menu menu;
    GLView* page = nullptr;  ///< observed: where the menu opens

  private:
    GLPoint pressedAt_{};  ///< in page coordinates
    uint32_t pressTime_ = 0;
};

}  // namespace brindle
