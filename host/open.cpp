// SPDX-License-Identifier: ISC
#include "host/open.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <thread>

#include "host/audio_output.h"
#include "host/editor.h"
#include "host/interrupt.h"
#include "host/live_plugin.h"
#include "host/output_file.h"
#include "host/plugin.h"
#include "host/signal_source.h"
#include "host/state_file.h"
#include "host/top_window.h"

namespace brindle {
namespace {

constexpr PixelSize kSize = {1000, 600};

/// The file for the final state, made at the start so that a wrong path shows at once. Only the
/// state that was loaded may be overwritten.
std::unique_ptr<OutputFile> state_output(const OpenRequest& request) {
    if (request.save.empty()) return nullptr;
    const bool is_loaded = request.save == request.settings.state;
    return std::make_unique<OutputFile>(request.save,
                                        is_loaded ? OutputFile::kReplace : OutputFile::kRefuse);
}

void tell(const OpenRequest& request, const SignalSource& source, const AudioOutput& audio) {
    const std::string built_in = request.signal == "sweep" ? "a sweep" : "pink noise";
    const std::string& signal = request.input.empty() ? built_in : request.input;
    std::printf("Playing %s (%s, %.0f Hz) %s. Close the window to end.\n", signal.c_str(),
                source.channels() == 1 ? "mono" : "stereo", source.rate(), audio.place().c_str());
    std::fflush(stdout);
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

}  // namespace

void open_editor(Bundle& bundle, const OpenRequest& request) {
    const ControlValues values = request.settings.resolve(bundle);
    const std::unique_ptr<SignalSource> source = make_source(request.input, request.signal);
    TopWindow window("Brindle Console EQ", kSize, TopWindow::kManaged);
    const std::unique_ptr<OutputFile> state = state_output(request);
    Plugin plugin(bundle, source->channels(), source->rate(), LivePlugin::kBlock);
    plugin.set(values);
    LivePlugin live(bundle, plugin, *source);
    {
        Editor editor(bundle, live, window, source->channels(), source->rate());
        window.show();
        const std::unique_ptr<AudioOutput> audio =
            start_audio(live, source->rate(), request.silent);
        tell(request, *source, *audio);
        run_until_closed(editor, window);
    }
    live.settle_controls();
    if (state) {
        save_state(bundle, plugin, *state);
        std::printf("Wrote %s.\n", request.save.c_str());
    }
}

}  // namespace brindle
