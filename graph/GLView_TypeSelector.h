// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>

#include "contract/ports.h"
#include "gl/GLView_MenuSelector.h"

namespace brindle {

/// Shows the short label of the type that a port holds, and opens a menu to choose another. Which
/// types the menu offers is up to who adds its entries.
class GLView_TypeSelector : public GLView_MenuSelector {
  public:
    void Draw() override;

    /// The label of the type that the port holds.
    const char* ShortLabel();

    const int strip;
    const uint32_t port;

  protected:
    explicit GLView_TypeSelector(int stripIndex)
        : strip(stripIndex), port(strip_port(stripIndex) + kType) {}
};

}  // namespace brindle
