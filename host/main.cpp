// SPDX-License-Identifier: ISC
#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include "host/command.h"
#include "host/console.h"
#include "host/interrupt.h"
#include "host/user_error.h"

namespace brindle {
namespace {

constexpr int kUsageStatus = 2;

/// Number of letters to add, drop or change between two words.
size_t distance(const std::string& a, const std::string& b) {
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (const char letter : a) {
        size_t diagonal = row[0]++;
        for (size_t k = 0; k < b.size(); ++k) {
            const size_t changed = diagonal + (letter == b[k] ? 0 : 1);
            diagonal = row[k + 1];
            row[k + 1] = std::min({changed, row[k] + 1, row[k + 1] + 1});
        }
    }
    return row.back();
}

std::string nearest_command(const CLI::App& program, const std::string& word) {
    const auto commands = program.get_subcommands(nullptr);
    return (*std::ranges::min_element(
                commands, {},
                [&word](const CLI::App* command) { return distance(command->get_name(), word); }))
        ->get_name();
}

int refuse(const CLI::App& program, const CLI::ParseError& error) {
    const auto commands = program.get_subcommands();
    const std::vector<std::string> unknown = program.remaining();
    if (!commands.empty()) {
        const std::string reason = error.what();
        warn("%s; \"brindle %s --help\" tells more.",
             reason.substr(0, reason.find_first_of(".\n")).c_str(),
             commands.front()->get_name().c_str());
    } else if (unknown.empty()) {
        warn("a command is missing; \"brindle --help\" lists them.");
    } else if (unknown.front().starts_with('-')) {
        warn("there is no option \"%s\"; \"brindle --help\" lists them.", unknown.front().c_str());
    } else {
        warn("there is no command \"%s\"; the nearest is \"%s\".", unknown.front().c_str(),
             nearest_command(program, unknown.front()).c_str());
    }
    return kUsageStatus;
}

int run(int argc, char** argv) {
    CLI::App program("Runs the Brindle Console EQ plugin without a workstation.", "brindle");
    ProgramOptions options;
    program.require_subcommand(1);
    program.fallthrough();
    program.set_version_flag("--version", "brindle " BRINDLE_VERSION);
    program.add_option("--bundle", options.bundle,
                       "Bundle to load instead of the built or installed one");
    program.add_flag("--force", options.force, "Overwrite files that exist");
    program.add_flag("--verbose", options.verbose, "Show what plugin and libraries print");
    program.parse_complete_callback([&options] { claim_standard_streams(options.verbose); });
    for (const auto add : {add_open, add_screenshot, add_render, add_response, add_import,
                           add_pipewire, add_info, add_doctor}) {
        add(program, options);
    }
    if (argc < 2) {
        std::fputs(program.help().c_str(), stderr);
        return kUsageStatus;
    }
    try {
        program.parse(argc, argv);
    } catch (const CLI::Success& request) {
        std::ostringstream text;
        program.exit(request, text, text);
        say("%s", text.str().c_str());
    } catch (const CLI::ParseError& error) {
        return refuse(program, error);
    }
    return 0;
}

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
    try {
        brindle::hold_interrupts();
        return brindle::run(argc, argv);
    } catch (const brindle::Interrupted& error) {
        brindle::warn("%s", error.what());
        return error.exit_status;
    } catch (const std::exception& error) {
        brindle::warn("%s", error.what());
    }
    return 1;
}
