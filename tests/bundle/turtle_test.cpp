// SPDX-License-Identifier: ISC
// What the schema validator does not check: the bundle's data as a host reads it through lilv.
#include <gmock/gmock.h>
#include <lilv/lilv.h>
#include <lv2/atom/atom.h>
#include <lv2/core/lv2.h>
#include <lv2/options/options.h>
#include <lv2/parameters/parameters.h>
#include <lv2/port-groups/port-groups.h>
#include <lv2/port-props/port-props.h>
#include <lv2/presets/presets.h>
#include <lv2/resize-port/resize-port.h>
#include <lv2/ui/ui.h>
#include <lv2/units/units.h>
#include <lv2/urid/urid.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "contract/brindle.h"
#include "contract/presets.h"
#include "tests/support/urid_map.h"

namespace brindle {
namespace {

using testing::Contains;
using testing::Pair;
using testing::UnorderedElementsAre;
using Texts = std::vector<std::string>;

const char* const kLabel = LILV_NS_RDFS "label";
const char* const kComment = LILV_NS_RDFS "comment";
const char* const kShortName = LV2_CORE_PREFIX "shortName";
const char* const kNotAutomatic = LV2_PORT_PROPS_PREFIX "notAutomatic";

/// Digests of ports, types and presets of the mono and stereo plugin, and their version.
constexpr int kDigestedVersion = 4;
constexpr std::array<uint64_t, 2> kDigests = {256011436602999517u, 17494857838118998690u};

using Presets = std::map<std::string, std::map<std::string, float>>;

void collect_value(const char* symbol, void* data, const void* value, uint32_t size, uint32_t) {
    ASSERT_EQ(size, sizeof(float)) << symbol;
    std::memcpy(&(*static_cast<std::map<std::string, float>*>(data))[symbol], value, size);
}

class Turtle : public testing::TestWithParam<const char*> {
  protected:
    Turtle() {
        LilvNode* bundle = lilv_new_file_uri(world, nullptr, BRINDLE_BUNDLE);
        lilv_world_load_bundle(world, bundle);
        lilv_node_free(bundle);
        plugin = lilv_plugins_get_by_uri(lilv_world_get_all_plugins(world), node(GetParam()));
    }
    ~Turtle() override {
        for (LilvNode* each : owned_nodes) lilv_node_free(each);
        lilv_world_free(world);
    }
    void SetUp() override {
        ASSERT_NE(plugin, nullptr);
        ASSERT_TRUE(lilv_plugin_verify(plugin)) << "this also loads the plugin's data";
    }

    LilvNode* node(const char* uri) { return owned_nodes.emplace_back(lilv_new_uri(world, uri)); }
    /// What a subject's property says, sorted.
    Texts objects(const LilvNode* subject, const char* property) {
        Texts result;
        LilvNodes* found = lilv_world_find_nodes(world, subject, node(property), nullptr);
        LILV_FOREACH(nodes, i, found) {
            result.emplace_back(lilv_node_as_string(lilv_nodes_get(found, i)));
        }
        lilv_nodes_free(found);
        std::sort(result.begin(), result.end());
        return result;
    }
    Texts of_plugin(const char* property) { return objects(lilv_plugin_get_uri(plugin), property); }
    Texts of_port(uint32_t index, const char* property) {
        return objects(lilv_port_get_node(plugin, port(index)), property);
    }
    bool stereo() const { return std::strcmp(GetParam(), kStereoUri) == 0; }
    const LilvPort* port(uint32_t index) { return lilv_plugin_get_port_by_index(plugin, index); }
    uint32_t port_count() { return lilv_plugin_get_num_ports(plugin); }

    Presets load_presets() {
        test::UridMap map;
        LilvNodes* found = lilv_plugin_get_related(plugin, node(LV2_PRESETS__Preset));
        Presets presets;
        LILV_FOREACH(nodes, i, found) {
            const LilvNode* preset = lilv_nodes_get(found, i);
            lilv_world_load_resource(world, preset);
            LilvState* state = lilv_state_new_from_world(world, map.get(), preset);
            lilv_state_emit_port_values(state, collect_value,
                                        &presets[objects(preset, kLabel).at(0)]);
            lilv_state_free(state);
        }
        lilv_nodes_free(found);
        return presets;
    }

