// SPDX-License-Identifier: ISC
/// The definition of the equaliser: one plain loop over samples, with every rounding written out.
/// The product's run loop yields the same bits. Shares no code with the product and limits no
/// value: feed it finite values within the ports' ranges.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace brindle::reference {

inline constexpr double kPi = 3.14159265358979323846;

/// One second-order section with the states of two channels. Types are those of the bands.
struct Stage {
    int type = 0;
    double gain = 0.0, freq = 1000.0, q = 1.0;
    double gain_target = 0.0, freq_target = 1000.0, q_target = 1.0;
    double damping = 1.41213562;  // of the shelves
    double dt = 0.0;
    double wet = 1.0, dry = 0.0;
    double b0 = 1.0, b1 = 0.0, b2 = 0.0, a1 = 0.0, a2 = 0.0;
    double s1[2] = {0.0, 0.0}, s2[2] = {0.0, 0.0};

    void design() {
        gain = 0.95 * gain + 0.05 * gain_target + 1e-24;
        freq = 0.95 * freq + 0.05 * freq_target + 1e-24;
        q = 0.95 * q + 0.05 * q_target + 1e-24;
        b0 = 1.0;
        b1 = b2 = a1 = a2 = 0.0;
        if (type == 1) design_low_pass6();
        if (type == 2) design_high_pass6();
        if (type == 3 || type == 4 || type == 9 || type == 10) design_matched();
        if ((type >= 5 && type <= 8) || type == 11) design_shelf();
        if (type == 12) design_notch();
    }

    float filter(float x, size_t channel) {
        const double v = static_cast<double>(x);
        const double y = static_cast<double>(static_cast<float>(s1[channel] + b0 * v));
        s1[channel] = s2[channel] + b1 * v + a1 * y;
        s2[channel] = b2 * v + a2 * y;
        return static_cast<float>(wet * y + dry * v);
    }

  private:
    void design_low_pass6() {
        const double w = 2.0 * kPi * freq * dt;
        const double u = 1.0 / (freq * dt);
        const double m = 2.0 / std::sqrt(u * u + 4.0);
        const double p = m > 0.5 ? std::sqrt(m) : 0.7071067811865476;
        const double p2 = p * p;
        const double r = 1.0 - p2;
        const double v = std::sqrt((p2 - m * m) * r) * std::tan(w * std::sqrt(r) / (2.0 * p)) / r;
        const double n = 1.0 / (v + 1.0);
        b0 = (m + v) * n;
        b1 = (v - m) * n;
        a1 = (1.0 - v) * n;
    }

    void design_high_pass6() {
        const double t = std::tan(kPi * freq * dt);
        const double n = 1.0 / (t + 1.0);
        b0 = n;
        b1 = -n;
        a1 = (1.0 - t) * n;
    }

    void design_matched() {
        if (type <= 4) q = 0.7071;
        const double w = 2.0 * kPi * freq * dt;
        const double G = type >= 9 ? exp10(gain / 40.0) : 1.0;
        const double d = 1.0 / (4.0 * (G * G) * (q * q));
        const double e = std::exp(-0.5 * w / (G * q));
        a1 = d <= 1.0 ? 2.0 * e * std::cos(w * std::sqrt(1.0 - d))
                      : 2.0 * e * std::cosh(w * std::sqrt(d - 1.0));
        a2 = -(e * e);
        const double s = std::sin(w / 2.0) * std::sin(w / 2.0);
        const double c = 1.0 - s;
        const double P0 = 1.0 - a1 - a2;
        const double P1 = 1.0 + a1 - a2;
        const double R = P0 * P0 * c + P1 * P1 * s + 16.0 * c * s * a2;
        if (type == 3) {
            const double h = P0 + std::sqrt((q * q * R - c * (P0 * P0)) / s);
            b0 = h / 2.0;
            b1 = P0 - h / 2.0;
        } else if (type == 4) {
            b0 = q * std::sqrt(R) / (4.0 * s);
            b1 = -2.0 * b0;
            b2 = b0;
        } else if (type == 9) {
            const double G4 = (G * G) * (G * G);
            const double W = G4 * (16.0 * (c - s) * a2 + P1 * P1 - P0 * P0);
            const double B = (G4 * R - s * W - P0 * P0) / (4.0 * (s * s));
            const double h = P0 - std::sqrt(P0 * P0 + W + 4.0 * (s - c) * B);
            const double m = P0 - h / 2.0;
            b0 = (m + std::sqrt(B + m * m)) / 2.0;
            b1 = h / 2.0;
            b2 = -B / (4.0 * b0);
        } else {
            const double v = 2.0 * freq * dt;
            double u = -0.5 * P1 * v / q;
            u = u / std::sqrt(v * v / (q * q) + (1.0 - v * v) * (1.0 - v * v));
            b0 = G * 0.5 * (P0 / (w * q) - u);
            b1 = G * u;
            b2 = -b0 - b1;
        }
    }

