// SPDX-License-Identifier: ISC
// Fills the bundle's Turtle templates from the tables of ports, filter types and presets, and puts
// them one after the other into a file. Usage: make_turtle OUTPUT TEMPLATE...

#include <array>
#include <cctype>
#include <charconv>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <map>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "contract/brindle.h"
#include "contract/ports.h"
#include "contract/presets.h"
#include "contract/types.h"

namespace brindle {
namespace {

/// The shortest digits that read back as the same float, as Turtle's integer or decimal.
std::string number(float value) {
    std::array<char, 64> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    return {text.data(), end.ptr};
}

/// Like number(), but always with a decimal point: the values are floats, not integers.
std::string decimal(float value) {
    const std::string digits = number(value);
    return digits.find('.') == std::string::npos ? digits + ".0" : digits;
}

std::string quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

std::string uri(std::string_view tail) {
    return '<' + std::string(kBaseUri) + std::string(tail) + '>';
}

/// A Turtle blank node with the given lines.
class Node {
  public:
    Node& add(const std::string& predicate_and_object) {
        text_ += (text_.empty() ? "" : " ;") + ("\n\t\t" + predicate_and_object);
        return *this;
    }
    [[nodiscard]] std::string str() const { return "[" + text_ + "\n\t]"; }

  private:
    std::string text_;
};

/// The first lines of a port; `kind` is its Turtle class.
Node port(bool is_input, const char* kind, uint32_t index, const std::string& symbol,
          const std::string& name, const std::string& short_name, const char* comment) {
    Node node;
    node.add(std::string(is_input ? "a lv2:InputPort , " : "a lv2:OutputPort , ") + kind);
    node.add("lv2:index " + std::to_string(index));
    node.add("lv2:symbol " + quoted(symbol));
    node.add("lv2:name " + quoted(name));
    node.add("lv2:shortName " + quoted(short_name));
    node.add("rdfs:comment " + quoted(comment));
    return node;
}

std::string message_port(const MessagePortRow& row) {
    return port(row.is_input, "atom:AtomPort", row.index, row.symbol, row.name, row.name,
                row.comment)
        .add("atom:bufferType atom:Sequence")
        .add(row.properties)
        .str();
}

std::string scale_points(std::span<const TypeRow> types) {
    std::string points = "lv2:scalePoint";
    for (size_t code = 0; code < types.size(); ++code) {
        points += (code == 0 ? " " : " , ");
        points += "[ rdfs:label " + quoted(types[code].name) + " ; rdf:value " +
                  std::to_string(code) + " ]";
    }
    return points;
}

/// The five ports of a band or section, separated by commas.
std::string strip_ports(int index) {
    const StripRow& strip = strip_row(index);
    std::string ports;
    for (uint32_t i = 0; i < kControlCount; ++i) {
        const ControlRow& control = strip_controls(index)[i];
        Node node = port(true, "lv2:ControlPort", strip_port(index) + i,
                         std::string(strip.symbol) + '_' + control.symbol,
                         std::string(strip.name) + ' ' + control.name,
                         std::string(strip.short_name) + ' ' + control.short_name, control.comment);
        const bool whole = i == kEnable || i == kType;
        const auto text = whole ? number : decimal;
        node.add("lv2:default " + text(strip.defaults[i]));
        node.add("lv2:minimum " + text(control.minimum));
        node.add("lv2:maximum " + text(control.maximum));
        node.add(control.properties);
        if (i == kType) node.add(scale_points(strip_types(index)));
        node.add("pg:group " + uri(std::string("#") + strip.group));
        ports += " , " + node.str();
    }
    return ports;
}

/// The ports that both variants have, separated by commas.
std::string common_ports() {
    std::string ports = message_port(kMessagePorts[0]) + " , " + message_port(kMessagePorts[1]);
    for (int strip = 0; strip < kStripCount; ++strip) ports += strip_ports(strip);
    for (const SingleControlRow& single : kSingleControls) {
        Node node = port(single.is_input, "lv2:ControlPort", single.index, single.symbol,
                         single.name, single.short_name, single.comment);
        if (single.is_input) node.add("lv2:default " + decimal(single.normal));
        node.add("lv2:minimum " + decimal(single.minimum));
        node.add("lv2:maximum " + decimal(single.maximum));
        node.add(single.properties);
        ports += " , " + node.str();
    }
    return ports;
}

std::string audio_ports(std::span<const AudioPortRow> rows) {
    std::string ports;
    for (size_t i = 0; i < rows.size(); ++i) {
        const AudioPortRow& row = rows[i];
        ports += (i == 0 ? "" : " , ") + port(row.is_input, "lv2:AudioPort",
                                              kFirstAudioPort + static_cast<uint32_t>(i),
                                              row.symbol, row.name, row.short_name, row.comment)
                                             .add("pg:group " + uri(std::string("#") + row.group))
                                             .add(std::string("lv2:designation ") + row.designation)
                                             .str();
    }
    return ports;
}

std::string strip_group(const StripRow& strip) {
    return '\n' + uri(std::string("#") + strip.group) + "\n\ta pg:Group ;\n\tlv2:symbol " +
           quoted(strip.group) + " ;\n\tlv2:name " + quoted(strip.name) + " .\n";
}

std::string strip_groups() {
    std::string groups;
    for (const StripRow& strip : kStrips) groups += strip_group(strip);
    return groups;
}

/// The symbol of a port that presets set.
std::string control_symbol(uint32_t index) {
    if (index == kTrimPort) return kSingleControls[0].symbol;
    const uint32_t control = (index - kFirstPresetPort) % kControlCount;
    const StripRow& row = kStrips.at((index - kFirstPresetPort) / kControlCount);
    return std::string(row.symbol) + '_' + kBandControls[control].symbol;
}

/// "60Hz Buzz Kill" has the URI ".../presets/60hz-buzz-kill".
std::string preset_uri(const Preset& preset) {
    std::string slug;
    for (const char c : std::string_view(preset.name)) {
        const auto letter = static_cast<unsigned char>(c);
        slug += std::isalnum(letter) != 0 ? static_cast<char>(std::tolower(letter)) : '-';
    }
    return uri("/presets/" + slug);
}

std::string preset_head(const Preset& preset) {
    return '\n' + preset_uri(preset) + "\n\ta pset:Preset ;\n\tlv2:appliesTo " + uri("/mono") +
           " , " + uri("/stereo") + " ;\n\trdfs:label " + quoted(preset.name) + " ;\n";
}

std::string preset_entries() {
    std::string entries;
    for (const Preset& preset : kPresets) {
        entries += preset_head(preset) + "\trdfs:seeAlso <presets.ttl> .\n";
    }
    return entries;
}

std::string presets() {
    std::string text;
    for (const Preset& preset : kPresets) {
        text += preset_head(preset) + "\tlv2:port";
        for (uint32_t i = 0; i < kPresetValueCount; ++i) {
            text += (i == 0 ? " " : " , ") +
                    Node()
                        .add("lv2:symbol " + quoted(control_symbol(kFirstPresetPort + i)))
                        .add("pset:value " + decimal(preset.values[i]))
                        .str();
        }
        text += " .\n";
    }
    return text;
}

/// The port notifications that the editor requests from both variants: the engine's messages and
/// the meters. Hosts report controls without a request.
std::string port_notifications() {
    std::string notifications;
    for (const char* variant : {"/mono", "/stereo"}) {
        const std::string plugin = "ui:plugin " + uri(variant);
        for (const char* meter : {"meter_in", "meter_out"}) {
            notifications += Node()
                                 .add(plugin)
                                 .add("lv2:symbol " + quoted(meter))
                                 .add("ui:protocol ui:floatProtocol")
                                 .str() +
                             " , ";
        }
        notifications += Node()
                             .add(plugin)
                             .add("lv2:symbol " + quoted("notify"))
                             .add("ui:protocol atom:eventTransfer")
                             .add("ui:notifyType atom:Object")
                             .str();
        if (std::string_view(variant) == "/mono") notifications += " , ";
    }
    return notifications;
}

/// Replaces every {{name}}. Throws if a name is unknown.
std::string fill(std::string_view text) {
    const std::map<std::string_view, std::function<std::string()>> fields = {
        {"base", [] { return std::string(kBaseUri); }},
        {"name", [] { return std::string(kProductName); }},
        {"minor_version", [] { return std::to_string(kMinorVersion); }},
        {"common_ports", common_ports},
        {"mono_ports", [] { return audio_ports(kMonoAudioPorts); }},
        {"stereo_ports", [] { return audio_ports(kStereoAudioPorts); }},
        {"strip_groups", strip_groups},
        {"preset_entries", preset_entries},
        {"presets", presets},
        {"port_notifications", port_notifications},
    };
    std::string filled;
    for (;;) {
        const size_t start = text.find("{{");
        filled += text.substr(0, start);
        if (start == std::string_view::npos) return filled;
        const size_t end = text.find("}}", start);
        if (end == std::string_view::npos) throw std::runtime_error("a field without its end");
        const std::string_view name = text.substr(start + 2, end - start - 2);
        const auto field = fields.find(name);
        if (field == fields.end()) {
            throw std::runtime_error("no field is called " + std::string(name));
        }
        filled += field->second();
        text.remove_prefix(end + 2);
    }
}

void make_turtle(const char* output_path, std::span<char*> template_paths) {
    std::ofstream output(output_path);
    for (const char* path : template_paths) {
        std::ifstream input(path);
        if (!input) throw std::runtime_error(std::string(path) + " cannot be read");
        output << fill(std::string{std::istreambuf_iterator<char>(input), {}});
    }
    output.close();
    if (!output) throw std::runtime_error(std::string(output_path) + " cannot be written");
}

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "usage: make_turtle OUTPUT TEMPLATE...\n";
        return 2;
    }
    try {
        brindle::make_turtle(argv[1], {argv + 2, argv + argc});
    } catch (const std::exception& error) {
        std::cerr << "make_turtle: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
