// SPDX-License-Identifier: ISC
#pragma once

#include <lilv/lilv.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "host/urid_map.h"

namespace brindle {

/// A control input as the bundle describes it.
struct ControlInfo {
    struct Choice {
        float value;
        std::string label;
    };

    uint32_t index;  ///< port number
    std::string symbol;
    std::string name;
    float minimum;
    float maximum;
    float normal;                 ///< the default
    std::string unit;             ///< "dB", "Hz" or empty
    bool whole;                   ///< takes whole numbers only
    std::vector<Choice> choices;  ///< named values in ascending order; empty for most
};

/// Port numbers and values in the order of setting.
using ControlValues = std::vector<std::pair<uint32_t, float>>;

/// Reads the values of `controls` from an LV2 state or preset, in port order. Skips values that are
/// no numbers.
ControlValues port_values(UridMap& urids, const std::vector<ControlInfo>& controls,
                          const LilvState& state);

}  // namespace brindle
