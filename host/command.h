// SPDX-License-Identifier: ISC
/// The program's commands: each adds itself to the command line in a source file of its name.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "host/output_file.h"
#include "host/settings.h"

namespace brindle {

/// Options of the whole program, before or after a command's name.
struct ProgramOptions {
    std::string bundle;  ///< folder; empty for the built or installed one
    bool force = false;
    bool verbose = false;

    [[nodiscard]] OutputFile::Existing existing() const {
        return force ? OutputFile::kReplace : OutputFile::kRefuse;
    }
};

// Each adds a command, which runs when the command line has been parsed; `options` must outlive it.
void add_doctor(CLI::App& program, const ProgramOptions& options);
void add_import(CLI::App& program, const ProgramOptions& options);
void add_info(CLI::App& program, const ProgramOptions& options);
void add_open(CLI::App& program, const ProgramOptions& options);
void add_pipewire(CLI::App& program, const ProgramOptions& options);
void add_render(CLI::App& program, const ProgramOptions& options);
void add_response(CLI::App& program, const ProgramOptions& options);
void add_screenshot(CLI::App& program, const ProgramOptions& options);

}  // namespace brindle
