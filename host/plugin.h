// SPDX-License-Identifier: ISC
#pragma once

#include <lilv/lilv.h>
#include <lv2/atom/atom.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "host/bundle.h"

namespace brindle {

/// A running instance of the plugin with its port buffers.
class Plugin {
  public:
    /// The variant for `channels` (1 or 2) at `rate` [Hz], controls at their defaults, with blocks
    /// of at most `block` frames. `bundle` must outlive it. Throws UserError if the library cannot
    /// be loaded or refuses.
    Plugin(Bundle& bundle, int channels, double rate, uint32_t block);
    ~Plugin();
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    [[nodiscard]] int channels() const { return channels_; }
    [[nodiscard]] double rate() const { return rate_; }

    /// Sets a control port's value from the next block on. `port` must be a control port.
    void set(uint32_t port, float value) { values_[port] = value; }
    void set(const ControlValues& values);
    [[nodiscard]] float get(uint32_t port) const { return values_[port]; }

    /// Sends a message to an atom input port with the next block. False if there is no such port
    /// or no room left. `atom` is followed by its body. Real-time safe.
    bool send(uint32_t port, const LV2_Atom& atom);
    /// Calls `sink(port, atom)` after each block for each message of an atom output port.
    using MessageSink = std::function<void(uint32_t port, const LV2_Atom& atom)>;
    void on_message(MessageSink sink) { message_sink_ = std::move(sink); }

    /// Processes interleaved audio of any length; `in` and `out` may be equal. Real-time safe.
    void process(const float* in, float* out, size_t frames);

    /// Processes silence until the plugin's glides have ended. A glide covers at least 2 % of the
    /// remaining way each 64 samples (128 at high rates). After 2^17 samples (2.7 s at 48 kHz),
    /// which are 1024 such steps or more, 1e-9 of the way is left.
    void settle();

    /// The controls as an LV2 state. UI thread, while no audio runs.
    [[nodiscard]] StatePtr state(Bundle& bundle) const;

  private:
    /// A buffer of whole 64-bit words for an atom port, as large as the bundle asks for.
    struct MessagePort {
        uint32_t index;
        bool is_input;
        std::vector<uint64_t> buffer;
        [[nodiscard]] LV2_Atom_Sequence* sequence() {
            return reinterpret_cast<LV2_Atom_Sequence*>(buffer.data());
        }
        /// Bytes after the sequence's header.
        [[nodiscard]] size_t capacity() const {
            return buffer.size() * sizeof(uint64_t) - sizeof(LV2_Atom);
        }
    };

    void connect_ports(const Bundle& bundle, const LilvPlugin* description);
    void clear_messages();
    void hand_over_messages();
    void run_block(const float* in, float* out, uint32_t frames);

    int channels_;
    double rate_;
    uint32_t block_;
    LV2_URID sequence_type_;
    LV2_URID chunk_type_;
    LV2_URID float_type_;
    InstancePtr instance_;
    std::vector<float> values_;  ///< by port number, 0 for ports without a value
    std::vector<MessagePort> message_ports_;
    MessageSink message_sink_;
    std::vector<std::vector<float>> inputs_;  ///< by channel, `block_` frames each
    std::vector<std::vector<float>> outputs_;
};

}  // namespace brindle