    LilvWorld* world = lilv_world_new();
    const LilvPlugin* plugin = nullptr;
    std::vector<LilvNode*> owned_nodes;
};

TEST_P(Turtle, PortsAreWhatTheEngineConnectsAndHostsShow) {
    EXPECT_EQ(of_plugin(LV2_CORE__port).size(), port_count());
    ASSERT_EQ(port_count(), stereo() ? kStereoPortCount : kMonoPortCount);
    std::set<std::string> names, short_names;
    for (uint32_t i = 0; i < port_count(); ++i) {
        SCOPED_TRACE(i);
        ASSERT_NE(port(i), nullptr);
        names.insert(of_port(i, LV2_CORE__name).at(0));
        short_names.insert(of_port(i, kShortName).at(0));
        EXPECT_LE(of_port(i, kShortName).at(0).size(), 10u);
        EXPECT_EQ(of_port(i, kComment).size(), 1u);
        for (const char* not_automated :
             {LV2_PORT_PROPS__causesArtifacts, LV2_PORT_PROPS__expensive, kNotAutomatic}) {
            EXPECT_THAT(of_port(i, LV2_CORE__portProperty), testing::Not(Contains(not_automated)));
        }
        const bool is_message = i <= kNotifyPort, is_audio = i >= kFirstAudioPort;
        const bool is_output =
            is_audio ? (i - kFirstAudioPort) % 2 == 1 : i == kNotifyPort || i > kTrimPort;
        EXPECT_THAT(of_port(i, LILV_NS_RDF "type"),
                    UnorderedElementsAre(is_output ? LV2_CORE__OutputPort : LV2_CORE__InputPort,
                                         is_message ? LV2_ATOM__AtomPort
                                         : is_audio ? LV2_CORE__AudioPort
                                                    : LV2_CORE__ControlPort));
        EXPECT_EQ(of_port(i, LV2_CORE__designation).size(), is_message || is_audio ? 1u : 0u);
        const Texts group = of_port(i, LV2_PORT_GROUPS__group);
        EXPECT_EQ(group.size(), is_message || i == kTrimPort ? 0u : 1u);
        for (const std::string& uri : group) {
            EXPECT_EQ(objects(node(uri.c_str()), LV2_CORE__name).size(), 1u) << uri;
        }
    }
    EXPECT_EQ(names.size(), port_count());
    EXPECT_EQ(short_names.size(), port_count());
    EXPECT_EQ(of_port(kNotifyPort, LV2_RESIZE_PORT__minimumSize), Texts{"8192"});
}

TEST_P(Turtle, PluginsSayWhoMadeThemAndAskForLittle) {
    const std::string group = std::string(kBaseUri) + (stereo() ? "#stereo" : "#mono");
    const std::pair<const char*, std::string> rows[] = {
        {LV2_CORE__requiredFeature, LV2_URID__map},
        {LV2_CORE__optionalFeature, LV2_CORE__hardRTCapable},
        {LILV_NS_DOAP "name", std::string(kProductName) + (stereo() ? " (Stereo)" : " (Mono)")},
        {LILV_NS_DOAP "license", "http://opensource.org/licenses/isc"},
        {LILV_NS_DOAP "maintainer", "urn:brindle-audio:maker"},
        {LV2_CORE__project, kBaseUri},
        {LV2_PORT_GROUPS__mainInput, group + "In"},
        {LV2_PORT_GROUPS__mainOutput, group + "Out"},
    };
    for (const auto& [property, text] : rows) EXPECT_EQ(of_plugin(property), Texts{text});
    EXPECT_EQ(of_plugin(kComment).size(), 1u);
    EXPECT_FALSE(lilv_plugin_has_latency(plugin));
    LilvNode* author = owned_nodes.emplace_back(lilv_plugin_get_author_name(plugin));
    EXPECT_STREQ(lilv_node_as_string(author), "Brindle Audio");
}

TEST_P(Turtle, TheEditorIsFoundAndAsksForWhatItShows) {
    LilvUIs* editors = lilv_plugin_get_uis(plugin);
    const LilvUI* editor = lilv_uis_get_by_uri(editors, node(kEditorUri));
    ASSERT_NE(editor, nullptr);
    EXPECT_TRUE(lilv_ui_is_a(editor, node(LV2_UI__X11UI)));
    const std::string binary = lilv_node_as_uri(lilv_ui_get_binary_uri(editor));
    EXPECT_TRUE(binary.ends_with("/brindle.so")) << binary;
    EXPECT_EQ(of_plugin(LV2_CORE__binary), Texts{binary});
    const LilvNode* subject = lilv_ui_get_uri(editor);
    lilv_world_load_resource(world, subject);
    EXPECT_THAT(
        objects(subject, LV2_CORE__requiredFeature),
        UnorderedElementsAre(LV2_UI__idleInterface, LV2_UI__parent, LV2_UI__touch, LV2_URID__map));
    EXPECT_EQ(objects(subject, LV2_CORE__optionalFeature), Texts{LV2_OPTIONS__options});
    EXPECT_EQ(objects(subject, LV2_CORE__extensionData), Texts{LV2_UI__idleInterface});
    EXPECT_THAT(objects(subject, LV2_OPTIONS__supportedOption),
                UnorderedElementsAre(LV2_PARAMETERS__sampleRate, LV2_UI__backgroundColor,
                                     LV2_UI_PREFIX "contrastingColor"));
    std::map<std::string, std::string> protocols;
    LilvNodes* notifications =
        lilv_world_find_nodes(world, subject, node(LV2_UI__portNotification), nullptr);
    LILV_FOREACH(nodes, i, notifications) {
        const LilvNode* notification = lilv_nodes_get(notifications, i);
        if (objects(notification, LV2_UI__plugin).at(0) != GetParam()) continue;
        protocols[objects(notification, LV2_CORE__symbol).at(0)] =
            objects(notification, LV2_UI__protocol).at(0);
    }
    lilv_nodes_free(notifications);
    EXPECT_THAT(protocols, UnorderedElementsAre(Pair("notify", LV2_ATOM__eventTransfer),
                                                Pair("meter_in", LV2_UI__floatProtocol),
                                                Pair("meter_out", LV2_UI__floatProtocol)));
    lilv_uis_free(editors);
}

TEST_P(Turtle, EveryPresetLoadsByItsLabelWithTheValuesOfTheButtons) {
    Presets expected;
    for (const Preset& preset : kPresets) {
        for (uint32_t i = 0; i < kPresetValueCount; ++i) {
            const std::string symbol = of_port(kFirstPresetPort + i, LV2_CORE__symbol).at(0);
            expected[preset.name][symbol] = preset.values[i];
        }
    }
    EXPECT_EQ(load_presets(), expected);
}

TEST_P(Turtle, PortsTypesAndPresetsChangeWithTheMinorVersionOnly) {
    std::ostringstream text;
    for (uint32_t i = 0; i < port_count(); ++i) {
        for (const char* property :
             {LV2_CORE__symbol, LV2_CORE__name, LV2_CORE__portProperty, LV2_UNITS__unit,
              LV2_PORT_PROPS__rangeSteps, LV2_CORE__default, LV2_CORE__minimum, LV2_CORE__maximum,
              LV2_CORE__designation, LV2_PORT_GROUPS__group, LV2_ATOM__bufferType}) {
            for (const std::string& value : of_port(i, property)) text << ' ' << value;
        }
        std::map<int, std::string> labels;
        LilvScalePoints* points = lilv_port_get_scale_points(plugin, port(i));
        LILV_FOREACH(scale_points, each, points) {
            const LilvScalePoint* point = lilv_scale_points_get(points, each);
            labels[lilv_node_as_int(lilv_scale_point_get_value(point))] =
                lilv_node_as_string(lilv_scale_point_get_label(point));
        }
        lilv_scale_points_free(points);
        for (const auto& [code, label] : labels) text << ' ' << code << label;
    }
    for (const auto& [label, values] : load_presets()) {
        text << label;
        for (const auto& [symbol, value] : values) text << ' ' << symbol << value;
    }
    uint64_t digest = 0xcbf29ce484222325u;  // FNV-1a
    for (const char c : text.str()) digest = (digest ^ static_cast<uint8_t>(c)) * 0x100000001b3u;
    EXPECT_EQ(digest, kDigests[stereo() ? 1 : 0])
        << "Ports, types or presets have changed. Numbers and symbols of ports are in people's "
           "sessions and must not. Hosts that find two bundles take the one with the higher "
           "version: raise kMinorVersion in contract/ports.h by 2, then set kDigestedVersion to "
           "it and kDigests to the digests that were found here.";
    EXPECT_EQ(of_plugin(LV2_CORE__minorVersion), Texts{std::to_string(kDigestedVersion)});
}

INSTANTIATE_TEST_SUITE_P(Variants, Turtle, testing::Values(kMonoUri, kStereoUri),
                         [](const auto& variant) {
                             return std::string(variant.param == kMonoUri ? "Mono" : "Stereo");
                         });

}  // namespace
}  // namespace brindle
