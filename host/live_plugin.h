// SPDX-License-Identifier: ISC
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/bundle.h"
#include "host/message_ring.h"
#include "host/plugin.h"
#include "host/signal_source.h"

namespace brindle {

/// A plugin that plays a signal on the audio thread while the UI thread turns its controls. The
/// two exchange values and messages without locks.
class LivePlugin {
  public:
    /// Frames of the signal that are processed at a time, at most.
    static constexpr uint32_t kBlock = 1024;
    static constexpr int kOutputs = 2;

    /// `plugin` and `source` are borrowed; from now on they belong to the audio thread.
    LivePlugin(Bundle& bundle, Plugin& plugin, SignalSource& source);
    LivePlugin(const LivePlugin&) = delete;
    LivePlugin& operator=(const LivePlugin&) = delete;

    // UI thread
    /// A control's value, taken over by the next block. Ports that are no controls are passed over.
    void set(uint32_t port, float value);
    /// Value of a control input as set, of an output as of the latest block; 0 for other ports.
    [[nodiscard]] float get(uint32_t port) const;
    [[nodiscard]] bool is_control(uint32_t port) const;
    [[nodiscard]] uint32_t port_count() const { return static_cast<uint32_t>(ports_.size()); }
    /// Passes a message to the plugin's input for them. False where too many wait.
    bool send(const LV2_Atom& atom);
    /// Calls `take(port, atom)` for each message that the plugin has sent.
    template <typename Take>
    void take_messages(Take take) {
        while (from_plugin_.pop(take)) continue;
    }
    /// Gives the plugin the controls' latest values where no audio thread does so any more.
    void settle_controls() { apply_controls(); }

    // Audio thread
    /// The next `frames` of sound for two channels, interleaved. Real-time safe.
    void play(float* out, size_t frames);

  private:
    enum class Kind { kOther, kInput, kOutput };
    struct Port {
        Kind kind = Kind::kOther;
        std::atomic<float> value = 0.0f;
    };

    void apply_controls();
    void play_block(float* out, size_t frames);

    Plugin& plugin_;
    SignalSource& source_;
    std::vector<Port> ports_;
    MessageRing to_plugin_;
    MessageRing from_plugin_;
    std::vector<float> block_;
};

}  // namespace brindle
