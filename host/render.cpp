// SPDX-License-Identifier: ISC
#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <thread>
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

namespace fs = std::filesystem;

struct RenderRequest {
    std::vector<std::string> files;
    std::string folder;  ///< for all files; empty for one file to another
    Settings settings;
    uint32_t block = 1024;   ///< frames that the plugin gets at a time
    bool no_settle = false;  ///< start while the controls glide
};

/// A sound file and what is made of it.
struct Job {
    std::string input;
    std::string output;
};

void warn_of_clipping(const std::string& output, const AudioWriter& writer) {
    if (writer.clipped() == 0) return;
    warn(
        "%s: %lld samples lay above full scale and were clipped; lower the trim by %.1f dB to "
        "avoid that.",
        output.c_str(), static_cast<long long>(writer.clipped()),
        std::ceil(200.0 * std::log10(static_cast<double>(writer.peak()))) / 10.0);
}

/// What commands and threads share while files are rendered.
struct Rendering {
    const ProgramOptions& options;
    const RenderRequest& request;
    Progress& progress;
};

/// Renders a file and returns a description of the sound. Throws UserError, and then leaves no
/// output.
std::string render(Bundle& bundle, const ControlValues& values, const Job& job,
                   const Rendering& rendering) {
    const uint32_t block = rendering.request.block;
    AudioReader reader(job.input);
    const SF_INFO& info = reader.info();
    if (info.channels > 2) {
        throw UserError("cannot process " + job.input + ": it has " +
                        std::to_string(info.channels) + " channels, the plugin takes one or two.");
    }
    output_format(job.output, info);  // refuses before there is a file
    if (reader.is_cut_short()) {
        rendering.progress.erase();
        warn("%s ends before its header says; what there is of it is rendered.", job.input.c_str());
    }
    OutputFile output(job.output, rendering.options.existing());
    AudioWriter writer(output, reader);
    Plugin plugin(bundle, info.channels, info.samplerate, block);
    plugin.set(values);
    if (!rendering.request.no_settle) plugin.settle();

    std::vector<float> audio(size_t{block} * static_cast<size_t>(info.channels));
    size_t done = 0;
    while (const size_t count = reader.read(audio.data(), block)) {
        throw_if_interrupted();
        plugin.process(audio.data(), audio.data(), count);
        writer.write(audio.data(), count);
        rendering.progress.advance(static_cast<int64_t>(count));
        done += count;
    }
    writer.close();
    output.commit();
    rendering.progress.erase();
    warn_of_clipping(job.output, writer);
    const double peak_db = 20.0 * std::log10(static_cast<double>(writer.peak()) + 1e-10);
    return formatted("%.1f s, %s, %d Hz, peak %.1f dB", static_cast<double>(done) / info.samplerate,
                     info.channels == 1 ? "mono" : "stereo", info.samplerate, peak_db);
}

/// The frames of all files that can be read; the others fail later, each with its reason.
int64_t frames_of(const std::vector<Job>& jobs) {
    int64_t frames = 0;
    for (const Job& job : jobs) {
        try {
            if (job.input != OutputFile::kStream) frames += AudioReader(job.input).info().frames;
        } catch (const UserError&) {
            continue;
        }
    }
    return frames;
}

void render_one(const ProgramOptions& options, const RenderRequest& request) {
    if (request.files.size() != 2) {
        throw CLI::ArgumentMismatch("IN and OUT are required, or --into and files");
    }
    Bundle bundle(options.bundle);
    const ControlValues values = request.settings.resolve(bundle);
    const Job job = {request.files[0], request.files[1]};
    Progress progress("Rendering", frames_of({job}));
    const std::string sound = render(bundle, values, job, {options, request, progress});
    if (job.output == OutputFile::kStream) return;
    say("Wrote %s (%s).\n", job.output.c_str(), sound.c_str());
}

std::vector<Job> jobs_into(const RenderRequest& request) {
    std::vector<Job> jobs;
    std::map<std::string, std::string> inputs;
    for (const std::string& input : request.files) {
        const std::string output = fs::path(request.folder) / fs::path(input).filename();
        const auto [other, is_new] = inputs.try_emplace(output, input);
        if (!is_new) {
            throw UserError(formatted("%s and %s would both become %s.", other->second.c_str(),
                                      input.c_str(), output.c_str()));
        }
        jobs.push_back({input, output});
    }
    return jobs;
}

/// Renders files side by side, each thread with a bundle of its own: lilv is not made for several.
void render_into(const ProgramOptions& options, const RenderRequest& request) {
    const std::vector<Job> jobs = jobs_into(request);
    const size_t cores = std::max(1u, std::thread::hardware_concurrency());
    std::deque<Bundle> bundles;
    while (bundles.size() < std::min(cores, jobs.size())) bundles.emplace_back(options.bundle);
    const ControlValues values = request.settings.resolve(bundles.front());
    std::error_code error;
    const bool is_new = fs::create_directory(request.folder, error);
    if (error) throw file_error("make", request.folder, error.value());

    Progress progress("Rendering", frames_of(jobs));
    std::atomic<size_t> next = 0;
    std::atomic<size_t> written = 0;
    const auto work = [&](Bundle& bundle) {
        for (size_t i = next++; i < jobs.size() && !is_interrupted(); i = next++) {
            try {
                render(bundle, values, jobs[i], {options, request, progress});
                ++written;
            } catch (const Interrupted&) {
                return;
            } catch (const std::exception& reason) {
                progress.erase();
                warn("%s", reason.what());
            }
        }
    };
    std::vector<std::jthread> threads;
    threads.reserve(bundles.size());
    for (Bundle& bundle : bundles) threads.emplace_back(work, std::ref(bundle));
    threads.clear();  // waits for them
    progress.erase();
    if (is_new && written == 0) fs::remove(request.folder, error);
    throw_if_interrupted();
    if (written == 0) throw UserError("no file was rendered.");
    say("Wrote %zu of %zu files into %s.\n", written.load(), jobs.size(), request.folder.c_str());
    if (written < jobs.size()) {
        throw UserError(std::to_string(jobs.size() - written) + " of " +
                        std::to_string(jobs.size()) + " files could not be rendered.");
    }
}

}  // namespace

void add_render(CLI::App& program, const ProgramOptions& options) {
    CLI::App* command = program.add_subcommand("render", "Run sound files through the plugin");
    const auto request = std::make_shared<RenderRequest>();
    command
        ->add_option("FILE", request->files,
                     "IN and OUT, mono or stereo, - for standard input and output; or, after "
                     "--into, any number of files to read")
        ->required();
    command->add_option("--into", request->folder,
                        "Folder for files of the same names and formats");
    add_settings(*command, request->settings);
    command->add_option("--block", request->block, "Frames that the plugin gets at a time")
        ->check(CLI::Range(1, 65536))
        ->capture_default_str();
    command->add_flag("--no-settle", request->no_settle,
                      "Start with the first sample, while the controls still glide");
    command->callback([request, &options] {
        request->folder.empty() ? render_one(options, *request) : render_into(options, *request);
    });
}

}  // namespace brindle
