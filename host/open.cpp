// SPDX-License-Identifier: ISC
#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
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
    std::string file;             ///< sound file; empty for a built-in signal
    std::string signal = "pink";  ///< or "sweep"
    bool live = false;            ///< play the sound device's input instead
    std::string device;           ///< part of its name; empty for the default
    unsigned rate_hz = 0;         ///< 0 for the device's own
    bool no_editor = false;
    Settings settings;
    std::string save;     ///< LV2 state to write at the end; empty for none
    bool silent = false;  ///< use no sound device
    bool list_devices = false;
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

std::string played(const OpenRequest& request) {
    if (request.live) return "the input";
    if (!request.file.empty()) return request.file;
    return request.signal == "sweep" ? "a sweep" : "pink noise";
}

void tell(const OpenRequest& request, const SignalSource& source, const AudioOutput& audio,
          bool has_window) {
    const std::string form =
        formatted("(%s, %.0f Hz) ", source.channels() == 1 ? "mono" : "stereo", source.rate());
    say("Playing %s %s%s. %s to end.\n", played(request).c_str(), request.live ? "" : form.c_str(),
        audio.place().c_str(), has_window ? "Close the window" : "Interrupt it (Ctrl-C)");
}

/// Runs the editor, if there is one, until it is closed, a request to stop comes or the sound
/// device is lost.
void run_until_closed(Editor* editor, const TopWindow* window, AudioOutput& audio) {
    using Clock = std::chrono::steady_clock;
    constexpr auto kPeriod = std::chrono::nanoseconds(std::chrono::seconds(1)) / Editor::kTicks;
    auto next = Clock::now();
    while (!is_interrupted() && audio.is_alive()) {
        if (editor != nullptr && (!editor->tick() || window->is_closed())) break;
        // On a slow machine, do not catch up with missed frames.
        next = std::max(next + kPeriod, Clock::now());
        std::this_thread::sleep_until(next);
    }
}

void open_plugin(const ProgramOptions& options, const OpenRequest& request) {
    Bundle bundle(options.bundle);
    const ControlValues values = request.settings.resolve(bundle);
    std::optional<DuplexDevice> device;
    if (request.live) device = find_duplex_device(request.device, request.rate_hz);
    const std::unique_ptr<SignalSource> source =
        device ? std::make_unique<DeviceInput>(*device) : make_source(request.file, request.signal);
    const std::unique_ptr<OutputFile> state = state_output(request, options.existing());
    const bool has_window = !request.no_editor && (!request.live || TopWindow::has_room({0, 0}));
    std::optional<TopWindow> window;
    if (has_window) window.emplace(kProductName, kSize, TopWindow::kManaged);
    Plugin plugin(bundle, source->channels(), source->rate(), LivePlugin::kBlock);
    plugin.set(values);
    LivePlugin live(bundle, plugin, *source);
    std::unique_ptr<AudioOutput> audio;
    const auto finish = [&] {
        if (request.live && audio) say("Xruns: %lld.\n", static_cast<long long>(audio->xruns()));
        audio.reset();
        live.settle_controls();
        if (!state) return;
        save_state(bundle, plugin, *state);
        say_written(request.save);
    };
    bool is_lost = false;
    {
        std::optional<Editor> editor;
        if (window) {
            editor.emplace(bundle, live, *window, source->channels(), source->rate());
            window->show();
            TopWindow::on_server_lost([&finish] {
                warn("the connection to the display was lost.");
                try {
                    finish();
                } catch (const UserError& error) {
                    warn("%s", error.what());
                }
            });
        }
        audio = device ? start_duplex(*device, live, static_cast<DeviceInput&>(*source))
                       : start_audio(live, source->rate(), request.silent);
        tell(request, *source, *audio, has_window);
        run_until_closed(editor ? &*editor : nullptr, window ? &*window : nullptr, *audio);
        is_lost = !audio->is_alive();
    }
    finish();
    if (is_lost) throw UserError("the sound device was lost.");
}

}  // namespace

void add_open(CLI::App& program, const ProgramOptions& options) {
    CLI::App* command =
        program.add_subcommand("open", "Open the editor in a window over running audio");
    const auto request = std::make_shared<OpenRequest>();
    CLI::Option* file =
        command->add_option("FILE", request->file, "Sound file to play over and over");
    CLI::Option* signal =
        command->add_option("--signal", request->signal, "What is played where no file is given")
            ->check(CLI::IsMember({"pink", "sweep"}))
            ->capture_default_str()
            ->excludes(file);
    CLI::Option* silent = command->add_flag("--silent", request->silent, "Use no sound device");
    CLI::Option* live = command->add_flag("--input", request->live, "Play the sound device's input")
                            ->excludes(file)
                            ->excludes(signal)
                            ->excludes(silent);
    command->add_option("--device", request->device, "The device, by a part of its name")
        ->needs(live);
    command->add_option("--rate", request->rate_hz, "The device's sample rate [Hz]")->needs(live);
    command->add_flag("--list-devices", request->list_devices, "List sound devices and end");
    command->add_flag("--no-editor", request->no_editor, "Open no window; an interruption ends it");
    add_settings(*command, request->settings);
    command->add_option("--save", request->save, "LV2 state to write at the end");
    command->callback([request, &options] {
        if (!request->list_devices) return open_plugin(options, *request);
        const std::string devices = device_list();
        if (devices.empty()) throw UserError("there is no sound device.");
        say("%s", devices.c_str());
    });
}

}  // namespace brindle
