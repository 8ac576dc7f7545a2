// SPDX-License-Identifier: ISC
#pragma once

#include "gl/GLAnimator.h"
#include "gl/GLView.h"

namespace brindle {

/// A box that a page shows above all other views. It slides into place. Its content is its
/// children.
class GLView_Dialog : public GLView {
  public:
    GLView_Dialog();

    /// Closes popups inside, and restarts the slide for the next time the box is shown.
    void Close() override;
    void DrawBack() override;
    /// Box and children in all their passes: a page draws an open dialog last, separately.
    void Draw() override;
    void DrawFront() override;
    /// Empty: dialogs are not part of the page's layers; they are drawn above them.
    GLRect DrawnArea() override;
    void RedrawArea(const GLRect& area, Layer layer) override;

    GLAnimator_Translator slide;

  protected:
    /// Darkens the page behind the box by a share from 0 to 1.
    void DimPage(float share);
};

}  // namespace brindle
