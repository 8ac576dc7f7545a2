// SPDX-License-Identifier: ISC
#include "tests/engine/reference_engine.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace brindle::reference {
namespace {

constexpr double kPi = 3.14159265358979323846;

double clamped(double t) {
    return std::max(std::min(t, 2.414), 0.000981748019);
}

void glide(double& value, double target) {
    value = 0.98 * value + 0.02 * target + 1e-20;
}

void design_matched(Stage& st) {
    const double f = st.freq, g = st.gain, dt = st.dt;
    const double w = 2.0 * kPi * f * dt;
    if (st.type == 1) {
        const double u = 1.0 / (f * dt);
        const double m = 2.0 / std::sqrt(u * u + 4.0);
        const double p = m > 0.5 ? std::sqrt(m) : 0.7071067811865476;
        const double p2 = p * p;
        const double r = 1.0 - p2;
        const double v = std::sqrt((p2 - m * m) * r) * std::tan(w * std::sqrt(r) / (2.0 * p)) / r;
        const double n = 1.0 / (v + 1.0);
        st.b0 = (m + v) * n;
        st.b1 = (v - m) * n;
        st.a1 = (1.0 - v) * n;
        st.b2 = st.a2 = 0.0;
        return;
    }
    if (st.type == 3 || st.type == 4) st.q = 0.7071;
    const double G = st.type >= 9 ? exp10(g / 40.0) : 1.0;
    const double Q = st.q;
    const double d = 1.0 / (4.0 * (G * G) * (Q * Q));
    const double e = std::exp(-0.5 * w / (G * Q));
    st.a1 = d <= 1.0 ? 2.0 * e * std::cos(w * std::sqrt(1.0 - d))
                     : 2.0 * e * std::cosh(w * std::sqrt(d - 1.0));
    st.a2 = -(e * e);
    const double s = std::sin(w / 2.0) * std::sin(w / 2.0);
    const double c = 1.0 - s;
    const double P0 = 1.0 - st.a1 - st.a2;
    const double P1 = 1.0 + st.a1 - st.a2;
    const double R = P0 * P0 * c + P1 * P1 * s + 16.0 * c * s * st.a2;
    if (st.type == 3) {
        const double h = P0 + std::sqrt((Q * Q * R - c * (P0 * P0)) / s);
        st.b0 = h / 2.0;
        st.b1 = P0 - h / 2.0;
        st.b2 = 0.0;
    } else if (st.type == 4) {
        st.b0 = Q * std::sqrt(R) / (4.0 * s);
        st.b1 = -2.0 * st.b0;
        st.b2 = st.b0;
    } else if (st.type == 9) {
        const double G4 = (G * G) * (G * G);
        const double W = G4 * (16.0 * (c - s) * st.a2 + P1 * P1 - P0 * P0);
        const double B = (G4 * R - s * W - P0 * P0) / (4.0 * (s * s));
        const double h = P0 - std::sqrt(P0 * P0 + W + 4.0 * (s - c) * B);
        const double m = P0 - h / 2.0;
        st.b0 = (m + std::sqrt(B + m * m)) / 2.0;
        st.b1 = h / 2.0;
        st.b2 = -B / (4.0 * st.b0);
    } else {
        const double v = 2.0 * f * dt;
        double u = -0.5 * P1 * v / Q;
        u = u / std::sqrt(v * v / (Q * Q) + (1.0 - v * v) * (1.0 - v * v));
        st.b0 = G * 0.5 * (P0 / (w * Q) - u);
        st.b1 = G * u;
        st.b2 = -st.b0 - st.b1;
    }
}

void shelf_step(Stage& st, double tp, double tz) {
    const double k = st.damping;
    const double den = 1.0 / (tp * tp + k * tp + 1.0);
    st.a1 = -(2.0 * (tp * tp) - 2.0) * den;
    st.a2 = -(tp * tp + 1.0 - k * tp) * den;
    st.b0 = (tz * tz + k * tz + 1.0) * den;
    st.b1 = (2.0 * (tz * tz) - 2.0) * den;
    st.b2 = (tz * tz + 1.0 - k * tz) * den;
}

void design_shelf(Stage& st) {
    const double g = st.gain;
    const bool pos = g >= 0.0;
    double f = st.freq;
    if (st.type == 6) f = std::max(f, 100.0);
    if (st.type == 8) f = std::min(f, 10000.0);
    if (st.type == 11) f = std::min(f, 0.45 / st.dt);
    const double t = std::tan(kPi * f * st.dt);
    const double up = exp10(std::fabs(g) / 40.0);
    const double down = exp10(-std::fabs(g) / 40.0);
    double tp = t, tz = t;
    switch (st.type) {
        case 5:
            tp = clamped(pos ? t : t * up);
            tz = clamped(pos ? t * up : t);
            break;
        case 6:
            tp = clamped(pos ? t : t * down);
            tz = clamped(pos ? t * down : t);
            break;
        case 7:
            tp = clamped(pos ? t * down : t);
            tz = clamped(pos ? t : t * down);
            break;
        case 8:
            tp = clamped(pos ? t * up : t);
            tz = clamped(pos ? t : t * up);
            break;
        default: {
            const double M = exp10(std::fabs(g) / 80.0);
            tp = pos ? t / M : t * M;
            tz = pos ? t * M : t / M;
        }
    }
    shelf_step(st, tp, tz);
    if (st.type == 6 || st.type == 8) {
        const double scale = tp * tp / (tz * tz);
        st.b0 = st.b0 * scale;
        st.b1 = st.b1 * scale;
        st.b2 = st.b2 * scale;
    }
}

void design_high_pass6_or_notch(Stage& st) {
    const double t = std::tan(kPi * st.freq * st.dt);
    if (st.type == 2) {
        const double n = 1.0 / (t + 1.0);
        st.b0 = n;
        st.b1 = -n;
        st.b2 = 0.0;
        st.a1 = (1.0 - t) * n;
        st.a2 = 0.0;
        return;
    }
    const double v = t / st.q;
    const double den = 1.0 / (t * t + v + 1.0);
    st.b0 = st.b2 = (t * t + 1.0) * den;
    st.b1 = 2.0 * (t * t - 1.0) * den;
    st.a1 = -2.0 * (t * t - 1.0) * den;
    st.a2 = -(t * t - v + 1.0) * den;
}

}  // namespace

