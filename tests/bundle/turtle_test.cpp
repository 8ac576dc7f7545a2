// SPDX-License-Identifier: ISC
// What the schema validator does not check: the bundle's data as a host reads it through lilv.
#include <gmock/gmock.h>
#include <lilv/lilv.h>
#include <lv2/atom/atom.h>
#include <lv2/core/lv2.h>
#include <lv2/options/options.h>
#include <lv2/port-groups/port-groups.h>
#include <lv2/port-props/port-props.h>
#include <lv2/presets/presets.h>
#include <lv2/resize-port/resize-port.h>
#include <lv2/ui/ui.h>
#include <lv2/units/units.h>
#include <lv2/urid/urid.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "contract/brindle.h"
#include "contract/presets.h"
#include "contract/types.h"
#include "tests/support/urid_map.h"

namespace brindle {
namespace {

using testing::ElementsAre;

const char* const kRdfsLabel = "http://www.w3.org/2000/01/rdf-schema#label";
const char* const kShortName = LV2_CORE_PREFIX "shortName";
const char* const kNotAutomatic = LV2_PORT_PROPS_PREFIX "notAutomatic";
const char* const kRdfsComment = "http://www.w3.org/2000/01/rdf-schema#comment";

/// Digests of ports, types and presets of the mono and stereo plugin, and their version.
constexpr int kDigestedVersion = 4;
constexpr std::array<uint64_t, 2> kDigests = {2278950431901842535u, 3748194582024893712u};

struct Range {
    float low, normal, high;
};

/// Symbols in port order. Sessions saved with earlier versions rely on them.
std::vector<std::string> expected_symbols(bool stereo) {
    std::vector<std::string> symbols = {"control", "notify"};
    for (const char* strip : {"b1", "b2", "b3", "b4", "b5", "b6", "b7", "b8", "seca", "secb"}) {
        for (const char* control : {"enable", "type", "gain", "freq", "q"}) {
            symbols.push_back(std::string(strip) + '_' + control);
        }
    }
    symbols.insert(symbols.end(), {"trim", "meter_in", "meter_out"});
    const std::vector<std::string> audio =
        stereo ? std::vector<std::string>{"in_l", "out_l", "in_r", "out_r"}
               : std::vector<std::string>{"in", "out"};
    symbols.insert(symbols.end(), audio.begin(), audio.end());
    return symbols;
}

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
        for (LilvNodes* each : owned_lists) lilv_nodes_free(each);
        lilv_world_free(world);
    }
    void SetUp() override { ASSERT_NE(plugin, nullptr); }

