// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>

#include "contract/ports.h"
#include "gl/GLView_MenuSelector.h"

namespace brindle {

/// Shows the short label of a port's type, and opens a menu to choose another type. Its user adds
/// the menu's entries.
class GLView_TypeSelector : public GLView_MenuSelector {
  public:
    void ParameterChanged(uint32_t index) override;
    void Draw() override;

    /// The short label of the port's type.
    const char* ShortLabel();

    const int strip;
    const uint32_t port;

  protected:
    explicit GLView_TypeSelector(int stripIndex)
        : strip(stripIndex), port(strip_port(stripIndex) + kType) {}
};

}  // namespace brindle
