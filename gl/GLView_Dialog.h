// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLAnimator.h"
#include "gl/GLView.h"

namespace brindle {

/// A box that a page shows above everything else; it slides into its place. What it contains are
/// its children.
class GLView_Dialog : public GLView {
  public:
    GLView_Dialog();

    /// Puts away what pops up inside, and has the box slide in anew when it is shown again.
    void Close() override;
    void DrawBack() override;
    /// Box and children with all their passes: a page draws an open dialog last, on its own.
    void Draw() override;
    void DrawFront() override;
    /// Nothing: the layers of a page do not show it, and what is in it is drawn above them.
    GLRect DrawnArea() override;
    void RedrawArea(const GLRect& area, Layer layer) override;

    GLAnimator_Translator slide;
};

}  // namespace brindle
