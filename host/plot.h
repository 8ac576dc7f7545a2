// SPDX-License-Identifier: ISC
#pragma once

#include <string>
#include <vector>

namespace brindle {

class OutputFile;

struct ResponsePoint {
    double freq_hz;
    double gain_db;
};

struct PlotText {
    std::string title;
    std::string note;  ///< small, below the title; shortened where it does not fit
};

/// Plots gain over frequency (logarithmic) with its grid. What cannot be written is remembered by
/// `output`; an empty curve gives an empty grid.
void plot_png(OutputFile& output, const std::vector<ResponsePoint>& points, const PlotText& text);
void plot_svg(OutputFile& output, const std::vector<ResponsePoint>& points, const PlotText& text);

}  // namespace brindle