    LilvNode* node(const char* uri) { return owned_nodes.emplace_back(lilv_new_uri(world, uri)); }
    /// The values of a plugin property, as text.
    std::vector<std::string> values(const char* property) {
        LilvNodes* found = lilv_plugin_get_value(plugin, node(property));
        return texts(found);
    }
    std::vector<std::string> texts(LilvNodes* found) {
        std::vector<std::string> result;
        if (!found) return result;
        owned_lists.push_back(found);
        LILV_FOREACH(nodes, i, found) {
            const LilvNode* each = lilv_nodes_get(found, i);
            const char* text = lilv_node_as_string(each);
            result.emplace_back(text ? text : "");
        }
        return result;
    }
    std::vector<std::string> objects(const LilvNode* subject, const char* property) {
        return texts(lilv_world_find_nodes(world, subject, node(property), nullptr));
    }
    bool stereo() const { return std::strcmp(GetParam(), kStereoUri) == 0; }
    const LilvPort* port(uint32_t index) { return lilv_plugin_get_port_by_index(plugin, index); }
    uint32_t port_count() { return lilv_plugin_get_num_ports(plugin); }
    bool is(const LilvPort* which, const char* uri) {
        return lilv_port_is_a(plugin, which, node(uri));
    }
    bool has(const LilvPort* which, const char* uri) {
        return lilv_port_has_property(plugin, which, node(uri));
    }
    std::string symbol(uint32_t index) {
        return lilv_node_as_string(lilv_port_get_symbol(plugin, port(index)));
    }
    Range range(uint32_t index) {
        LilvNode* low = nullptr;
        LilvNode* normal = nullptr;
        LilvNode* high = nullptr;
        lilv_port_get_range(plugin, port(index), &normal, &low, &high);
        for (LilvNode* each : {low, normal, high}) {
            EXPECT_TRUE(lilv_node_is_float(each) || lilv_node_is_int(each)) << symbol(index);
            owned_nodes.push_back(each);
        }
        return {lilv_node_as_float(low), lilv_node_as_float(normal), lilv_node_as_float(high)};
    }
    std::map<int, std::string> scale_points(uint32_t index) {
        std::map<int, std::string> labels;
        LilvScalePoints* points = lilv_port_get_scale_points(plugin, port(index));
        LILV_FOREACH(scale_points, i, points) {
            const LilvScalePoint* point = lilv_scale_points_get(points, i);
            labels[lilv_node_as_int(lilv_scale_point_get_value(point))] =
                lilv_node_as_string(lilv_scale_point_get_label(point));
        }
        std::set<std::string> distinct;
        for (const auto& [value, label] : labels) distinct.insert(label);
        EXPECT_EQ(distinct.size(), labels.size());
        lilv_scale_points_free(points);
        return labels;
    }

    Presets load_presets() {
        test::UridMap map;
        LilvNodes* found = lilv_plugin_get_related(plugin, node(LV2_PRESETS__Preset));
        Presets presets;
        LILV_FOREACH(nodes, i, found) {
            const LilvNode* preset = lilv_nodes_get(found, i);
            lilv_world_load_resource(world, preset);
            LilvState* state = lilv_state_new_from_world(world, map.get(), preset);
            lilv_state_emit_port_values(state, collect_value,
                                        &presets[objects(preset, kRdfsLabel).at(0)]);
            lilv_state_free(state);
        }
        lilv_nodes_free(found);
        return presets;
    }

    LilvWorld* world = lilv_world_new();
    const LilvPlugin* plugin = nullptr;
    std::vector<LilvNode*> owned_nodes;
    std::vector<LilvNodes*> owned_lists;
};

TEST_P(Turtle, PortsStandInTheOrderOfTheLayoutWithoutGapsOrDoubles) {
    EXPECT_EQ(values(LV2_CORE__port).size(), port_count());
    EXPECT_EQ(port_count(), stereo() ? kStereoPortCount : kMonoPortCount);
    EXPECT_TRUE(lilv_plugin_verify(plugin));
    std::vector<std::string> symbols;
    std::set<std::string> names;
    std::set<std::string> short_names;
    for (uint32_t i = 0; i < port_count(); ++i) {
        ASSERT_NE(port(i), nullptr) << i;
        symbols.push_back(symbol(i));
        LilvNode* name = owned_nodes.emplace_back(lilv_port_get_name(plugin, port(i)));
        names.emplace(lilv_node_as_string(name));
        const auto short_name = texts(lilv_port_get_value(plugin, port(i), node(kShortName))).at(0);
        EXPECT_LE(short_name.size(), 10u) << short_name;
        short_names.insert(short_name);
        EXPECT_EQ(texts(lilv_port_get_value(plugin, port(i), node(kRdfsComment))).size(), 1u);
        const auto group =
            texts(lilv_port_get_value(plugin, port(i), node(LV2_PORT_GROUPS__group)));
        EXPECT_EQ(group.size(), i == kControlPort || i == kNotifyPort || i == kTrimPort ? 0u : 1u);
        for (const char* property :
             {LV2_PORT_PROPS__causesArtifacts, LV2_PORT_PROPS__expensive, kNotAutomatic}) {
            EXPECT_FALSE(has(port(i), property)) << "not automated by hosts: " << symbol(i);
        }
    }
    EXPECT_EQ(short_names.size(), port_count());
    EXPECT_TRUE(short_names.contains("B3 Freq"));
    EXPECT_EQ(symbols, expected_symbols(stereo()));
    EXPECT_EQ(names.size(), port_count());
    EXPECT_EQ(symbols[kTrimPort], "trim");
}

