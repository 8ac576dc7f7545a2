// SPDX-License-Identifier: ISC
/// The definition of the equaliser: one plain loop over samples, with every rounding written out.
/// The product's run loop yields the same bits. Shares no code with the product and limits no
/// value: feed it finite values within the ports' ranges.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace brindle::reference {

/// One second-order section with the states of two channels.
struct Stage {
    int type = 0;
    double gain = 0.0, freq = 1000.0, q = 1.0;
    double gain_target = 0.0, freq_target = 1000.0, q_target = 1.0;
    double damping = -1.41213562;
    double dt = 0.0;
    double wet = 1.0, dry = 0.0;
    double b0 = 1.0, b1 = 0.0, b2 = 0.0, a1 = 0.0, a2 = 0.0;
    double s1[2] = {0.0, 0.0}, s2[2] = {0.0, 0.0};

    void design();
    float filter(float x, int channel);
};

class Engine {
  public:
    Engine(int channels, double rate);

    /// Value of each control port by its number; `run` writes the meters (53, 54).
    std::array<float, 55> port{};

    /// Processes a block; `in` and `out` hold `n` samples for each channel.
    void run(const std::vector<std::vector<float>>& in, std::vector<std::vector<float>>& out,
             int n);

  private:
    void read_controls();
    void control_tick();
    void apply_section(int section);
    void process_sample(const float* in, float* out);
    void meter_tick();

    int channels;
    double rate;
    int control_mask, meter_mask;
    int32_t noise_state = 1;
    float noise = 0.0f;
    uint32_t sample_counter = 0;
    float meter_decay, power_keep, power_take;
    float trim_gain = 1.0f;
    float in_power = 0.0f, out_power = 0.0f;
    bool section_on[2] = {false, false};
    int section_type[2] = {0, 0};
    float section_gain[2] = {0.0f, 0.0f};
    float section_freq[2] = {1000.0f, 1000.0f};
    float section_q[2] = {1.0f, 1.0f};
    bool band_on[8] = {};
    Stage chain[16];  // section A, section B, bands
};

}  // namespace brindle::reference
