// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <vector>

#include "gl/GLView_Dialog.h"
#include "gl/GLView_Menu_Item.h"

namespace brindle {

/// A list of entries that pops up above the darkened page. Its position is the first entry's
/// centre; the other entries stack upwards in the order in which they were added.
class GLView_Menu : public GLView_Dialog {
  public:
    GLView_Menu();

    void AddItem(uint32_t port, float value, const char* text);
    /// Places the menu as near to a page point as full visibility allows, and restarts the fade.
    /// Call it before the page opens the menu.
    void PlaceAt(GLPoint pagePoint);
    /// Whether an entry writes this port.
    bool HasPort(uint32_t port) const;
    /// The entry whose value its port has, or null.
    GLView_Menu_Item* PresentItem();

    bool HitTest(GLPoint point) override;
    void Draw() override;
    void DrawFront() override;

    float fade = 0.0f;        ///< how much the page is darkened, 0 to 0.6
    float itemOffset = 0.0f;  ///< y of the next entry

  private:
    std::vector<uint32_t> ports_;  ///< of the entries
};

}  // namespace brindle
