// SPDX-License-Identifier: ISC
#include "host/audio_output.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "contract/brindle.h"
#include "host/console.h"
#include "host/rtaudio.h"
#include "host/user_error.h"

namespace brindle {
namespace {

constexpr unsigned kDeviceBlock = 512;
constexpr unsigned kDuplexBlock = 256;
constexpr size_t kClockBlock = 512;

struct NoDevice : std::runtime_error {
    NoDevice() : std::runtime_error("none found") {}
};

class Device : public AudioOutput {
  public:
    /// Plays on the default device. Throws NoDevice if there is none, another std::runtime_error if
    /// it refuses.
    Device(RtAudio::Api api, LivePlugin& plugin, double rate_hz)
        : plugin_(plugin), input_(nullptr), audio_(api) {
        audio_.showWarnings(false);
        if (audio_.getDeviceCount() == 0) throw NoDevice();
        const unsigned output = audio_.getDefaultOutputDevice();
        start(nullptr, output, static_cast<unsigned>(rate_hz), kDeviceBlock);
        place_ = "on " + audio_.getDeviceInfo(output).name;
    }

    /// Plays a device's input. Throws std::runtime_error if it refuses.
    Device(const DuplexDevice& device, LivePlugin& plugin, DeviceInput& input)
        : plugin_(plugin), input_(&input), audio_(device.api) {
        audio_.showWarnings(false);
        RtAudio::StreamParameters from;
        from.deviceId = device.input;
        from.nChannels = static_cast<unsigned>(device.channels);
        const unsigned block = start(&from, device.output, device.rate_hz, kDuplexBlock);
        const long latency = std::max(audio_.getStreamLatency(), static_cast<long>(block));
        place_ = formatted("(%s: %s, %s, %u Hz, blocks of %u frames, latency %.1f ms)",
                           RtAudio::getApiDisplayName(device.api).c_str(), device.name.c_str(),
                           device.channels == 1 ? "mono" : "stereo", device.rate_hz, block,
                           1000.0 * static_cast<double>(latency) / device.rate_hz);
    }

    [[nodiscard]] std::string place() const override { return place_; }
    [[nodiscard]] int64_t xruns() const override { return xruns_; }

    [[nodiscard]] bool is_alive() override {
        const auto now = std::chrono::steady_clock::now();
        const int64_t blocks = blocks_;
        if (std::exchange(seen_, blocks) != blocks) last_change_ = now;
        return now - last_change_ < std::chrono::seconds(2);
    }

  private:
    /// Returns the length of a block.
    unsigned start(RtAudio::StreamParameters* from, unsigned to, unsigned rate_hz, unsigned block) {
        RtAudio::StreamParameters output;
        output.deviceId = to;
        output.nChannels = LivePlugin::kOutputs;
        RtAudio::StreamOptions options;
        options.streamName = kProductName;
        checked(audio_, [&] {
            return audio_.openStream(&output, from, RTAUDIO_FLOAT32, rate_hz, &block, play, this,
                                     &options);
        });
        checked(audio_, [&] { return audio_.startStream(); });
        return block;
    }

    static int play(void* out, void* in, unsigned frames, double, RtAudioStreamStatus status,
                    void* self) {
        auto& device = *static_cast<Device*>(self);
        if (status != 0) ++device.xruns_;
        if (device.input_ != nullptr) device.input_->lend(static_cast<const float*>(in), frames);
        device.plugin_.play(static_cast<float*>(out), frames);
        ++device.blocks_;
        return 0;
    }

