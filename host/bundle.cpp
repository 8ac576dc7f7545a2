// SPDX-License-Identifier: ISC
#include "host/bundle.h"

#include <lv2/core/lv2.h>
#include <lv2/presets/presets.h>
#include <lv2/units/units.h>
#include <strings.h>

#include <algorithm>
#include <filesystem>

#include "contract/brindle.h"
#include "host/user_error.h"

namespace brindle {
namespace {

namespace fs = std::filesystem;

constexpr const char* kRdfsLabel = "http://www.w3.org/2000/01/rdf-schema#label";

std::string text_of(const NodePtr& node) {
    const char* text = node ? lilv_node_as_string(node.get()) : nullptr;
    return text != nullptr ? text : "";
}

float value_of(const NodePtr& node) {
    return node ? lilv_node_as_float(node.get()) : 0.0f;
}

std::string unit_symbol(const std::string& uri) {
    if (uri == LV2_UNITS__db) return "dB";
    if (uri == LV2_UNITS__hz) return "Hz";
    return "";
}

std::vector<ControlInfo::Choice> choices_of(const LilvPlugin* plugin, const LilvPort* port) {
    std::vector<ControlInfo::Choice> choices;
    const ScalePointsPtr points(lilv_port_get_scale_points(plugin, port));
    LILV_FOREACH(scale_points, i, points.get()) {
        const LilvScalePoint* point = lilv_scale_points_get(points.get(), i);
        choices.push_back({lilv_node_as_float(lilv_scale_point_get_value(point)),
                           lilv_node_as_string(lilv_scale_point_get_label(point))});
    }
    std::sort(choices.begin(), choices.end(),
              [](const auto& a, const auto& b) { return a.value < b.value; });
    return choices;
}

/// Where the build and the installation put the bundle that belongs to this program.
std::vector<std::string> neighbours() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (error) return {};
    return {program.parent_path() / "brindle.lv2",
            program.parent_path() / BRINDLE_INSTALLED_BUNDLE};
}

}  // namespace

Bundle::Bundle(const std::string& path) : world_(lilv_world_new()) {
    if (!path.empty()) {
        if (!load_folder(path)) throw UserError("there is no LV2 bundle at " + path + '.');
    } else {
        const std::vector<std::string> folders = neighbours();
        const bool found = std::any_of(folders.begin(), folders.end(),
                                       [this](const auto& each) { return load_folder(each); });
        if (!found) lilv_world_load_all(world());
    }
    if ((plugin(1) == nullptr) || (plugin(2) == nullptr)) {
        throw UserError(path.empty() ? "the plugin is not installed; give its bundle with --bundle."
                                     : "the bundle at " + path + " does not hold the plugin.");
    }
    find_presets();
}

bool Bundle::load_folder(const std::string& path) {
    std::error_code error;
    const fs::path folder = fs::canonical(path, error);
    if (error || !fs::exists(folder / "manifest.ttl", error)) return false;
    const NodePtr node(lilv_new_file_uri(world(), nullptr, (folder.string() + '/').c_str()));
    lilv_world_load_bundle(world(), node.get());
    return true;
}

NodePtr Bundle::uri(const char* text) const {
    return NodePtr(lilv_new_uri(world(), text));
}

const LilvPlugin* Bundle::plugin(int channels) const {
    return lilv_plugins_get_by_uri(lilv_world_get_all_plugins(world()),
                                   uri(channels == 1 ? kMonoUri : kStereoUri).get());
}

std::string Bundle::plugin_name(int channels) const {
    return text_of(NodePtr(lilv_plugin_get_name(plugin(channels))));
}

std::string Bundle::path() const {
    const char* bundle = lilv_node_as_uri(lilv_plugin_get_bundle_uri(plugin(1)));
    char* folder = lilv_file_uri_parse(bundle, nullptr);
    std::string path = folder != nullptr ? folder : "";
    lilv_free(folder);
    return path;
}

std::vector<ControlInfo> Bundle::controls() const {
    const LilvPlugin* mono = plugin(1);
    const NodePtr control = uri(LV2_CORE__ControlPort);
    const NodePtr input = uri(LV2_CORE__InputPort);
    const NodePtr integer = uri(LV2_CORE__integer);
    const NodePtr unit = uri(LV2_UNITS__unit);
    std::vector<ControlInfo> controls;
    for (uint32_t i = 0; i < lilv_plugin_get_num_ports(mono); ++i) {
        const LilvPort* port = lilv_plugin_get_port_by_index(mono, i);
        if (!lilv_port_is_a(mono, port, control.get())) continue;
        if (!lilv_port_is_a(mono, port, input.get())) continue;
        LilvNode* normal = nullptr;
        LilvNode* minimum = nullptr;
        LilvNode* maximum = nullptr;
        lilv_port_get_range(mono, port, &normal, &minimum, &maximum);
        controls.push_back({
            .index = i,
            .symbol = lilv_node_as_string(lilv_port_get_symbol(mono, port)),
            .name = text_of(NodePtr(lilv_port_get_name(mono, port))),
            .minimum = value_of(NodePtr(minimum)),
            .maximum = value_of(NodePtr(maximum)),
            .normal = value_of(NodePtr(normal)),
            .unit = unit_symbol(text_of(NodePtr(lilv_port_get(mono, port, unit.get())))),
            .whole = lilv_port_has_property(mono, port, integer.get()),
            .choices = choices_of(mono, port),
        });
    }
    return controls;
}

void Bundle::find_presets() {
    const NodePtr label = uri(kRdfsLabel);
    const NodesPtr found(lilv_plugin_get_related(plugin(1), uri(LV2_PRESETS__Preset).get()));
    LILV_FOREACH(nodes, i, found.get()) {
        const LilvNode* preset = lilv_nodes_get(found.get(), i);
        const NodePtr name(lilv_world_get(world(), preset, label.get(), nullptr));
        if (name) presets_.push_back({text_of(name), NodePtr(lilv_node_duplicate(preset))});
    }
    std::sort(presets_.begin(), presets_.end(),
              [](const Preset& a, const Preset& b) { return a.label < b.label; });
}

std::vector<std::string> Bundle::preset_names() const {
    std::vector<std::string> names;
    for (const Preset& preset : presets_) names.push_back(preset.label);
    return names;
}

const Bundle::Preset& Bundle::find_preset(const std::string& name) const {
    std::string known;
    for (const Preset& preset : presets_) {
        if (strcasecmp(preset.label.c_str(), name.c_str()) == 0) return preset;
        known += (known.empty() ? "" : ", ") + preset.label;
    }
    throw UserError("there is no preset \"" + name + "\", only " + known + '.');
}

std::string Bundle::preset_label(const std::string& name) const {
    return find_preset(name).label;
}

ControlValues Bundle::preset(const std::string& name) {
    const LilvNode* preset = find_preset(name).uri.get();
    lilv_world_load_resource(world(), preset);
    const StatePtr state(lilv_state_new_from_world(world(), urids_.map_feature(), preset));
    if (!state) throw UserError("the preset \"" + name + "\" cannot be read.");
    return port_values(urids_, controls(), *state);
}

}  // namespace brindle
