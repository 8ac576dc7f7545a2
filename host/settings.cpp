// SPDX-License-Identifier: ISC
#include "host/settings.h"

#include <strings.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>

#include "host/state_file.h"
#include "host/user_error.h"

namespace brindle {
namespace {

/// A number as people and the editor write it: "1000", "+2.5 dB", "1k", "1.2 kHz".
std::optional<float> number_in(const std::string& text, const std::string& unit) {
    float value = 0.0f;
    const char* start = text.data() + (text.starts_with('+') ? 1 : 0);
    const auto result = std::from_chars(start, text.data() + text.size(), value);
    if (result.ec != std::errc()) return std::nullopt;
    std::string rest = result.ptr;
    rest.erase(0, rest.find_first_not_of(' '));
    if (rest.starts_with('k') || rest.starts_with('K')) {
        value *= 1000.0f;
        rest.erase(0, 1);
    }
    const bool is_unit = strcasecmp(rest.c_str(), unit.c_str()) == 0;
    return rest.empty() || is_unit ? std::optional(value) : std::nullopt;
}

std::optional<float> choice_in(const ControlInfo& control, const std::string& text) {
    for (const ControlInfo::Choice& choice : control.choices) {
        if (strcasecmp(choice.label.c_str(), text.c_str()) == 0) return choice.value;
    }
    const bool is_switch = control.whole && control.maximum == 1.0f;
    if (is_switch && strcasecmp(text.c_str(), "on") == 0) return 1.0f;
    if (is_switch && strcasecmp(text.c_str(), "off") == 0) return 0.0f;
    return std::nullopt;
}

/// What the control accepts, as the end of a sentence.
std::string accepted(const ControlInfo& control) {
    std::string text = control.whole ? "a whole number from " : "a number from ";
    text += short_number(control.minimum) + " to " + short_number(control.maximum);
    if (!control.unit.empty()) text += ' ' + control.unit;
    for (const ControlInfo::Choice& choice : control.choices) {
        text += (choice.value == control.minimum ? " or one of " : ", ") + choice.label;
    }
    return text + '.';
}

float value_in(const ControlInfo& control, const std::string& text) {
    std::optional<float> value = choice_in(control, text);
    if (!value) value = number_in(text, control.unit);
    // This form refuses NaN too.
    if (!value || !(*value >= control.minimum && *value <= control.maximum) ||
        (control.whole && *value != std::floor(*value))) {
        throw UserError('"' + text + "\" is no value for " + control.symbol + ", which takes " +
                        accepted(control));
    }
    return *value;
}

}  // namespace

std::string short_number(float value) {
    std::array<char, 64> text{};
    const auto result =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    return {text.data(), result.ptr};
}

ControlValues Settings::resolve(Bundle& bundle) const {
    ControlValues values;
    if (!state.empty()) values = load_state(bundle, state);
    if (!preset.empty()) values = bundle.preset(preset);
    const std::vector<ControlInfo> controls = bundle.controls();
    for (const std::string& assignment : assignments) {
        const size_t equals = assignment.find('=');
        if (equals == std::string::npos) {
            throw UserError("\"" + assignment + "\" does not have the form SYMBOL=VALUE.");
        }
        const std::string symbol = assignment.substr(0, equals);
        const auto control = std::find_if(controls.begin(), controls.end(),
                                          [&](const auto& each) { return each.symbol == symbol; });
        if (control == controls.end()) {
            throw UserError("there is no control \"" + symbol + "\"; \"brindle info\" lists them.");
        }
        values.emplace_back(control->index, value_in(*control, assignment.substr(equals + 1)));
    }
    return values;
}

void add_settings(CLI::App& command, Settings& settings) {
    const CLI::Validator named(
        [](const std::string& text) { return text.empty() ? "the name is empty" : ""; }, "");
    CLI::Option* preset =
        command.add_option("--preset", settings.preset, "Preset to start from (see brindle info)")
            ->check(named);
    command.add_option("--load", settings.state, "LV2 state to start from, a file or folder")
        ->check(named)
        ->excludes(preset);
    command
        .add_option("--set", settings.assignments,
                    "Value of a control by its symbol, over the preset's; may be repeated")
        ->type_name("SYMBOL=VALUE")
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

}  // namespace brindle