void Stage::design() {
    gain = 0.95 * gain + 0.05 * gain_target + 1e-24;
    freq = 0.95 * freq + 0.05 * freq_target + 1e-24;
    q = 0.95 * q + 0.05 * q_target + 1e-24;
    switch (type) {
        case 1:
        case 3:
        case 4:
        case 9:
        case 10:
            design_matched(*this);
            break;
        case 5:
        case 6:
        case 7:
        case 8:
        case 11:
            design_shelf(*this);
            break;
        case 2:
        case 12:
            design_high_pass6_or_notch(*this);
            break;
        default:
            b0 = 1.0;
            b1 = b2 = a1 = a2 = 0.0;
    }
}

float Stage::filter(float x, int channel) {
    const double v = static_cast<double>(x);
    const double y = static_cast<double>(static_cast<float>(s1[channel] + b0 * v));
    s1[channel] = s2[channel] + b1 * v + a1 * y;
    s2[channel] = b2 * v + a2 * y;
    return static_cast<float>(wet * y + dry * v);
}

Engine::Engine(int channel_count, double sample_rate) : channels(channel_count), rate(sample_rate) {
    const bool slow = static_cast<int>(rate) < 60001;
    control_mask = slow ? 63 : 127;
    meter_mask = slow ? 511 : 1023;
    meter_decay = static_cast<float>(exp10(-(meter_mask + 1) / rate));
    power_keep = static_cast<float>(std::exp(-1.0 / (0.04 * rate)));
    power_take = 1.0f - power_keep;
    for (Stage& stage : chain) {
        stage.dt = 1.0 / rate;
        stage.design();
    }
}

void Engine::read_controls() {
    const auto whole = [](float value) {
        return static_cast<int>(static_cast<double>(value) + 0.1);
    };
    for (int s = 0; s < 2; ++s) {
        const float* p = &port[static_cast<size_t>(42 + 5 * s)];
        section_on[s] = whole(p[0]) != 0;
        section_type[s] = whole(p[1]);
        section_gain[s] = p[2];
        section_q[s] = p[4];
        static const double factors[9] = {1.0, 1.0, 0.88, 0.75, 0.7, 1.0, 1.2, 1.4, 1.5};
        const int type = section_type[s];
        double f = static_cast<double>(p[3]);
        if (type >= 2 && type <= 8) f = f * factors[type];
        if (type >= 6 && type <= 8) f = std::min(f, 20000.0);
        section_freq[s] = static_cast<float>(f);
    }
    for (int b = 0; b < 8; ++b) {
        const float* p = &port[static_cast<size_t>(2 + 5 * b)];
        Stage& stage = chain[8 + b];
        band_on[b] = whole(p[0]) != 0;
        stage.type = whole(p[1]);
        stage.damping = stage.type <= 4 ? -1.41213562 : 1.41213562;
        stage.gain_target = static_cast<double>(p[2]);
        stage.freq_target = static_cast<double>(p[3]);
        stage.q_target = static_cast<double>(p[4]);
    }
}

