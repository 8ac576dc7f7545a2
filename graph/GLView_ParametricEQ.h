// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "contract/brindle.h"
#include "gl/GLView.h"
#include "graph/curves/frequency_grid.h"
#include "graph/graph_drawing.h"
#include "graph/spectrum_history.h"

namespace brindle {

/// The graph of the equaliser's response from 20 Hz to 20 kHz and -18 to 18 dB, with a keyboard and
/// the analyser's history below. Its children are the handles of bands and sections, in the strips'
/// order; only they take the pointer.
///
/// A curve is evaluated in the next draw, and only if its parameters have changed. The view's
/// colour is the foreground, the page's background colour the background.
class GLView_ParametricEQ : public GLView {
  public:
    static constexpr uint32_t kPoints = kGraphPoints;

    /// Nothing is plotted until a curve is marked dirty.
    GLView_ParametricEQ();

    /// Marks the curves of a band and of all higher bands, or those of the sections, dirty.
    void ParameterChanged(uint32_t index) override;
    /// Sets or clears all dirty marks.
    void MarkAllDirty(bool dirty);
    /// Evaluates the dirty curves and the sum of all curves. Drawing does this by itself.
    void UpdateCurves();
    /// The sum of all curves at the points of `grid`, as of the last update, in the view's units
    /// above its centre.
    std::span<const float> Heights() const { return std::span(total_).first(kPoints); }

    bool HitTest(GLPoint point) override;
    /// The selected handle.
    GLView* TopChild() override;
    void DrawBack() override;
    void Draw() override;
    void DrawFront() override;
    /// The panel and everything above it: handles follow the curve out of the graph.
    GLRect DrawnArea() override;

    /// Shows a handle as selected, -1 for none.
    void SelectHandle(int32_t handle);
    /// Shows an analyser row (its index in the ring buffer and its levels) as the newest one.
    void AddSpectrumRow(int32_t row, const float* levels_db);

    /// Sizes and colours of the graph, for views that draw on it.
    GraphLook Look();

    FrequencyGrid grid;
    SpectrumHistory spectrum;
    std::array<bool, kBandCount> bandDirty{};
    bool filtersDirty = false;
    int32_t selectedHandle = -1;  ///< the handle that the pointer was on last, -1 for none

  private:
    void UpdateCurve(int strip);
    void RedrawCurve();
    void SumCurves();

    std::array<Curve, kStripCount> curves_{};
    Curve total_{};
    SpectrumImage spectrumImage_{};
    bool plotted_ = false;
};

}  // namespace brindle
