// SPDX-License-Identifier: ISC
#pragma once

#include "graph/GLView_TypeSelector.h"

namespace brindle {

/// Shows and chooses the type of a band.
class GLView_ParametricEQSelector : public GLView_TypeSelector {
  public:
    /// `typePort`: the band's type port.
    explicit GLView_ParametricEQSelector(uint32_t typePort)
        : GLView_TypeSelector(kBandTypeLabels, typePort) {}
};

}  // namespace brindle
