// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>

#include "gl/GLView_Dialog.h"
#include "gl/GLView_Menu_Item.h"

namespace brindle {

/// A list of entries that pops up above the page, which it darkens. Its position is the first
/// entry's centre, and the others stand above it in the order in which they were added.
class GLView_Menu : public GLView_Dialog {
  public:
    GLView_Menu();

    void AddItem(uint32_t port, float value, const char* text);
    /// Lets the menu begin bright, as near to a point of the page as it is fully visible. Call it
    /// before the page opens it.
    void PlaceAt(GLPoint pagePoint);
    /// Whether an entry writes this port.
    bool HasPort(uint32_t port) const;
    /// The entry whose value the port has, null for none.
    GLView_Menu_Item* PresentItem();

    bool HitTest(GLPoint point) override;
    void Draw() override;
    void DrawFront() override;

    float fade = 0.0f;        ///< how dark the page behind is, up to 0.6
    float itemOffset = 0.0f;  ///< y of the next entry
};

}  // namespace brindle
