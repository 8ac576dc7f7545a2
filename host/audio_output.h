// SPDX-License-Identifier: ISC
#pragma once

#include <RtAudio.h>

#include <cstdint>
#include <memory>
#include <string>

#include "host/live_plugin.h"
#include "host/signal_source.h"

namespace brindle {

/// Runs a live plugin in real time on a thread of its own, from construction to destruction.
class AudioOutput {
  public:
    AudioOutput() = default;
    AudioOutput(const AudioOutput&) = delete;
    AudioOutput& operator=(const AudioOutput&) = delete;
    virtual ~AudioOutput() = default;

    /// Where the sound goes, for the user to read: "on" a device, or why it is not heard.
    [[nodiscard]] virtual std::string place() const = 0;
    /// Gaps in the sound so far, as the sound system reports them.
    [[nodiscard]] virtual int64_t xruns() const { return 0; }
    /// False when the device has asked for no sound for two seconds. UI thread, a few times a
    /// second.
    [[nodiscard]] virtual bool is_alive() { return true; }
};

/// Plays on the system's sound device. If `silent` is set or no device accepts `rate_hz`, a clock
/// runs the plugin unheard. `plugin` must outlive the result.
std::unique_ptr<AudioOutput> start_audio(LivePlugin& plugin, double rate_hz, bool silent);

/// A sound device with inputs and outputs.
struct DuplexDevice {
    RtAudio::Api api;
    unsigned input;   ///< number within the sound system
    unsigned output;  ///< the same device for most
    std::string name;
    int channels;  ///< 1 or 2
    unsigned rate_hz;
};

/// The first device whose name contains `name`, or for an empty name the sound system's default,
/// at `rate_hz`, or for 0 at its own rate. Throws UserError if there is none.
DuplexDevice find_duplex_device(const std::string& name, unsigned rate_hz);

/// All devices of all sound systems, a line each.
std::string device_list();

/// What comes into a sound device. Audio thread.
class DeviceInput : public SignalSource {
  public:
    explicit DeviceInput(const DuplexDevice& device)
        : channels_(device.channels), rate_(device.rate_hz) {}

    [[nodiscard]] int channels() const override { return channels_; }
    [[nodiscard]] double rate() const override { return rate_; }
    /// Lends the device's samples for the reads that follow.
    void lend(const float* samples, size_t frames);
    void read(float* samples, size_t frames) override;

  private:
    int channels_;
    double rate_;
    const float* next_ = nullptr;
    size_t left_ = 0;  ///< samples
};

/// Plays what comes into a device, through the plugin, to its output. `plugin` reads `input`; both
/// must outlive the result. Throws UserError if the device refuses.
std::unique_ptr<AudioOutput> start_duplex(const DuplexDevice& device, LivePlugin& plugin,
                                          DeviceInput& input);

}  // namespace brindle
