// SPDX-License-Identifier: ISC
/// The definition of the spectrum analyser, one sample and one bin at a time. The product's
/// analyser yields the same bits. Shares no code with the product.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace brindle::reference {

/// y = b0·x + b1·x[-1] + b2·x[-2] + a1·y[-1] + a2·y[-2], in transposed direct form II.
struct LowPass {
    double b0 = 0, b1 = 0, b2 = 0, a1 = 0, a2 = 0;
    double s1 = 0, s2 = 0;

    /// A Butterworth low-pass.
    LowPass(float cutoff_hz, double dt) {
        const double sqrt2 = static_cast<double>(std::sqrt(2.0f));
        const double t = std::tan(static_cast<double>(cutoff_hz) * 3.14159265358979323846 * dt);
        const double t2 = t * t;
        const double n = 1.0 / (t2 + sqrt2 * t + 1.0);
        b0 = b2 = t2 * n;
        b1 = 2.0 * t2 * n;
        a1 = -(2.0 * t2 - 2.0) * n;
        a2 = -(t2 + 1.0 - sqrt2 * t) * n;
    }

    double operator()(double x) {
        const double y = s1 + b0 * x;
        s1 = s2 + b1 * x + a1 * y;
        s2 = b2 * x + a2 * y;
        return y;
    }
};

struct Bin {
    double step_cos, step_sin;
    LowPass re_path, im_path;
    double re = 0.8, im = 0.0;
    double magnitude2 = 0;
    double power = 0;
};

class Analyser {
  public:
    explicit Analyser(double rate) : frame_mask(static_cast<int>(rate) <= 64000 ? 2047 : 4095) {
        const double dt = 1.0 / rate;
        for (int i = 0; i < 241; ++i) {
            const double hz = 20.0 * std::exp2(i / 24.0);
            const double distance_hz = 20.0 * std::exp2((i + 1) / 24.0) - hz;
            const LowPass low_pass(static_cast<float>(0.707 * distance_hz), dt);
            const double turn = 2.0 * 3.14159265358979323846 * hz * dt;
            bins.push_back({std::cos(turn), std::sin(turn), low_pass, low_pass});
        }
    }

    /// One sample; one that is not finite counts as silence.
    void add(float x) {
        const double v = static_cast<double>(std::isfinite(x) ? x : 0.0f) + noise;
        for (Bin& bin : bins) {
            const double re = bin.re * bin.step_cos - bin.im * bin.step_sin;
            const double im = bin.re * bin.step_sin + bin.im * bin.step_cos;
            bin.re = re;
            bin.im = im;
            const double y_re = bin.re_path(v * re);
            const double y_im = bin.im_path(v * im);
            bin.power += y_re * y_re + y_im * y_im;
        }
        if ((counter & 127) == 0) renormalise();
        if ((counter & frame_mask) == 0) finish_row();
        noise_state = static_cast<int32_t>(static_cast<uint32_t>(noise_state) * 16807u);
        noise = static_cast<double>(noise_state) * 4.6566e-22;
        ++counter;
    }

    bool normalise = true;
    std::vector<std::vector<float>> rows{128, std::vector<float>(241)};
    size_t row_index = 0;
    std::vector<Bin> bins;

  private:
    void renormalise() {
        for (Bin& bin : bins) {
            bin.magnitude2 = bin.re * bin.re + bin.im * bin.im;
            const double scale = 1.0 + 0.005 * (1.0 - bin.magnitude2);
            const bool restart = counter == 0 && bin.magnitude2 < 0.5;
            bin.re = restart ? 1.0 : bin.re * scale;
            bin.im = restart ? 0.0 : bin.im * scale;
        }
    }

    void finish_row() {
        const double n = frame_mask + 1;
        double peak = 0.0;
        for (const Bin& bin : bins) peak = std::max(peak, bin.power);
        const double level_db = 10.0 * std::log10(peak / n);
        const double lift_db = std::min(-10.0 - (level_db + 6.02), 30.0);
        const double offset_db = (normalise ? lift_db : 0.0) + 6.02;
        row_index = (row_index + 1) & 127;
        for (size_t i = 0; i < bins.size(); ++i) {
            rows[row_index][i] =
                static_cast<float>(offset_db + 10.0 * std::log10(bins[i].power / n));
            bins[i].power = 0.0;
        }
    }

    int frame_mask;
    int32_t noise_state = 1;
    double noise = 0.0;
    uint16_t counter = 0;
};

}  // namespace brindle::reference
