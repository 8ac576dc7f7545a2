// SPDX-License-Identifier: ISC
#include "host/editor.h"

#include <dlfcn.h>
#include <lv2/atom/atom.h>
#include <lv2/options/options.h>
#include <lv2/parameters/parameters.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>

#include "contract/brindle.h"
#include "host/user_error.h"

namespace brindle {
namespace {

using UisPtr = std::unique_ptr<LilvUIs, LilvFree<lilv_uis_free>>;

std::string local_path(const LilvNode* uri) {
    char* path = lilv_file_uri_parse(lilv_node_as_uri(uri), nullptr);
    std::string text = path != nullptr ? path : "";
    lilv_free(path);
    return text;
}

}  // namespace

Editor::Editor(Bundle& bundle, LivePlugin& plugin, TopWindow& window, int channels, double rate_hz)
    : plugin_(plugin),
      window_(window),
      event_transfer_(bundle.urids().map(LV2_ATOM__eventTransfer)),
      // Only the editor moves the controls, so a touched control needs no protection.
      touch_{this, [](LV2UI_Feature_Handle, uint32_t, bool) {}},
      resize_{&window,
              [](LV2UI_Feature_Handle self, int width, int height) {
                  static_cast<TopWindow*>(self)->resize({width, height});
                  return 0;
              }},
      is_changed_(plugin.port_count(), 1) {
    load(bundle, channels);
    instantiate(bundle, channels, rate_hz);
}

Editor::~Editor() {
    descriptor_->cleanup(handle_);
}

void Editor::load(const Bundle& bundle, int channels) {
    const NodePtr kind(lilv_new_uri(bundle.world(), LV2_UI__X11UI));
    const UisPtr uis(lilv_plugin_get_uis(bundle.plugin(channels)));
    LILV_FOREACH(uis, i, uis.get()) {
        const LilvUI* ui = lilv_uis_get(uis.get(), i);
        if (!lilv_ui_is_a(ui, kind.get())) continue;
        void* library = dlopen(local_path(lilv_ui_get_binary_uri(ui)).c_str(), RTLD_NOW);
        if (library == nullptr) continue;
        const auto entry =
            reinterpret_cast<LV2UI_DescriptorFunction>(dlsym(library, "lv2ui_descriptor"));
        for (uint32_t index = 0; (entry != nullptr) && (descriptor_ == nullptr); ++index) {
            const LV2UI_Descriptor* descriptor = entry(index);
            if (descriptor == nullptr) break;
            if (std::strcmp(descriptor->URI, lilv_node_as_uri(lilv_ui_get_uri(ui))) == 0) {
                descriptor_ = descriptor;
            }
        }
        if (descriptor_ != nullptr) return;
        dlclose(library);
    }
    throw UserError("the bundle in " + bundle.path() + " has no editor that can be loaded.");
}

void Editor::instantiate(Bundle& bundle, int channels, double rate_hz) {
    UridMap& urids = bundle.urids();
    const auto rate = static_cast<float>(rate_hz);
    const std::array<LV2_Options_Option, 2> options = {
        LV2_Options_Option{LV2_OPTIONS_INSTANCE, 0, urids.map(LV2_PARAMETERS__sampleRate),
                           sizeof rate, urids.map(LV2_ATOM__Float), &rate},
        LV2_Options_Option{}};
    const std::array<LV2_Feature, 7> features = {
        LV2_Feature{LV2_URID__map, urids.map_feature()},
        LV2_Feature{LV2_URID__unmap, urids.unmap_feature()},
        LV2_Feature{LV2_UI__parent, std::bit_cast<void*>(window_.id())},
        LV2_Feature{LV2_UI__idleInterface, nullptr},
        LV2_Feature{LV2_UI__touch, &touch_},
        LV2_Feature{LV2_UI__resize, &resize_},
        LV2_Feature{LV2_OPTIONS__options, const_cast<LV2_Options_Option*>(options.data())}};
    std::array<const LV2_Feature*, features.size() + 1> list{};
    for (size_t i = 0; i < features.size(); ++i) list[i] = &features[i];
    const auto write = [](LV2UI_Controller self, uint32_t port, uint32_t size, uint32_t protocol,
                          const void* buffer) {
        static_cast<Editor*>(self)->apply_write(port, size, protocol, buffer);
    };
    handle_ = descriptor_->instantiate(descriptor_, channels == 1 ? kMonoUri : kStereoUri,
                                       bundle.path().c_str(), write, this, &widget_, list.data());
    if (handle_ == nullptr) throw UserError("the editor cannot be opened on this display.");
    if (descriptor_->extension_data != nullptr) {
        idle_ = static_cast<const LV2UI_Idle_Interface*>(
            descriptor_->extension_data(LV2_UI__idleInterface));
    }
}

void Editor::apply_write(uint32_t port, uint32_t size, uint32_t protocol, const void* buffer) {
    if (protocol == 0 && size == sizeof(float) && plugin_.is_control(port)) {
        float value = 0.0f;
        std::memcpy(&value, buffer, sizeof value);
        if (!std::isfinite(value)) return;
        plugin_.set(port, value);
        is_changed_[port] = 1;
    } else if (protocol == event_transfer_ && size >= sizeof(LV2_Atom) && port == kControlPort) {
        const auto* atom = static_cast<const LV2_Atom*>(buffer);
        if (atom->size <= size - sizeof(LV2_Atom)) plugin_.send(*atom);
    }
}

void Editor::report_value(uint32_t port) {
    const float value = plugin_.get(port);
    descriptor_->port_event(handle_, port, sizeof value, 0, &value);
}

void Editor::report() {
    for (uint32_t port = 0; port < plugin_.port_count(); ++port) {
        if (!plugin_.is_control(port) || (is_changed_[port] == 0u)) continue;
        is_changed_[port] = 0;
        report_value(port);
    }
    report_value(kMeterInPort);
    report_value(kMeterOutPort);
    plugin_.read_messages([this](uint32_t port, const LV2_Atom& atom) {
        descriptor_->port_event(handle_, port, static_cast<uint32_t>(sizeof atom) + atom.size,
                                event_transfer_, &atom);
    });
}

bool Editor::tick() {
    report();
    window_.process_events(std::bit_cast<uintptr_t>(widget_));
    return (idle_ == nullptr) || idle_->idle(handle_) == 0;
}

}  // namespace brindle
