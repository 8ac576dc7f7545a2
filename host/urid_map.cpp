// SPDX-License-Identifier: ISC
#include "host/urid_map.h"

namespace brindle {

LV2_URID UridMap::map(const char* uri) {
    const std::lock_guard lock(mutex_);
    const auto [entry, is_new] = urids_.try_emplace(uri, static_cast<LV2_URID>(uris_.size() + 1));
    if (is_new) uris_.push_back(entry->first.c_str());
    return entry->second;
}

const char* UridMap::unmap(LV2_URID urid) {
    const std::lock_guard lock(mutex_);
    return urid == 0 || urid > uris_.size() ? nullptr : uris_[urid - 1];
}

LV2_URID UridMap::map_callback(LV2_URID_Map_Handle handle, const char* uri) {
    return static_cast<UridMap*>(handle)->map(uri);
}

const char* UridMap::unmap_callback(LV2_URID_Unmap_Handle handle, LV2_URID urid) {
    return static_cast<UridMap*>(handle)->unmap(urid);
}

}  // namespace brindle