TEST_P(Turtle, AudioAndMessagePortsAreWhatTheEngineConnects) {
    for (uint32_t i : {kControlPort, kNotifyPort}) {
        EXPECT_TRUE(is(port(i), LV2_ATOM__AtomPort));
        EXPECT_FALSE(has(port(i), LV2_CORE__connectionOptional));
    }
    EXPECT_TRUE(is(port(kControlPort), LV2_CORE__InputPort));
    EXPECT_TRUE(is(port(kNotifyPort), LV2_CORE__OutputPort));
    const auto size =
        texts(lilv_port_get_value(plugin, port(kNotifyPort), node(LV2_RESIZE_PORT__minimumSize)));
    EXPECT_THAT(size, ElementsAre("8192"));
    for (uint32_t i = kFirstAudioPort; i < port_count(); ++i) {
        EXPECT_TRUE(is(port(i), LV2_CORE__AudioPort));
        const bool input = (i - kFirstAudioPort) % 2 == 0;
        EXPECT_TRUE(is(port(i), input ? LV2_CORE__InputPort : LV2_CORE__OutputPort)) << i;
        EXPECT_EQ(texts(lilv_port_get_value(plugin, port(i), node(LV2_CORE__designation))).size(),
                  1u)
            << i;
    }
}

TEST_P(Turtle, PluginsSayWhoMadeThemAndAskForLittle) {
    EXPECT_THAT(values(LV2_CORE__requiredFeature), ElementsAre(LV2_URID__map));
    EXPECT_THAT(values(LV2_CORE__optionalFeature), ElementsAre(LV2_CORE__hardRTCapable));
    EXPECT_FALSE(lilv_plugin_has_latency(plugin));
    EXPECT_EQ(values("http://usefulinc.com/ns/doap#license").size(), 1u);
    EXPECT_EQ(values(kRdfsComment).size(), 1u);
    LilvNode* project = owned_nodes.emplace_back(lilv_plugin_get_project(plugin));
    ASSERT_NE(project, nullptr);
    EXPECT_THAT(objects(project, "http://usefulinc.com/ns/doap#maintainer"),
                ElementsAre("urn:brindle-audio:maker"));
    EXPECT_EQ(values(LV2_PORT_GROUPS__mainInput).size(), 1u);
    EXPECT_EQ(values(LV2_PORT_GROUPS__mainOutput).size(), 1u);
    LilvNode* author = owned_nodes.emplace_back(lilv_plugin_get_author_name(plugin));
    EXPECT_NE(author, nullptr);
    LilvNode* name = owned_nodes.emplace_back(lilv_plugin_get_name(plugin));
    EXPECT_STREQ(lilv_node_as_string(name),
                 stereo() ? "Brindle Console EQ (Stereo)" : "Brindle Console EQ (Mono)");
}