void Engine::apply_section(int section) {
    static const double dampings[5][4] = {
        {0, 0, 0, 0},
        {1.4142135624, 1.4142135624, 1.4142135624, 1.4142135624},
        {0.7653668647, 1.847759065, 0, 0},
        {0.5176380902, 1.4142135624, 1.9318516526, 0},
        {0.390180644, 1.111140466, 1.6629392246, 1.9615705608},
    };
    static const double shares[5] = {1.0, 1.0, 0.5, 0.3333, 0.25};
    const int type = section_type[section];
    const bool passes = type >= 1 && type <= 8;
    const bool shelves = type >= 9 && type <= 16;
    const int order = passes || shelves ? (type - 1) % 4 + 1 : 0;
    int stage_type = 0;
    if (type >= 1 && type <= 4) stage_type = 4;
    if (type >= 5 && type <= 8) stage_type = 3;
    if (type >= 9 && type <= 12) stage_type = 6;
    if (type >= 13 && type <= 16) stage_type = 5;

    for (int i = 0; i < 4; ++i) {
        Stage& stage = chain[4 * section + i];
        stage.type = i < order ? stage_type : 0;
        stage.damping = -1.4142135624;
        if (i < order) stage.damping = shelves ? dampings[order][i] : -dampings[order][i];
        stage.gain_target = static_cast<double>(section_gain[section]);
        if (shelves) stage.gain_target = stage.gain_target * shares[order];
        stage.freq_target = static_cast<double>(section_freq[section]);
        stage.q_target = static_cast<double>(section_q[section]);
    }
    if (type != 17) return;

    const float q_single = section_q[section] * 3.9f;
    const auto q = static_cast<double>(q_single);
    const double r = (std::sqrt(4.0 * (q * q) + 1.0) + 1.0) / (2.0 * q);
    const auto f = static_cast<double>(section_freq[section]);
    const double spread[4] = {f / (r * r * r), f / r, f * r, f * (r * r * r)};
    for (int i = 0; i < 4; ++i) {
        Stage& stage = chain[4 * section + i];
        stage.type = 12;
        stage.damping = 1.4142135624;
        stage.freq_target = spread[i] >= 0.45 * rate ? 0.45 * rate : spread[i];
    }
}

void Engine::control_tick() {
    for (int i = 0; i < 16; ++i) {
        if (i % 4 == 0 && i < 8) apply_section(i / 4);
        Stage& stage = chain[i];
        const bool on = i < 8 ? section_on[i / 4] : band_on[i - 8];
        glide(stage.gain, stage.gain_target);
        glide(stage.freq, stage.freq_target);
        glide(stage.q, stage.q_target);
        stage.wet = 0.98 * stage.wet + (on ? 0.02 : 1e-20);
        stage.dry = 0.98 * stage.dry + (on ? 1e-20 : 0.02);
        stage.design();
    }
    trim_gain = static_cast<float>(0.98 * static_cast<double>(trim_gain) +
                                   0.02 * exp10(static_cast<double>(port[52]) * 0.05) + 1e-20);
}

void Engine::meter_tick() {
    const float powers[2] = {in_power, out_power};
    for (size_t i = 0; i < 2; ++i) {
        const float lifted = meter_decay * std::max(powers[i], port[53 + i]);
        port[53 + i] = static_cast<float>(static_cast<double>(lifted) + 1e-20);
    }
}

void Engine::process_sample(const float* in, float* out) {
    float in_square = 0.0f, out_square = 0.0f;
    float x[2];
    for (int c = 0; c < channels; ++c) {
        x[c] = in[c] + noise;
        in_square = std::max(in_square, x[c] * x[c]);
    }
    in_power = power_take * in_square + power_keep * in_power;
    for (int c = 0; c < channels; ++c) {
        float v = x[c] * trim_gain;
        for (Stage& stage : chain) v = stage.filter(v, c);
        out[c] = v;
        out_square = std::max(out_square, v * v);
    }
    out_power = power_take * out_square + power_keep * out_power;
    if ((sample_counter & static_cast<uint32_t>(meter_mask)) == 0) meter_tick();
    noise_state = static_cast<int32_t>(static_cast<uint32_t>(noise_state) * 16807u);
    noise = static_cast<float>(static_cast<double>(static_cast<float>(noise_state)) * 4.6566e-16);
    sample_counter = (sample_counter + 1) & 0x3ffff;
}

void Engine::run(const std::vector<std::vector<float>>& in, std::vector<std::vector<float>>& out,
                 int n) {
    read_controls();
    for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
        if ((sample_counter & static_cast<uint32_t>(control_mask)) == 0) control_tick();
        float x[2] = {0.0f, 0.0f}, y[2] = {0.0f, 0.0f};
        for (size_t c = 0; c < static_cast<size_t>(channels); ++c) x[c] = in[c][i];
        process_sample(x, y);
        for (size_t c = 0; c < static_cast<size_t>(channels); ++c) out[c][i] = y[c];
    }
}

}  // namespace brindle::reference
