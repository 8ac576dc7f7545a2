// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <span>

#include "engine/band_types.h"
#include "gl/GLView_MenuSelector.h"

namespace brindle {

/// Shows the short label of the type that a port holds, and opens a menu to choose another. Which
/// types the menu offers is up to who adds its entries.
class GLView_TypeSelector : public GLView_MenuSelector {
  public:
    void Draw() override;

    /// The label for the port's present value: codes are its integer part after adding 0.01, held
    /// inside the table.
    const char* ShortLabel();

    const std::span<const TypeLabel> labels;
    const uint32_t port;

  protected:
    GLView_TypeSelector(std::span<const TypeLabel> typeLabels, uint32_t typePort);
};

}  // namespace brindle
