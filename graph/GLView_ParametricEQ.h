// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "contract/brindle.h"
#include "gl/GLView.h"
#include "graph/curves/frequency_grid.h"
#include "graph/graph_drawing.h"
#include "graph/restored_values.h"
#include "graph/spectrum_history.h"

namespace brindle {

/// The graph of the whole equaliser's response from 20 Hz to 20 kHz and -18 to 18 dB, with a
/// keyboard and the analyser's history beneath. Its children are the handles of bands and sections,
/// which alone take the pointer.
///
/// Curves are evaluated when they are next drawn, and only those whose parameters have changed.
/// The view's colour is the foreground, the page's background colour the background.
class GLView_ParametricEQ : public GLView {
  public:
    static constexpr uint32_t kPoints = 800;

    /// Nothing is plotted before a curve is marked dirty.
    GLView_ParametricEQ();

    /// Marks a band's curve and those of all bands above it, or the sections' curves, dirty.
    void ParameterChanged(uint32_t index) override;
    /// Sets or clears all marks.
    void MarkAllDirty(bool dirty);
    /// Evaluates the curves that are dirty, and their sum. Drawing does this by itself.
    void UpdateCurves();
    /// The sum of all curves at the points of `grid`, in the view's units above its middle, as of
    /// the last update.
    std::span<const float> Heights() const { return std::span(total_).first(kPoints); }

    bool HitTest(GLPoint point) override;
    void DrawBack() override;
    void Draw() override;
    void DrawFront() override;
    /// The panel around the graph, and all above it, where handles stand that leave the graph.
    GLRect DrawnArea() override;

    /// Shows another handle as the selected one, -1 for none.
    void SelectHandle(int32_t handle);
    /// Shows a row of the analyser, an index of the ring and its levels, as the newest one.
    void AddSpectrumRow(int32_t row, const float* levels_db);

    /// What the graph is drawn with, for those that draw upon it.
    GraphLook Look();

    FrequencyGrid grid;
    SpectrumHistory spectrum;
    std::array<bool, kBandCount> bandDirty{};
    bool filtersDirty = false;
    /// Shared by the handles: which of them the pointer was last on, -1 for none, and what the last
    /// search put back.
    int32_t selectedHandle = -1;
    RestoredValues restored;

  private:
    void UpdateCurve(int strip);
    void RedrawCurve();
    void SumCurves();

    std::array<Curve, kStripCount> curves_{};
    Curve total_{};
    bool plotted_ = false;
};

}  // namespace brindle
