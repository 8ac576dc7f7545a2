// SPDX-License-Identifier: ISC
#include "host/audio_output.h"

#include <RtAudio.h>

#include <algorithm>
#include <chrono>
#include <thread>
#include <vector>

namespace brindle {
namespace {

constexpr unsigned kDeviceBlock = 512;
constexpr size_t kClockBlock = 512;

class Device : public AudioOutput {
  public:
    /// Throws RtAudioError where there is no device, or it refuses.
    Device(LivePlugin& plugin, double rate_hz) {
        // Its searches for devices are none of the user's business.
        audio_.showWarnings(false);
        if (audio_.getDeviceCount() == 0) throw RtAudioError("none found");
        RtAudio::StreamParameters output;
        output.deviceId = audio_.getDefaultOutputDevice();
        output.nChannels = LivePlugin::kOutputs;
        RtAudio::StreamOptions options;
        options.streamName = "Brindle Console EQ";
        unsigned frames = kDeviceBlock;
        audio_.openStream(&output, nullptr, RTAUDIO_FLOAT32, static_cast<unsigned>(rate_hz),
                          &frames, play, &plugin, &options);
        audio_.startStream();
        name_ = audio_.getDeviceInfo(output.deviceId).name;
    }

    [[nodiscard]] std::string name() const override { return name_; }

  private:
    static int play(void* out, void*, unsigned frames, double, RtAudioStreamStatus, void* plugin) {
        static_cast<LivePlugin*>(plugin)->play(static_cast<float*>(out), frames);
        return 0;
    }

    RtAudio audio_;  // its destructor ends the stream
    std::string name_;
};

class SilentClock : public AudioOutput {
  public:
    SilentClock(LivePlugin& plugin, double rate_hz)
        : thread_([&plugin, rate_hz](const std::stop_token& stop) { run(plugin, rate_hz, stop); }) {
    }

    [[nodiscard]] std::string name() const override { return ""; }

  private:
    static void run(LivePlugin& plugin, double rate_hz, const std::stop_token& stop) {
        using Clock = std::chrono::steady_clock;
        const auto period = std::chrono::duration_cast<Clock::duration>(
            std::chrono::duration<double>(static_cast<double>(kClockBlock) / rate_hz));
        std::vector<float> unheard(LivePlugin::kOutputs * kClockBlock);
        for (auto next = Clock::now(); !stop.stop_requested(); next += period) {
            plugin.play(unheard.data(), kClockBlock);
            // What a stalled machine has missed is not caught up.
            next = std::max(next, Clock::now() - period);
            std::this_thread::sleep_until(next + period);
        }
    }

    std::jthread thread_;
};

}  // namespace

std::unique_ptr<AudioOutput> start_audio(LivePlugin& plugin, double rate_hz, bool silent) {
    if (!silent) {
        try {
            return std::make_unique<Device>(plugin, rate_hz);
        } catch (const RtAudioError&) {
            // A machine without sound shows all the same what the plugin does.
        }
    }
    return std::make_unique<SilentClock>(plugin, rate_hz);
}

}  // namespace brindle
