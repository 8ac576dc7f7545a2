// SPDX-License-Identifier: ISC
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "contract/brindle.h"
#include "host/bundle.h"
#include "host/command.h"
#include "host/console.h"

namespace brindle {
namespace {

/// The controls' values as an object of PipeWire's configuration.
std::string controls_object(const std::vector<ControlInfo>& controls, const ControlValues& values) {
    std::string object = "{";
    for (const ControlInfo& control : controls) {
        float value = control.normal;
        for (const auto& [port, set] : values) {
            if (port == control.index) value = set;
        }
        // PipeWire takes a number without a point for a whole one, which a control is not.
        std::string number = short_number(value);
        if (number.find('.') == std::string::npos) number += ".0";
        object += " \"" + control.symbol + "\" = " + number;
    }
    return object + " }";
}

void pipewire(const ProgramOptions& options, const Settings& settings) {
    Bundle bundle(options.bundle);
    const std::string controls = controls_object(bundle.controls(), settings.resolve(bundle));
    say("# Brindle Console EQ as an output of the desktop.\n"
        "# Save this as ~/.config/pipewire/pipewire.conf.d/brindle.conf and run\n"
        "#     systemctl --user restart pipewire\n"
        "# On: choose the output \"%s\" in the desktop's sound settings.\n"
        "# Off: choose another output. For good: delete the file and restart PipeWire again.\n"
        "context.modules = [\n"
        "  { name = libpipewire-module-filter-chain\n"
        "    args = {\n"
        "      node.description = \"%s\"\n"
        "      media.name = \"%s\"\n"
        "      filter.graph = {\n"
        "        nodes = [\n"
        "          { type = lv2 name = left plugin = \"%s\"\n"
        "            control = %s }\n"
        "          { type = lv2 name = right plugin = \"%s\"\n"
        "            control = %s }\n"
        "        ]\n"
        "        inputs = [ \"left:in\" \"right:in\" ]\n"
        "        outputs = [ \"left:out\" \"right:out\" ]\n"
        "      }\n"
        "      audio.channels = 2\n"
        "      audio.position = [ FL FR ]\n"
        "      capture.props = { node.name = \"brindle_input\" media.class = Audio/Sink }\n"
        "      playback.props = { node.name = \"brindle_output\" node.passive = true }\n"
        "    }\n"
        "  }\n"
        "]\n",
        kProductName, kProductName, kProductName, kMonoUri, controls.c_str(), kMonoUri,
        controls.c_str());
}

}  // namespace

void add_pipewire(CLI::App& program, const ProgramOptions& options) {
    CLI::App* command = program.add_subcommand(
        "pipewire", "Print a configuration that makes it the desktop's equaliser");
    const auto settings = std::make_shared<Settings>();
    add_settings(*command, *settings);
    command->callback([settings, &options] { pipewire(options, *settings); });
}

}  // namespace brindle