    LivePlugin& plugin_;
    DeviceInput* input_;
    std::string place_;
    std::atomic<int64_t> xruns_ = 0;
    std::atomic<int64_t> blocks_ = 0;
    int64_t seen_ = -1;  ///< value of blocks_
    std::chrono::steady_clock::time_point last_change_;
    RtAudio audio_;  // ends first
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

/// Calls `use(api, audio, id, info)` for each device of each sound system until it returns
/// true.
template <typename Use>
bool any_device(Use use) {
    std::vector<RtAudio::Api> apis;
    RtAudio::getCompiledApi(apis);
    for (const RtAudio::Api api : apis) {
        try {
            RtAudio audio(api);
            audio.showWarnings(false);
            for (const unsigned id : device_ids(audio)) {
                const RtAudio::DeviceInfo info = audio.getDeviceInfo(id);
                if (is_usable(info) && use(api, audio, id, info)) return true;
            }
        } catch (const std::runtime_error&) {
            continue;
        }
    }
    return false;
}

/// Tries each sound system in turn: one may refuse a rate that another accepts. Null if none plays;
/// then `found` tells whether there is a device.
std::unique_ptr<AudioOutput> start_device(LivePlugin& plugin, double rate_hz, bool& found) {
    std::vector<RtAudio::Api> apis;
    RtAudio::getCompiledApi(apis);
    for (const RtAudio::Api api : apis) {
        try {
            return std::make_unique<Device>(api, plugin, rate_hz);
        } catch (const NoDevice&) {
            continue;
        } catch (const std::runtime_error&) {
            found = true;
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

DuplexDevice find_duplex_device(const std::string& name, unsigned rate_hz) {
    DuplexDevice found = {};
    std::string refusal;
    const bool is_found = any_device(
        [&](RtAudio::Api api, RtAudio& audio, unsigned id, const RtAudio::DeviceInfo& info) {
            const bool is_wanted =
                name.empty() ? info.isDefaultOutput : info.name.find(name) != std::string::npos;
            if (!is_wanted || info.outputChannels < 2) return false;
            // Some sound systems list inputs and outputs apart.
            const unsigned input = info.inputChannels > 0 ? id : audio.getDefaultInputDevice();
            const RtAudio::DeviceInfo from = audio.getDeviceInfo(input);
            if (from.inputChannels == 0) return false;
            const unsigned rate = rate_hz != 0 ? rate_hz : info.preferredSampleRate;
            if (std::ranges::find(info.sampleRates, rate) == info.sampleRates.end()) {
                refusal = formatted("%s does not run at %u Hz, but at %u Hz.", info.name.c_str(),
                                    rate, info.preferredSampleRate);
                return false;
            }
            found = {api, input, id, info.name, from.inputChannels > 1 ? 2 : 1, rate};
            return true;
        });
    if (is_found) return found;
    if (!refusal.empty()) throw UserError(refusal);
    throw UserError(name.empty() ? "there is no sound device with input and output."
                                 : "there is no sound device \"" + name +
                                       "\" with input and output; --list-devices tells which.");
}

std::string device_list() {
    std::string list;
    any_device([&list](RtAudio::Api api, RtAudio&, unsigned, const RtAudio::DeviceInfo& info) {
        list += formatted("%-6s  %3u in  %3u out  %6u Hz  %s%s\n",
                          RtAudio::getApiDisplayName(api).c_str(), info.inputChannels,
                          info.outputChannels, info.preferredSampleRate, info.name.c_str(),
                          info.isDefaultOutput ? " (default)" : "");
        return false;
    });
    return list;
}

void DeviceInput::lend(const float* samples, size_t frames) {
    next_ = samples;
    left_ = samples == nullptr ? 0 : frames * static_cast<size_t>(channels_);
}

void DeviceInput::read(float* samples, size_t frames) {
    const size_t wanted = frames * static_cast<size_t>(channels_);
    const size_t count = std::min(wanted, left_);
    std::copy_n(next_, count, samples);
    std::fill_n(samples + count, wanted - count, 0.0f);
    next_ += count;
    left_ -= count;
}

std::unique_ptr<AudioOutput> start_duplex(const DuplexDevice& device, LivePlugin& plugin,
                                          DeviceInput& input) {
    try {
        return std::make_unique<Device>(device, plugin, input);
    } catch (const std::runtime_error& error) {
        throw UserError("cannot play on " + device.name + ": " + error.what());
    }
}

}  // namespace brindle
