// SPDX-License-Identifier: ISC
#pragma once

#include <array>

#include "gl/GLView_Caption.h"
#include "gl/GLView_Dialog.h"

namespace brindle {

/// A dialog with five lines of text above the darkened page. A click on it closes it.
class GLView_Message : public GLView_Dialog {
  public:
    static constexpr size_t kLineCount = 5;

    /// `pageScale` is the interface scale of the page that shows it.
    explicit GLView_Message(float pageScale);

    /// Null is an empty line. A line wider than the box is shrunk.
    void SetLines(const std::array<const char*, kLineCount>& texts);

    void MouseDown(GLPoint point, GLPoint pagePoint) override;
    void Draw() override;

  private:
    std::array<GLView_Caption*, kLineCount> lines_{};  ///< children, observed
};

}  // namespace brindle
