// SPDX-License-Identifier: ISC
// The functions that a host calls. Each converts its arguments and calls the engine.
#include <lv2/core/lv2.h>
#include <lv2/urid/urid.h>

#include <array>
#include <cstdio>
#include <cstring>

#include "contract/brindle.h"
#include "engine/lifecycle.h"
#include "engine/run.h"

namespace brindle {
namespace {

EqInstance& instance_of(LV2_Handle handle) {
    return *static_cast<EqInstance*>(handle);
}

LV2_Handle instantiate(const LV2_Descriptor* /*descriptor*/, double rate,
                       const char* /*bundle_path*/, const LV2_Feature* const* features) {
    LV2_URID_Map* map = nullptr;
    for (; (features != nullptr) && (*features != nullptr); ++features) {
        const char* uri = (*features)->URI;
        if (uri != nullptr && std::strcmp(uri, LV2_URID__map) == 0) {
            map = static_cast<LV2_URID_Map*>((*features)->data);
        }
    }
    if (map == nullptr || map->map == nullptr) {
        std::fputs("Brindle error: Host does not support urid:map\n", stderr);
        return nullptr;
    }
    return create_instance(rate, map);
}

void connect_port(LV2_Handle handle, uint32_t port, void* data) {
    connect(instance_of(handle), port, data);
}

void do_nothing(LV2_Handle /*handle*/) {}

void run_mono_instance(LV2_Handle handle, uint32_t sample_count) {
    run_mono(instance_of(handle), sample_count);
}

void run_stereo_instance(LV2_Handle handle, uint32_t sample_count) {
    run_stereo(instance_of(handle), sample_count);
}

void cleanup(LV2_Handle handle) {
    destroy_instance(static_cast<EqInstance*>(handle));
}

const void* extension_data(const char* /*uri*/) {
    return nullptr;
}

constexpr LV2_Descriptor descriptor(const char* uri, void (*run)(LV2_Handle, uint32_t)) {
    return {uri, instantiate, connect_port, do_nothing, run, do_nothing, cleanup, extension_data};
}

constexpr std::array<LV2_Descriptor, 2> kDescriptors = {
    descriptor(kMonoUri, run_mono_instance),
    descriptor(kStereoUri, run_stereo_instance),
};

}  // namespace
}  // namespace brindle

LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(uint32_t index) {
    return index < brindle::kDescriptors.size() ? &brindle::kDescriptors[index] : nullptr;
}
