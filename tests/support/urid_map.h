// SPDX-License-Identifier: ISC
#pragma once

#include <lv2/core/lv2.h>
#include <lv2/urid/urid.h>

#include <map>
#include <string>
#include <vector>

namespace brindle::test {

/// A host's URID map that records what it is asked for. URIDs count from 1, so they are the same in
/// each run.
class UridMap {
  public:
    UridMap() = default;
    UridMap(const UridMap&) = delete;
    UridMap& operator=(const UridMap&) = delete;

    LV2_URID operator()(const std::string& uri) {
        const auto [place, is_new] = ids_.try_emplace(uri, static_cast<LV2_URID>(ids_.size() + 1));
        if (is_new) order_.push_back(uri);
        return place->second;
    }
    LV2_URID_Map* get() { return &map_; }
    const LV2_Feature* feature() const { return &feature_; }
    /// What was asked for, each at its first request.
    const std::vector<std::string>& order() const { return order_; }

  private:
    static LV2_URID map_uri(LV2_URID_Map_Handle handle, const char* uri) {
        return (*static_cast<UridMap*>(handle))(uri);
    }

    std::map<std::string, LV2_URID> ids_;
    std::vector<std::string> order_;
    LV2_URID_Map map_ = {this, map_uri};
    LV2_Feature feature_ = {LV2_URID__map, &map_};
};

}  // namespace brindle::test
