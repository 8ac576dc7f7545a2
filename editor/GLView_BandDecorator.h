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

struct Look;

/// The strip of a band or section: a frame around its on/off button, shape, gain, Q and frequency.
/// Controls without effect are grey: all but the button while the strip is off, gain and Q while
/// the type ignores them. The strip and its handle on the graph are highlighted together.
class GLView_BandDecorator : public GLView_DecoratorBox {
  public:
    /// `stripIndex`: 0 to 7 for the bands, 8 and 9 for sections A and B. The graph is observed.
    GLView_BandDecorator(GLView_ParametricEQ& curveGraph, int stripIndex);

    /// Creates the strip's widgets. Call it once, when the strip has its size and a page.
    void AddWidgets(const HostWriter& writer, const LV2UI_Touch* touch);

    void ParameterChanged(uint32_t index) override;
    /// A strip is hit as a whole, also between its controls.
    bool HitTest(GLPoint point) override;
    /// Hovering a strip selects its handle on the graph.
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
    /// The outline of the strip whose handle is selected, in page coordinates.
    void DrawSelection(const Look& look);

    GLView_ParametricEQ& graph_;
    GLView_Toggle* toggle_ = nullptr;                ///< a child, like those below
    std::array<GLView*, kControlCount> controls_{};  ///< indexed by Control; kEnable is null
};

}  // namespace brindle
