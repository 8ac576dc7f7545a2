// SPDX-License-Identifier: ISC
/// The built plugin, loaded and run like in a host, through its library's entry point only.
#pragma once

#include <lv2/atom/atom.h>
#include <lv2/core/lv2.h>

#include <array>
#include <cstdint>
#include <vector>

#include "tests/support/urid_map.h"

namespace brindle::test {

/// One vector of samples for each channel.
using Audio = std::vector<std::vector<float>>;

/// Noise within ±`peak`, different in each channel and for each seed.
Audio noise(int channels, size_t n, uint32_t seed, float peak = 1.0f);

/// A descriptor of the plugin's library, which is loaded on first use; null if there is none.
const LV2_Descriptor* descriptor(uint32_t index);

/// An instance with all ports connected. Controls start at 0, so everything is off.
class PluginHost {
  public:
    /// `channels` 1 or 2; `rate` in Hz.
    PluginHost(int channels, double rate);
    ~PluginHost();
    PluginHost(const PluginHost&) = delete;
    PluginHost& operator=(const PluginHost&) = delete;

    /// Value of a control port, 2 to 54.
    float& port(uint32_t number) { return ports_[number]; }
    /// Sets a strip's controls and switches it on.
    void set_strip(int strip, int type, float gain_db, float freq_hz, float q);

    /// Processes `in` in blocks of `block` samples, through the host's own buffers.
    Audio process(const Audio& in, uint32_t block = 1024);
    /// Processes silence until all glides have ended.
    void settle();
    /// The first channel's impulse response of `n` samples, after the glides have ended.
    std::vector<double> impulse_response(size_t n);

    /// Writes a request of the editor to the control port.
    void send_request(const char* type);
    /// States the notify port's capacity, as before each block.
    void make_room();
    /// Deactivates the instance and activates it again.
    void restart();

    /// The raw calls, for hosts that misbehave.
    void connect(uint32_t number, void* data) { descriptor_->connect_port(handle_, number, data); }
    void run(uint32_t n) { descriptor_->run(handle_, n); }
    int channels() const { return channels_; }
    double rate() const { return rate_; }
    UridMap& map() { return map_; }

    /// The buffers of ports 0 and 1; the host states `notify_capacity` before each processed block.
    alignas(8) std::array<uint8_t, 8192> control{};
    alignas(8) std::array<uint8_t, 8192> notify{};
    uint32_t notify_capacity = 8192 - 8;

  private:
    int channels_;
    double rate_;
    UridMap map_;
    std::array<float, 55> ports_{};
    const LV2_Descriptor* descriptor_;
    LV2_Handle handle_;
};

/// Gain in dB of an impulse response at `hz`.
double gain_db(const std::vector<double>& response, double hz, double rate);

}  // namespace brindle::test
