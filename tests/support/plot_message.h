// SPDX-License-Identifier: ISC
#pragma once

#include <lv2/atom/atom.h>

#include <bit>
#include <cstdint>
#include <vector>

#include "contract/brindle.h"
#include "tests/support/urid_map.h"

namespace brindle::test {

/// An analyser row as the engine sends it, in 32-bit words: size, type, id and object type, then
/// for each property key, context, size, type and value, filled up to an even number.
inline std::vector<uint32_t> PlotMessage(UridMap& map, int id, const std::vector<float>& row,
                                         uint32_t rate_hz = 48000) {
    std::vector<uint32_t> words = {0, map(LV2_ATOM__Object), 1, map(kMessageUri)};
    const auto add = [&](const char* key, const char* type, const std::vector<uint32_t>& body) {
        words.insert(words.end(), {map(key), 0, static_cast<uint32_t>(4 * body.size()), map(type)});
        words.insert(words.end(), body.begin(), body.end());
        words.resize((words.size() + 1) / 2 * 2);
    };
    add(kSampleRateUri, LV2_ATOM__Int, {rate_hz});
    add(kPlotIdUri, LV2_ATOM__Int, {static_cast<uint32_t>(id)});
    std::vector<uint32_t> bins = {sizeof(float), map(LV2_ATOM__Float)};
    for (const float bin : row) bins.push_back(std::bit_cast<uint32_t>(bin));
    add(kPlotArrayUri, LV2_ATOM__Vector, bins);
    words[0] = static_cast<uint32_t>(4 * words.size() - sizeof(LV2_Atom));
    return words;
}

}  // namespace brindle::test
