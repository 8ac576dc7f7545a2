// SPDX-License-Identifier: ISC
#pragma once

#include "graph/GLView_TypeSelector.h"

namespace brindle {

/// Shows and chooses the type of a section.
class GLView_ParametricFilterSelector : public GLView_TypeSelector {
  public:
    /// `typePort`: the section's type port.
    explicit GLView_ParametricFilterSelector(uint32_t typePort)
        : GLView_TypeSelector(kSectionTypeLabels, typePort) {}
};

}  // namespace brindle
