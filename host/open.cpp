// SPDX-License-Identifier: ISC
#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "contract/brindle.h"
#include "host/audio_output.h"
#include "host/bundle.h"
#include "host/command.h"
#include "host/console.h"
#include "host/editor.h"
#include "host/interrupt.h"
#include "host/live_plugin.h"
#include "host/output_file.h"
#include "host/plugin.h"
#include "host/signal_source.h"
#include "host/state_file.h"
#include "host/top_window.h"
#include "host/user_error.h"

namespace brindle {
namespace {

struct OpenRequest {
    std::string input;            ///< sound file; empty for a built-in signal
    std::string signal = "pink";  ///< or "sweep"
    Settings settings;
    std::string save;     ///< LV2 state to write at the end; empty for none
    bool silent = false;  ///< use no sound device
};

constexpr PixelSize kSize = {kEditorWidthPx, kEditorHeightPx};

/// The file for the final state, made at the start so that a wrong path shows at once. Only the
/// state that was loaded may be overwritten.
std::unique_ptr<OutputFile> state_output(const OpenRequest& request,
                                         OutputFile::Existing existing) {
    if (request.save.empty()) return nullptr;
    const bool is_loaded = request.save == request.settings.state;
    return std::make_unique<OutputFile>(request.save, is_loaded ? OutputFile::kReplace : existing);
}

void tell(const OpenRequest& request, const SignalSource& source, const AudioOutput& audio) {
    const std::string built_in = request.signal == "sweep" ? "a sweep" : "pink noise";
    const std::string& signal = request.input.empty() ? built_in : request.input;
    say("Playing %s (%s, %.0f Hz) %s. Close the window to end.\n", signal.c_str(),
        source.channels() == 1 ? "mono" : "stereo", source.rate(), audio.place().c_str());
}

void run_until_closed(Editor& editor, const TopWindow& window) {
    using Clock = std::chrono::steady_clock;
    constexpr auto kPeriod = std::chrono::nanoseconds(std::chrono::seconds(1)) / Editor::kTicks;
    auto next = Clock::now();
    while (editor.tick() && !window.is_closed() && !is_interrupted()) {
        // On a slow machine, do not catch up with missed frames.
        next = std::max(next + kPeriod, Clock::now());
        std::this_thread::sleep_until(next);
    }
}

void open_editor(const ProgramOptions& options, const OpenRequest& request) {
    Bundle bundle(options.bundle);
    const ControlValues values = request.settings.resolve(bundle);
    const std::unique_ptr<SignalSource> source = make_source(request.input, request.signal);
    const std::unique_ptr<OutputFile> state = state_output(request, options.existing());
    TopWindow window(kProductName, kSize, TopWindow::kManaged);
    Plugin plugin(bundle, source->channels(), source->rate(), LivePlugin::kBlock);
    plugin.set(values);
    LivePlugin live(bundle, plugin, *source);
    std::unique_ptr<AudioOutput> audio;
    const auto finish = [&] {
        audio.reset();
        live.settle_controls();
        if (!state) return;
        save_state(bundle, plugin, *state);
        say_written(request.save);
    };
    {
        Editor editor(bundle, live, window, source->channels(), source->rate());
        window.show();
        audio = start_audio(live, source->rate(), request.silent);
        TopWindow::on_server_lost([&finish] {
            warn("the connection to the display was lost.");
            try {
                finish();
            } catch (const UserError& error) {
                warn("%s", error.what());
            }
        });
        tell(request, *source, *audio);
        run_until_closed(editor, window);
    }
    finish();
}

}  // namespace

void add_open(CLI::App& program, const ProgramOptions& options) {
    CLI::App* command =
        program.add_subcommand("open", "Open the editor in a window over running audio");
    const auto request = std::make_shared<OpenRequest>();
    CLI::Option* input =
        command->add_option("FILE", request->input, "Sound file to play over and over");
    command->add_option("--signal", request->signal, "What is played where no file is given")
        ->check(CLI::IsMember({"pink", "sweep"}))
        ->capture_default_str()
        ->excludes(input);
    add_settings(*command, request->settings);
    command->add_option("--save", request->save, "LV2 state to write when the window is closed");
    command->add_flag("--silent", request->silent, "Use no sound device");
    command->callback([request, &options] { open_editor(options, *request); });
}

}  // namespace brindle
