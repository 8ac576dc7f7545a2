// SPDX-License-Identifier: ISC
/// The analyser rows that the editor has received, as the graph draws them.
#pragma once

#include <array>
#include <cstdint>

#include "contract/brindle.h"

namespace brindle {

/// A ring of analyser rows. Written by the editor's message handling and read by the graph, both on
/// the user-interface thread.
struct SpectrumHistory {
    using Row = std::array<float, kPlotBins>;  ///< dB, bin i centred at 20 Hz x 2^(i/24)

    /// What a row holds before the first one arrives: below all that is drawn.
    static constexpr float kSilenceDb = -120.0f;

    std::array<Row, kPlotRows> rows{};
    int32_t newest = 0;  ///< index of the newest row, always 0..kPlotRows-1

    SpectrumHistory() {
        for (Row& row : rows) row.fill(kSilenceDb);
    }
};

}  // namespace brindle
