// SPDX-License-Identifier: ISC
#pragma once

#include "graph/GLView_TypeSelector.h"

namespace brindle {

/// Shows and chooses the type of a section.
class GLView_ParametricFilterSelector : public GLView_TypeSelector {
  public:
    /// `section`: 0 (A) or 1 (B).
    explicit GLView_ParametricFilterSelector(int section)
        : GLView_TypeSelector(kBandCount + section) {}
};

}  // namespace brindle
