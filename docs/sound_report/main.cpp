// SPDX-License-Identifier: ISC
// Writes docs/sound.md and its plots: what the built plugin does to sound, run as a host runs it.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>

#include "docs/sound_report/rig.h"
#include "host/bundle.h"
#include "host/output_file.h"

namespace {

constexpr const char* kIntroduction =
    R"(# What it does to sound

All figures and plots here are made in one run of

    cmake --preset release && cmake --build build --target sound_report

which loads the built plugin as a host does and measures what comes out, at sample rates of
44.1, 48 and 96 kHz. What is not flattering stands here like the rest. Levels in dBFS count
from a sine at full scale. Each part ends with a way to check it with tools that are not ours.

)";

void write_report(const std::string& bundle_path, const std::string& docs) {
    using namespace brindle;
    Bundle bundle(bundle_path);
    const std::string folder = docs + "/sound/";
    std::filesystem::create_directories(folder);
    const std::string report = kIntroduction + report_magnitude(bundle, folder) +
                               report_delay(bundle, folder) + report_noise(bundle) +
                               report_glides(bundle) + report_meters(bundle) +
                               report_analyser(bundle);
    OutputFile file(docs + "/sound.md", OutputFile::kReplace);
    file.write(report.data(), report.size());
    file.commit();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: make_sound_report BUNDLE DOCS\n");
        return 1;
    }
    try {
        write_report(argv[1], argv[2]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make_sound_report: %s\n", error.what());
        return 1;
    }
    return 0;
}
