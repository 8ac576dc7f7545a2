// SPDX-License-Identifier: ISC
#include "editor/GLView_HelpLine.h"

#include "gl/drawing.h"

namespace brindle {

void GLView_HelpLine::DrawFront() {
    const GLView* page = Page();
    const float size = labelSize * GetInterfaceScale();
    Enter();
    glTranslatef(-hw, 0.0f, 0.0f);
    glScalef(size, size, 1.0f);
    color.ApplyFaded(0.9f);
    DrawText(GetResources(), page->infoTitle, kAlignLeft);
    glTranslatef(TextWidth(page->infoTitle) + 1.0f, 0.0f, 0.0f);
    color.ApplyFaded(0.75f);
    DrawText(GetResources(), page->infoText, kAlignLeft);
}

}  // namespace brindle
