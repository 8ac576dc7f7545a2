// SPDX-License-Identifier: ISC
/// The analyser rows that the editor has received, for the graph.
#pragma once

#include <array>
#include <cstdint>

#include "contract/brindle.h"

namespace brindle {

/// A ring buffer of analyser rows. The editor's message handling writes it and the graph reads it,
/// both on the UI thread.
struct SpectrumHistory {
    using Row = std::array<float, kPlotBins>;  ///< dB, bin i centred at 20 Hz x 2^(i/24)

    /// The level of rows that have not arrived yet; too low to be drawn.
    static constexpr float kSilenceDb = -120.0f;

    std::array<Row, kPlotRows> rows{};
    int32_t newest = 0;  ///< index of the newest row, always 0..kPlotRows-1

    SpectrumHistory() {
        for (Row& row : rows) row.fill(kSilenceDb);
    }
};

}  // namespace brindle
