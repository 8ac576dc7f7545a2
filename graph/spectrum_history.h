// SPDX-License-Identifier: ISC
/// The analyser rows that the editor has received, for the graph.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
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
    /// The rows as they are drawn: 0 at -40 dB and below, 255 at 0 dB and above.
    std::array<std::array<uint8_t, kPlotBins>, kPlotRows> opacities{};
    int32_t newest = 0;  ///< index of the newest row, always 0..kPlotRows-1

    SpectrumHistory() {
        for (Row& row : rows) row.fill(kSilenceDb);
    }
    /// Stores a row's levels, `kPlotBins` of them, as the newest one. NaN is not drawn.
    void Add(int32_t row, const float* levels_db) {
        newest = row;
        const auto index = static_cast<size_t>(row);
        std::copy_n(levels_db, kPlotBins, rows[index].begin());
        std::ranges::transform(rows[index], opacities[index].begin(), [](float db) {
            const float alpha = db / 40.0f + 1.0f;
            return static_cast<uint8_t>(alpha > 0.0f ? 255.0f * std::min(alpha, 1.0f) : 0.0f);
        });
    }
};

}  // namespace brindle
