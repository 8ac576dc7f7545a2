// SPDX-License-Identifier: ISC
#pragma once

#include <istream>
#include <string>
#include <vector>

namespace brindle {

enum class ListedShape { Peak, LowShelf, HighShelf, HighPass, LowPass, Notch };

/// A filter of a list; its model is the analogue second-order section that such lists mean.
struct ListedFilter {
    std::string line;  ///< as the list has it
    ListedShape shape;
    double freq_hz;
    double gain_db;
    double q;
};

/// A list of filters as programs for room and headphone correction write it.
struct FilterList {
    double preamp_db = 0.0;
    std::vector<ListedFilter> filters;  ///< those that are on
    std::vector<std::string> unknown;   ///< lines that describe sound, but not in a way known here

    /// The level of the whole list at a frequency.
    [[nodiscard]] double level_db(double freq_hz) const;
};

/// Reads lines such as "Preamp: -6.2 dB" and "Filter 1: ON PK Fc 105 Hz Gain 2.5 dB Q 0.70". Skips
/// other text.
FilterList read_filter_list(std::istream& text);

}  // namespace brindle
