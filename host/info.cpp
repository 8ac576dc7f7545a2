// SPDX-License-Identifier: ISC
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "contract/brindle.h"
#include "host/bundle.h"
#include "host/command.h"
#include "host/console.h"
#include "host/settings.h"

namespace brindle {
namespace {

/// "0 Flat, 1 LP 6dB/oct, ..."
std::string list(const std::vector<ControlInfo::Choice>& choices) {
    std::string text;
    for (const ControlInfo::Choice& choice : choices) {
        text += (text.empty() ? "" : ", ") + short_number(choice.value) + ' ' + choice.label;
    }
    return text;
}

void print_info(const Bundle& bundle) {
    say("%s  %s\n", kMonoUri, bundle.plugin_name(1).c_str());
    say("%s  %s\n", kStereoUri, bundle.plugin_name(2).c_str());
    say("in %s\n\nControls:\n", bundle.path().c_str());
    say("  port  %-12s  %7s  %7s  %7s  %-4s  %s\n", "symbol", "from", "to", "default", "unit",
        "name");
    std::map<std::string, std::string> symbols_by_choices;
    for (const ControlInfo& control : bundle.controls()) {
        say("  %4u  %-12s  %7s  %7s  %7s  %-4s  %s\n", control.index, control.symbol.c_str(),
            short_number(control.minimum).c_str(), short_number(control.maximum).c_str(),
            short_number(control.normal).c_str(), control.unit.c_str(), control.name.c_str());
        if (control.choices.empty()) continue;
        std::string& symbols = symbols_by_choices[list(control.choices)];
        symbols += (symbols.empty() ? "" : ", ") + control.symbol;
    }
    say("\nValues by name:\n");
    for (const auto& [choices, symbols] : symbols_by_choices) {
        say("  %s:\n      %s\n", symbols.c_str(), choices.c_str());
    }
    say("\nPresets:\n");
    for (const std::string& name : bundle.preset_names()) say("  %s\n", name.c_str());
}

void print_json(const Bundle& bundle) {
    // Through text, so that 0.71 does not become 0.7099999785.
    const auto number = [](float value) { return nlohmann::json::parse(short_number(value)); };
    nlohmann::ordered_json controls;
    for (const ControlInfo& control : bundle.controls()) {
        nlohmann::ordered_json choices = nlohmann::json::array();
        for (const ControlInfo::Choice& choice : control.choices) {
            choices.push_back({{"value", number(choice.value)}, {"label", choice.label}});
        }
        controls.push_back({{"port", control.index},
                            {"symbol", control.symbol},
                            {"name", control.name},
                            {"minimum", number(control.minimum)},
                            {"maximum", number(control.maximum)},
                            {"default", number(control.normal)},
                            {"unit", control.unit},
                            {"choices", choices}});
    }
    const nlohmann::ordered_json info = {{"mono", kMonoUri},
                                         {"stereo", kStereoUri},
                                         {"bundle", bundle.path()},
                                         {"controls", controls},
                                         {"presets", bundle.preset_names()}};
    say("%s\n", info.dump(2).c_str());
}

}  // namespace

void add_info(CLI::App& program, const ProgramOptions& options) {
    CLI::App* command = program.add_subcommand("info", "List controls and presets");
    const auto as_json = std::make_shared<bool>(false);
    command->add_flag("--json", *as_json, "Print it as JSON");
    command->callback([as_json, &options] {
        const Bundle bundle(options.bundle);
        *as_json ? print_json(bundle) : print_info(bundle);
    });
}

}  // namespace brindle
