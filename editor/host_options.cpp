// SPDX-License-Identifier: ISC
#include "editor/host_options.h"

#include <lv2/atom/atom.h>
#include <lv2/parameters/parameters.h>
#include <lv2/ui/ui.h>

#include <cstdio>
#include <cstring>

#include "contract/brindle.h"

namespace brindle {
namespace {

constexpr const char* kContrastingColorUri = LV2_UI_PREFIX "contrastingColor";

/// The URIDs of the options, mapped in this order.
struct OptionUris {
    LV2_URID typeInt;
    LV2_URID typeBool;
    LV2_URID typeFloat;
    LV2_URID sampleRate;
    LV2_URID scaleFactor;      // ignored: the editor follows its window's size
    LV2_URID foregroundColor;  // ignored
    LV2_URID backgroundColor;
    LV2_URID contrastColor;
    LV2_URID boxy;
    LV2_URID flat;
};

OptionUris MapOptionUris(LV2_URID_Map* map) {
    const auto id = [map](const char* uri) { return map->map(map->handle, uri); };
    return {id(LV2_ATOM__Int),           id(LV2_ATOM__Bool),
            id(LV2_ATOM__Float),         id(LV2_PARAMETERS__sampleRate),
            id(LV2_UI__scaleFactor),     id(LV2_UI__foregroundColor),
            id(LV2_UI__backgroundColor), id(kContrastingColorUri),
            id(kStyleBoxyUri),           id(kStyleFlatUri)};
}

/// Copies an option's value; false if it has another type or is too short.
template <typename Value>
bool Read(const LV2_Options_Option& option, LV2_URID type, Value& value) {
    if (option.type != type || option.value == nullptr || option.size < sizeof value) return false;
    std::memcpy(&value, option.value, sizeof value);
    return true;
}

void ReadColor(const LV2_Options_Option& option, LV2_URID type, const char* what, uint32_t& rgba) {
    if (Read(option, type, rgba)) std::printf("HOST %s COLOR RGBA: 0x%x\n", what, rgba);
}

void ReadFlag(const LV2_Options_Option& option, LV2_URID type, const char* what, bool& flag) {
    uint8_t byte = 0;
    if (Read(option, type, byte)) {
        flag = byte != 0;
        std::printf("HOST THEME %s: %s\n", what, flag ? "TRUE" : "FALSE");
    }
}

}  // namespace

HostOptions ReadHostOptions(const LV2_Options_Option* options, LV2_URID_Map* map) {
    HostOptions host;
    const OptionUris uris = MapOptionUris(map);
    for (const LV2_Options_Option* option = options; option->key != 0; ++option) {
        if (option->context != LV2_OPTIONS_INSTANCE) continue;
        if (option->key == uris.backgroundColor) {
            ReadColor(*option, uris.typeInt, "BG", host.backgroundColor);
        } else if (option->key == uris.contrastColor) {
            ReadColor(*option, uris.typeInt, "CONTRAST", host.contrastColor);
        } else if (option->key == uris.boxy) {
            ReadFlag(*option, uris.typeBool, "BOXY", host.boxy);
        } else if (option->key == uris.flat) {
            ReadFlag(*option, uris.typeBool, "FLAT", host.flat);
        } else if (option->key == uris.sampleRate &&
                   Read(*option, uris.typeFloat, host.sampleRate)) {
            std::printf("HOST SAMPLE RATE: %3.3f\n", static_cast<double>(host.sampleRate));
        }
    }
    return host;
}

void ApplyHostColor(GLColor& color, uint32_t rgba) {
    if ((rgba & 0xffu) != 0xffu) return;
    const auto component = [rgba](int shift) {
        return static_cast<float>(((rgba >> shift) & 0xffu) / 255.0);
    };
    color.Set(component(24), component(16), component(8), 1.0f);
}

}  // namespace brindle
