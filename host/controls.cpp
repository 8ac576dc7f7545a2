// SPDX-License-Identifier: ISC
#include "host/controls.h"

#include <lv2/atom/atom.h>

#include <cstring>
#include <map>
#include <optional>

namespace brindle {
namespace {

template <typename Number>
std::optional<float> read_as(const void* value, uint32_t size) {
    if (size != sizeof(Number)) return std::nullopt;
    Number number;
    std::memcpy(&number, value, sizeof number);
    return static_cast<float>(number);
}

struct Collector {
    UridMap& urids;
    std::map<std::string, float> values;

    void add(const char* symbol, const void* value, uint32_t size, LV2_URID type) {
        std::optional<float> number;
        if (type == urids.map(LV2_ATOM__Float)) number = read_as<float>(value, size);
        if (type == urids.map(LV2_ATOM__Double)) number = read_as<double>(value, size);
        if (type == urids.map(LV2_ATOM__Int)) number = read_as<int32_t>(value, size);
        if (type == urids.map(LV2_ATOM__Long)) number = read_as<int64_t>(value, size);
        if (number) values[symbol] = *number;
    }
};

}  // namespace

ControlValues port_values(UridMap& urids, const std::vector<ControlInfo>& controls,
                          const LilvState& state) {
    Collector collector = {urids, {}};
    lilv_state_emit_port_values(
        &state,
        [](const char* symbol, void* data, const void* value, uint32_t size, uint32_t type) {
            static_cast<Collector*>(data)->add(symbol, value, size, type);
        },
        &collector);
    ControlValues values;
    for (const ControlInfo& control : controls) {
        const auto value = collector.values.find(control.symbol);
        if (value != collector.values.end()) values.emplace_back(control.index, value->second);
    }
    return values;
}

}  // namespace brindle
