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

/// A plugin that processes a signal on the audio thread while the UI thread moves its controls.
/// The two exchange values and messages without locks.
class LivePlugin {
  public:
    /// Largest number of frames processed at a time.
    static constexpr uint32_t kBlock = 1024;
    static constexpr int kOutputs = 2;

    /// Borrows `plugin` and `source`; from now on they belong to the audio thread.
    LivePlugin(Bundle& bundle, Plugin& plugin, SignalSource& source);
    LivePlugin(const LivePlugin&) = delete;
    LivePlugin& operator=(const LivePlugin&) = delete;

    // UI thread
    /// Sets a control's value from the next block on. Ignores ports that are no controls.
    void set(uint32_t port, float value);
    /// The value of a control, or of a meter after the latest block; 0 for other ports.
    [[nodiscard]] float get(uint32_t port) const;
    [[nodiscard]] bool is_control(uint32_t port) const;
    [[nodiscard]] uint32_t port_count() const { return static_cast<uint32_t>(ports_.size()); }
    /// Sends a message to the plugin. False if too many are waiting.
    bool send(const LV2_Atom& atom);
    /// Calls `use(port, atom)` for each message that the plugin has sent.
    template <typename Use>
    void read_messages(Use use) {
        while (from_plugin_.pop(use)) continue;
    }
    /// Gives the plugin the controls' latest values after the audio thread has ended.
    void settle_controls() { apply_controls(); }

    // Audio thread
    /// Writes the next `frames`, interleaved in two channels. Real-time safe.
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
