// SPDX-License-Identifier: ISC
#pragma once

#include <memory>
#include <string>

#include "host/live_plugin.h"

namespace brindle {

/// Something that asks a live plugin for its sound at the speed of hearing, on a thread of its own,
/// from construction to destruction.
class AudioOutput {
  public:
    AudioOutput() = default;
    AudioOutput(const AudioOutput&) = delete;
    AudioOutput& operator=(const AudioOutput&) = delete;
    virtual ~AudioOutput() = default;

    /// Where the sound goes, as it is told to the user: "on" a device, or why it goes nowhere.
    [[nodiscard]] virtual std::string place() const = 0;
};

/// Plays on the system's sound device. Where there is none that takes `rate_hz` [Hz], or `silent`
/// is asked for, a clock takes its place and nothing is heard. `plugin` outlives it.
std::unique_ptr<AudioOutput> start_audio(LivePlugin& plugin, double rate_hz, bool silent);

}  // namespace brindle