TEST_P(Turtle, TheEditorIsFoundAndAsksForWhatItShows) {
    LilvUIs* editors = lilv_plugin_get_uis(plugin);
    const LilvUI* editor = lilv_uis_get_by_uri(editors, node(kEditorUri));
    ASSERT_NE(editor, nullptr);
    EXPECT_TRUE(lilv_ui_is_a(editor, node(LV2_UI__X11UI)));
    const std::string binary = lilv_node_as_uri(lilv_ui_get_binary_uri(editor));
    EXPECT_TRUE(binary.ends_with("/brindle.so")) << binary;
    const LilvNode* subject = lilv_ui_get_uri(editor);
    lilv_world_load_resource(world, subject);

    EXPECT_THAT(objects(subject, LV2_CORE__requiredFeature),
                testing::UnorderedElementsAre(LV2_UI__idleInterface, LV2_UI__parent, LV2_UI__touch,
                                              LV2_URID__map));
    EXPECT_THAT(objects(subject, LV2_CORE__optionalFeature), ElementsAre(LV2_OPTIONS__options));
    EXPECT_THAT(objects(subject, LV2_CORE__extensionData), ElementsAre(LV2_UI__idleInterface));
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
    EXPECT_THAT(protocols,
                testing::UnorderedElementsAre(testing::Pair("notify", LV2_ATOM__eventTransfer),
                                              testing::Pair("meter_in", LV2_UI__floatProtocol),
                                              testing::Pair("meter_out", LV2_UI__floatProtocol)));
    lilv_uis_free(editors);
}

TEST_P(Turtle, EveryPresetLoadsByItsLabelWithTheValuesOfTheButtons) {
    auto presets = load_presets();
    ASSERT_EQ(presets.size(), kPresets.size());
    for (const Preset& preset : kPresets) {
        SCOPED_TRACE(preset.name);
        const auto& loaded = presets[preset.name];
        EXPECT_EQ(loaded.size(), kPresetValueCount);
        for (uint32_t i = 0; i < kPresetValueCount; ++i) {
            const std::string name = symbol(kFirstPresetPort + i);
            ASSERT_TRUE(loaded.contains(name)) << name;
            EXPECT_EQ(loaded.at(name), preset.values[i]) << name;
            const Range limits = range(kFirstPresetPort + i);
            EXPECT_GE(preset.values[i], limits.low) << name;
            EXPECT_LE(preset.values[i], limits.high) << name;
            if (name.ends_with("_type") || name.ends_with("_enable")) {
                EXPECT_EQ(preset.values[i], std::floor(preset.values[i])) << name;
            }
        }
    }
}

TEST_P(Turtle, PortsTypesAndPresetsChangeWithTheMinorVersionOnly) {
    std::ostringstream text;
    for (uint32_t i = 0; i < port_count(); ++i) {
        const LilvPort* each = port(i);
        text << symbol(i) << ' '
             << texts(lilv_port_get_value(plugin, each, node(LV2_CORE__name)))[0];
        for (const char* property : {LILV_NS_RDF "type", LV2_CORE__portProperty, LV2_UNITS__unit,
                                     LV2_CORE__default, LV2_CORE__minimum, LV2_CORE__maximum}) {
            auto found = texts(lilv_port_get_value(plugin, each, node(property)));
            std::sort(found.begin(), found.end());
            for (const std::string& value : found) text << ' ' << value;
        }
        if (!is(each, LV2_CORE__ControlPort)) continue;
        for (const auto& [code, label] : scale_points(i)) text << ' ' << code << label;
    }
    for (const auto& [label, values] : load_presets()) {
        text << label;
        for (const auto& [port_symbol, value] : values) text << ' ' << port_symbol << value;
    }
    uint64_t digest = 0xcbf29ce484222325u;  // FNV-1a
    for (const char c : text.str()) digest = (digest ^ static_cast<uint8_t>(c)) * 0x100000001b3u;
    EXPECT_EQ(digest, kDigests[stereo() ? 1 : 0])
        << "Ports, types or presets have changed. Hosts that find two bundles take the one with "
           "the higher version: raise kMinorVersion in contract/ports.h by 2, then set "
           "kDigestedVersion to it and kDigests to the digests that were found here.";
    EXPECT_THAT(values(LV2_CORE__minorVersion), ElementsAre(std::to_string(kDigestedVersion)));
}

INSTANTIATE_TEST_SUITE_P(Variants, Turtle, testing::Values(kMonoUri, kStereoUri),
                         [](const auto& variant) {
                             return std::string(variant.param == kMonoUri ? "Mono" : "Stereo");
                         });

}  // namespace
}  // namespace brindle
