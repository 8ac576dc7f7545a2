// SPDX-License-Identifier: ISC
#pragma once

#include "graph/GLView_TypeSelector.h"

namespace brindle {

/// Shows and chooses the type of a band.
class GLView_ParametricEQSelector : public GLView_TypeSelector {
  public:
    /// `band`: 0 to 7.
    explicit GLView_ParametricEQSelector(int band) : GLView_TypeSelector(band) {}
};

}  // namespace brindle
