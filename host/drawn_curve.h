// SPDX-License-Identifier: ISC
#pragma once

#include "graph/curves/frequency_grid.h"
#include "host/plugin.h"

namespace brindle {

/// The curve that the editor's graph draws for the values of the plugin's controls: straight lines
/// between points that know no sample rate. The trim is left out.
class DrawnCurve {
  public:
    explicit DrawnCurve(const Plugin& plugin);

    /// Level in dB at a frequency; beyond the curve's ends, that of the end.
    [[nodiscard]] double level_db(double freq_hz) const;
    /// Whether the curve is drawn at this frequency and within the graph's height there.
    [[nodiscard]] bool shows(double freq_hz) const;

  private:
    FrequencyGrid grid_;
    Curve total_{};
};

}  // namespace brindle
