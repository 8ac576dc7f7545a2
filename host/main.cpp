// SPDX-License-Identifier: ISC
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <string>

#include "host/bundle.h"
#include "host/info.h"
#include "host/interrupt.h"
#include "host/open.h"
#include "host/render.h"
#include "host/response.h"
#include "host/screenshot.h"
#include "host/settings.h"
#include "host/user_error.h"

namespace brindle {
namespace {

void add_settings(CLI::App& command, Settings& settings) {
    CLI::Option* preset =
        command.add_option("--preset", settings.preset, "Preset to start from (see brindle info)");
    command.add_option("--load", settings.state, "LV2 state to start from, a file or folder")
        ->excludes(preset);
    command
        .add_option("--set", settings.assignments,
                    "Value of a control by its symbol, over the preset's; may be repeated")
        ->type_name("SYMBOL=VALUE")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

void add_render(CLI::App& program, const std::string& bundle, RenderRequest& request,
                bool& no_settle) {
    CLI::App* command = program.add_subcommand("render", "Run a sound file through the plugin");
    command->add_option("IN", request.input, "Sound file, mono or stereo")->required();
    command->add_option("OUT", request.output, "Sound file to write")->required();
    add_settings(*command, request.settings);
    command->add_option("--block", request.block, "Frames that the plugin gets at a time")
        ->check(CLI::Range(1, 65536))
        ->capture_default_str();
    command->add_flag("--no-settle", no_settle,
                      "Start with the first sample, while the controls still glide");
    command->callback([&] {
        request.settle = !no_settle;
        Bundle loaded(bundle);
        render(loaded, request);
    });
}

void add_response(CLI::App& program, const std::string& bundle, ResponseRequest& request) {
    CLI::App* command =
        program.add_subcommand("response", "Measure the response, as table or plot");
    command->add_option("OUT", request.output, "File to write: .csv, .txt, .png or .svg")
        ->required();
    add_settings(*command, request.settings);
    command->add_flag("--phase", request.phase, "Plot phase and group delay too");
    command->add_flag("--drawn", request.drawn, "Add the curve that the editor draws");
    command->add_option("--rate", request.rate_hz, "Sample rate [Hz]")
        ->check(CLI::Range(8000, 768000))
        ->capture_default_str();
    command->callback([&] {
        Bundle loaded(bundle);
        response(loaded, request);
    });
}

void add_open(CLI::App& program, const std::string& bundle, OpenRequest& request) {
    CLI::App* command =
        program.add_subcommand("open", "Open the editor in a window over running audio");
    CLI::Option* input =
        command->add_option("FILE", request.input, "Sound file to play over and over");
    command->add_option("--signal", request.signal, "What is played where no file is given")
        ->check(CLI::IsMember({"pink", "sweep"}))
        ->capture_default_str()
        ->excludes(input);
    add_settings(*command, request.settings);
    command->add_option("--save", request.save, "LV2 state to write when the window is closed");
    command->add_flag("--silent", request.silent, "Use no sound device");
    command->callback([&] {
        Bundle loaded(bundle);
        open_editor(loaded, request);
    });
}

void add_screenshot(CLI::App& program, const std::string& bundle, ScreenshotRequest& request) {
    CLI::App* command = program.add_subcommand("screenshot", "Take a picture of the editor");
    command->add_option("OUT", request.output, "File to write: .png")->required();
    add_settings(*command, request.settings);
    command->add_option("--size", request.size, "Size of the editor in pixels")
        ->type_name("WIDTHxHEIGHT")
        ->capture_default_str();
    command->callback([&] {
        Bundle loaded(bundle);
        screenshot(loaded, request);
    });
}

int run(int argc, char** argv) {
    CLI::App program("Runs the Brindle Console EQ plugin without a workstation.", "brindle");
    program.require_subcommand(1);
    std::string bundle;
    program.add_option("--bundle", bundle, "Bundle to load instead of the built or installed one");
    RenderRequest render_request;
    ResponseRequest response_request;
    OpenRequest open_request;
    ScreenshotRequest screenshot_request;
    bool no_settle = false;
    add_open(program, bundle, open_request);
    add_screenshot(program, bundle, screenshot_request);
    add_render(program, bundle, render_request, no_settle);
    add_response(program, bundle, response_request);
    program.add_subcommand("info", "List controls and presets")->callback([&] {
        print_info(Bundle(bundle));
    });
    program.fallthrough();
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return program.exit(error);
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
        std::fprintf(stderr, "brindle: %s\n", error.what());
        return error.exit_status;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "brindle: %s\n", error.what());
    }
    return 1;
}
