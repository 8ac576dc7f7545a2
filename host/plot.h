// SPDX-License-Identifier: ISC
/// Pictures of curves over frequency (20 Hz to 20 kHz, logarithmic).
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace brindle {

class OutputFile;
struct ResponsePoint;

struct PlotPoint {
    double freq_hz;
    double value;  ///< a NaN breaks the line
};

enum class PlotInk { Orange, Blue, Green, Violet };

struct PlotCurve {
    std::string label;  ///< in the legend; none where empty
    PlotInk ink = PlotInk::Orange;
    std::vector<PlotPoint> points;
    bool is_filled = false;  ///< between curve and 0
};

/// A vertical axis and what is plotted along it.
struct PlotScale {
    std::string label;
    double low = 0.0;
    double high = 1.0;
    double step = 1.0;
    std::vector<PlotCurve> curves;
};

/// `right` has as many steps as `left`, whose grid is drawn.
struct PlotPanel {
    PlotScale left;
    std::optional<PlotScale> right;
};

/// Panels from above, the first one the largest.
struct Plot {
    std::string title;
    std::string note;  ///< small, below the title; shortened where it does not fit
    std::vector<PlotPanel> panels;
};

/// An axis in whole 6 dB that hold the curves: never less than +-18 dB, never more than 72 dB down.
PlotScale gain_scale(std::vector<PlotCurve> curves);
/// An axis of `count` round steps that hold the curves and 0.
PlotScale round_scale(const std::string& label, int count, std::vector<PlotCurve> curves);

/// Phase and group delay where there is enough signal to have any; the phase's line is broken
/// where it goes round.
PlotPanel phase_panel(const std::vector<ResponsePoint>& points);

/// Draws a plot. What cannot be written is remembered by `output`; an empty curve gives an empty
/// grid.
void plot_png(OutputFile& output, const Plot& plot);
void plot_svg(OutputFile& output, const Plot& plot);

}  // namespace brindle
