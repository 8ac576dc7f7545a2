// SPDX-License-Identifier: ISC
#pragma once

#include <memory>
#include <string>

#include "host/live_plugin.h"

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
};

/// Plays on the system's sound device. If `silent` is set or no device accepts `rate_hz`, a clock
/// runs the plugin unheard. `plugin` must outlive the result.
std::unique_ptr<AudioOutput> start_audio(LivePlugin& plugin, double rate_hz, bool silent);

}  // namespace brindle
