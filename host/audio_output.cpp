// SPDX-License-Identifier: ISC
#include "host/audio_output.h"

#include <RtAudio.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "contract/brindle.h"

namespace brindle {
namespace {

constexpr unsigned kDeviceBlock = 512;
constexpr size_t kClockBlock = 512;

class Device : public AudioOutput {
  public:
    /// Throws RtAudioError if there is no device or it refuses.
    Device(RtAudio::Api api, LivePlugin& plugin, double rate_hz) : audio_(api) {
        audio_.showWarnings(false);
        if (audio_.getDeviceCount() == 0) {
            throw RtAudioError("none found", RtAudioError::NO_DEVICES_FOUND);
        }
        RtAudio::StreamParameters output;
        output.deviceId = audio_.getDefaultOutputDevice();
        output.nChannels = LivePlugin::kOutputs;
        RtAudio::StreamOptions options;
        options.streamName = kProductName;
        unsigned frames = kDeviceBlock;
        audio_.openStream(&output, nullptr, RTAUDIO_FLOAT32, static_cast<unsigned>(rate_hz),
                          &frames, play, &plugin, &options);
        audio_.startStream();
        name_ = audio_.getDeviceInfo(output.deviceId).name;
    }

    [[nodiscard]] std::string place() const override { return "on " + name_; }

  private:
    static int play(void* out, void*, unsigned frames, double, RtAudioStreamStatus, void* plugin) {
        static_cast<LivePlugin*>(plugin)->play(static_cast<float*>(out), frames);
        return 0;
    }

    RtAudio audio_;
    std::string name_;
};

class SilentClock : public AudioOutput {
  public:
    SilentClock(LivePlugin& plugin, double rate_hz, std::string place)
        : place_(std::move(place)),
          thread_([&plugin, rate_hz](const std::stop_token& stop) { run(plugin, rate_hz, stop); }) {
    }

    [[nodiscard]] std::string place() const override { return place_; }

  private:
    static void run(LivePlugin& plugin, double rate_hz, const std::stop_token& stop) {
        using Clock = std::chrono::steady_clock;
        const auto period = std::chrono::duration_cast<Clock::duration>(
            std::chrono::duration<double>(static_cast<double>(kClockBlock) / rate_hz));
        std::vector<float> unheard(LivePlugin::kOutputs * kClockBlock);
        for (auto next = Clock::now(); !stop.stop_requested(); next += period) {
            plugin.play(unheard.data(), kClockBlock);
            // After a stall, do not catch up.
            next = std::max(next, Clock::now() - period);
            std::this_thread::sleep_until(next + period);
        }
    }

    std::string place_;
    std::jthread thread_;
};

/// Tries each sound system in turn: one may refuse a rate that another accepts. Null if none plays;
/// then `found` tells whether there is a device.
std::unique_ptr<AudioOutput> start_device(LivePlugin& plugin, double rate_hz, bool& found) {
    std::vector<RtAudio::Api> apis;
    RtAudio::getCompiledApi(apis);
    for (const RtAudio::Api api : apis) {
        try {
            return std::make_unique<Device>(api, plugin, rate_hz);
        } catch (const RtAudioError& error) {
            found = found || error.getType() != RtAudioError::NO_DEVICES_FOUND;
        }
    }
    return nullptr;
}

}  // namespace

std::unique_ptr<AudioOutput> start_audio(LivePlugin& plugin, double rate_hz, bool silent) {
    if (silent) return std::make_unique<SilentClock>(plugin, rate_hz, "without a sound device");
    bool found = false;
    if (auto device = start_device(plugin, rate_hz, found)) return device;
    const auto rate = std::to_string(std::lround(rate_hz));
    return std::make_unique<SilentClock>(
        plugin, rate_hz,
        "in silence, as " +
            (found ? "no sound device takes " + rate + " Hz" : "there is no sound device"));
}

}  // namespace brindle
