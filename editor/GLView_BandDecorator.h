// SPDX-License-Identifier: ISC
#pragma once

#include <lv2/ui/ui.h>

#include <array>
#include <cstdint>

#include "gl/GLView_DecoratorBox.h"
#include "gl/GLView_Toggle.h"
#include "gl/host_link.h"
#include "graph/GLView_ParametricEQ.h"
#include "graph/GLView_TypeSelector.h"

namespace brindle {

/// The strip of one band or section: a frame around its key, shape, gain, Q and frequency. What has
/// no effect at present looks so: all but the key while the strip is off, gain and Q while the type
/// does not heed them. The strip and the handle on the graph light up together.
class GLView_BandDecorator : public GLView_DecoratorBox {
  public:
    /// `stripIndex`: 0 to 7 for the bands, 8 and 9 for sections A and B. The graph is observed.
    GLView_BandDecorator(GLView_ParametricEQ& curveGraph, int stripIndex);

    /// Makes the strip's widgets. Call it once, when the strip has its size and a page.
    void AddWidgets(const HostWriter& writer, const LV2UI_Touch* touch);

    void ParameterChanged(uint32_t index) override;
    /// Pointing at a strip selects its handle on the graph.
    void ShowInfoAt(GLPoint point) override;
    void DrawFront() override;

    const int index;
    const uint32_t firstPort;

  private:
    bool IsBand() const { return is_band(index); }
    void AddToggle(const HostWriter& writer, const LV2UI_Touch* touch);
    void AddKnobs(const HostWriter& writer, const LV2UI_Touch* touch);
    void AddSelector();
    void UpdateEffect();

    GLView_ParametricEQ& graph_;
    GLView_Toggle* toggle_ = nullptr;                ///< children, as the two below
    std::array<GLView*, kControlCount> controls_{};  ///< indexed by Control; the key is not here
};

}  // namespace brindle