    void design_shelf() {
        const bool boosts = gain >= 0.0;
        double f = freq;
        if (type == 6) f = std::max(f, 100.0);
        if (type == 8) f = std::min(f, 10000.0);
        if (type == 11) f = std::min(f, 0.45 / dt);
        const double t = std::tan(kPi * f * dt);
        // Tangents of the poles and zeros: one pair stays, the other moves by the gain.
        const bool up = type == 5 || type == 8;
        const double moved = t * exp10((up ? 1.0 : -1.0) * std::fabs(gain) / 40.0);
        const bool poles_stay = boosts == (type <= 6);
        double tp = std::clamp(poles_stay ? t : moved, 0.000981748019, 2.414);
        double tz = std::clamp(poles_stay ? moved : t, 0.000981748019, 2.414);
        if (type == 11) {
            const double M = exp10(std::fabs(gain) / 80.0);
            tp = boosts ? t / M : t * M;
            tz = boosts ? t * M : t / M;
        }
        const double den = 1.0 / (tp * tp + damping * tp + 1.0);
        const double scale = type == 6 || type == 8 ? tp * tp / (tz * tz) : 1.0;
        a1 = -(2.0 * (tp * tp) - 2.0) * den;
        a2 = -(tp * tp + 1.0 - damping * tp) * den;
        b0 = (tz * tz + damping * tz + 1.0) * den * scale;
        b1 = (2.0 * (tz * tz) - 2.0) * den * scale;
        b2 = (tz * tz + 1.0 - damping * tz) * den * scale;
    }

    void design_notch() {
        const double t = std::tan(kPi * freq * dt);
        const double v = t / q;
        const double den = 1.0 / (t * t + v + 1.0);
        b0 = b2 = (t * t + 1.0) * den;
        b1 = 2.0 * (t * t - 1.0) * den;
        a1 = -2.0 * (t * t - 1.0) * den;
        a2 = -(t * t - v + 1.0) * den;
    }
};

class Engine {
  public:
    Engine(int channel_count, double sample_rate)
        : channels(static_cast<size_t>(channel_count)), rate(sample_rate) {
        for (Stage& stage : chain) {
            stage.dt = 1.0 / rate;
            stage.design();
        }
    }

    /// Value of each control port by its number; `run` writes the meters (53, 54).
    std::array<float, 55> port{};

