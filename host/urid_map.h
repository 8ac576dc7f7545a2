// SPDX-License-Identifier: ISC
#pragma once

#include <lv2/urid/urid.h>

#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace brindle {

/// The program's table of URIDs, passed to the plugin as urid:map and urid:unmap. Any thread.
class UridMap {
  public:
    UridMap() = default;
    UridMap(const UridMap&) = delete;
    UridMap& operator=(const UridMap&) = delete;

    /// The number of a URI, from 1 on.
    LV2_URID map(const char* uri);
    /// The URI of a number, or null. Valid while this object lives.
    const char* unmap(LV2_URID urid);

    LV2_URID_Map* map_feature() { return &map_feature_; }
    LV2_URID_Unmap* unmap_feature() { return &unmap_feature_; }

  private:
    static LV2_URID map_callback(LV2_URID_Map_Handle handle, const char* uri);
    static const char* unmap_callback(LV2_URID_Unmap_Handle handle, LV2_URID urid);

    std::mutex mutex_;
    std::unordered_map<std::string, LV2_URID> urids_;
    std::vector<const char*> uris_;  ///< the map's keys, which never move, by number - 1
    LV2_URID_Map map_feature_ = {this, map_callback};
    LV2_URID_Unmap unmap_feature_ = {this, unmap_callback};
};

}  // namespace brindle
