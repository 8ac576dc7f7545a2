// SPDX-License-Identifier: ISC
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/audio_file.h"
#include "host/bundle.h"
#include "host/command.h"
#include "host/console.h"
#include "host/interrupt.h"
#include "host/output_file.h"
#include "host/plugin.h"
#include "host/progress.h"
#include "host/user_error.h"

namespace brindle {
namespace {

struct RenderRequest {
    std::string input;
    std::string output;
    Settings settings;
    uint32_t block = 1024;   ///< frames that the plugin gets at a time
    bool no_settle = false;  ///< start while the controls glide
};

void report(const RenderRequest& request, const SF_INFO& info, int64_t frames,
            const AudioWriter& writer) {
    if (request.output == OutputFile::kStream) return;
    say("Wrote %s (%.1f s, %s, %d Hz, peak %.1f dB).\n", request.output.c_str(),
        static_cast<double>(frames) / info.samplerate, info.channels == 1 ? "mono" : "stereo",
        info.samplerate, 20.0 * std::log10(static_cast<double>(writer.peak()) + 1e-10));
}

void warn_of_clipping(const AudioWriter& writer) {
    if (writer.clipped() == 0) return;
    warn(
        "%lld samples lay above full scale and were clipped; lower the trim by %.1f dB to avoid "
        "that.",
        static_cast<long long>(writer.clipped()),
        std::ceil(200.0 * std::log10(static_cast<double>(writer.peak()))) / 10.0);
}

void render(const ProgramOptions& options, const RenderRequest& request) {
    Bundle bundle(options.bundle);
    const ControlValues values = request.settings.resolve(bundle);
    AudioReader reader(request.input);
    const SF_INFO& info = reader.info();
    if (info.channels > 2) {
        throw UserError("cannot process " + request.input + ": it has " +
                        std::to_string(info.channels) + " channels, the plugin takes one or two.");
    }
    output_format(request.output, info);  // whether the target can hold it shows at once
    if (reader.is_cut_short()) {
        warn("%s ends before its header says; what there is of it is rendered.",
             request.input.c_str());
    }
    OutputFile output(request.output, options.existing());
    AudioWriter writer(output, reader);
    Plugin plugin(bundle, info.channels, info.samplerate, request.block);
    plugin.set(values);
    if (!request.no_settle) plugin.settle();

    Progress progress("Rendering", info.frames);
    std::vector<float> audio(size_t{request.block} * static_cast<size_t>(info.channels));
    int64_t done = 0;
    while (const size_t count = reader.read(audio.data(), request.block)) {
        throw_if_interrupted();
        plugin.process(audio.data(), audio.data(), count);
        writer.write(audio.data(), count);
        done += static_cast<int64_t>(count);
        progress.advance_to(done);
    }
    writer.close();
    output.commit();
    report(request, info, done, writer);
    warn_of_clipping(writer);
}

}  // namespace

void add_render(CLI::App& program, const ProgramOptions& options) {
    CLI::App* command = program.add_subcommand("render", "Run a sound file through the plugin");
    const auto request = std::make_shared<RenderRequest>();
    command->add_option("IN", request->input, "Sound file, mono or stereo, or - for standard input")
        ->required();
    command->add_option("OUT", request->output, "Sound file to write, or - for standard output")
        ->required();
    add_settings(*command, request->settings);
    command->add_option("--block", request->block, "Frames that the plugin gets at a time")
        ->check(CLI::Range(1, 65536))
        ->capture_default_str();
    command->add_flag("--no-settle", request->no_settle,
                      "Start with the first sample, while the controls still glide");
    command->callback([request, &options] { render(options, *request); });
}

}  // namespace brindle