    /// Processes a block; `in` and `out` hold `n` samples for each channel.
    void run(const std::vector<std::vector<float>>& in, std::vector<std::vector<float>>& out,
             int n) {
        for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
            if ((sample_counter & control_mask) == 0) control_tick();
            float in_square = 0.0f, out_square = 0.0f;
            for (size_t c = 0; c < channels; ++c) {
                const float x = in[c][i] + noise;
                in_square = std::max(in_square, x * x);
                float v = x * trim_gain;
                for (Stage& stage : chain) v = stage.filter(v, c);
                out[c][i] = v;
                out_square = std::max(out_square, v * v);
            }
            in_power = power_take * in_square + power_keep * in_power;
            out_power = power_take * out_square + power_keep * out_power;
            if ((sample_counter & meter_mask) == 0) {
                update_meter(port[53], in_power);
                update_meter(port[54], out_power);
            }
            noise_state = static_cast<int32_t>(static_cast<uint32_t>(noise_state) * 16807u);
            noise = static_cast<float>(static_cast<double>(static_cast<float>(noise_state)) *
                                       4.6566e-16);
            ++sample_counter;
        }
    }

  private:
    static int whole(float value) { return static_cast<int>(static_cast<double>(value) + 0.1); }

    void control_tick() {
        for (int i = 0; i < 16; ++i) {
            const float* p = &port[static_cast<size_t>(i < 8 ? 42 + 5 * (i / 4) : 2 + 5 * (i - 8))];
            Stage& stage = chain[i];
            stage.type = whole(p[1]);
            stage.gain_target = static_cast<double>(p[2]);
            stage.freq_target = static_cast<double>(p[3]);
            stage.q_target = static_cast<double>(p[4]);
            if (i < 8) set_section_stage(stage, i % 4);
            glide(stage.gain, stage.gain_target);
            glide(stage.freq, stage.freq_target);
            glide(stage.q, stage.q_target);
            const bool on = whole(p[0]) != 0;
            stage.wet = 0.98 * stage.wet + (on ? 0.02 : 1e-20);
            stage.dry = 0.98 * stage.dry + (on ? 1e-20 : 0.02);
            stage.design();
        }
        trim_gain = static_cast<float>(0.98 * static_cast<double>(trim_gain) +
                                       0.02 * exp10(static_cast<double>(port[52]) * 0.05) + 1e-20);
    }

    static void glide(double& value, double target) {
        value = 0.98 * value + 0.02 * target + 1e-20;
    }

    /// Makes of a section's type and targets those of its stage `i`.
    void set_section_stage(Stage& stage, int i) const {
        static constexpr int kStageTypes[] = {4, 3, 6, 5};  // passes, then shelves
        static constexpr double kFactors[] = {1.0, 0.88, 0.75, 0.7, 1.0, 1.2, 1.4, 1.5};
        static constexpr double kShares[] = {1.0, 0.5, 0.3333, 0.25};
        static constexpr double kDampings[4][4] = {
            {1.4142135624, 0, 0, 0},
            {0.7653668647, 1.847759065, 0, 0},
            {0.5176380902, 1.4142135624, 1.9318516526, 0},
            {0.390180644, 1.111140466, 1.6629392246, 1.9615705608},
        };
        const int type = stage.type;
        const int kind = (type - 1) / 4, extra_stages = (type - 1) % 4;
        if (type == 17) {
            const auto q = static_cast<double>(static_cast<float>(stage.q_target) * 3.9f);
            const double r = (std::sqrt(4.0 * (q * q) + 1.0) + 1.0) / (2.0 * q);
            const double f = stage.freq_target;
            const double spread[4] = {f / (r * r * r), f / r, f * r, f * (r * r * r)};
            stage.freq_target = std::min(spread[i], 0.45 * rate);
            stage.type = 12;
        } else if (type < 1 || type > 17) {
            stage.type = 0;
        } else {
            stage.type = i <= extra_stages ? kStageTypes[kind] : 0;
            stage.damping = kDampings[extra_stages][i];
            if (kind >= 2) stage.gain_target *= kShares[extra_stages];
            if (kind < 2) stage.freq_target *= kFactors[type - 1];
            if (kind == 1 && extra_stages > 0) {
                stage.freq_target = std::min(stage.freq_target, 20000.0);
            }
            stage.freq_target = static_cast<double>(static_cast<float>(stage.freq_target));
        }
    }

    void update_meter(float& meter, float power) const {
        meter =
            static_cast<float>(static_cast<double>(meter_decay * std::max(power, meter)) + 1e-20);
    }

    const size_t channels;
    const double rate;
    const uint32_t control_mask = rate < 60001.0 ? 63 : 127;
    const uint32_t meter_mask = rate < 60001.0 ? 511 : 1023;
    const float meter_decay = static_cast<float>(exp10(-(meter_mask + 1.0) / rate));
    const float power_keep = static_cast<float>(std::exp(-1.0 / (0.04 * rate)));
    const float power_take = 1.0f - power_keep;
    int32_t noise_state = 1;
    float noise = 0.0f;
    uint32_t sample_counter = 0;
    float trim_gain = 1.0f;
    float in_power = 0.0f, out_power = 0.0f;
    Stage chain[16];  // section A, section B, bands
};

}  // namespace brindle::reference
