// SPDX-License-Identifier: ISC
#include "tests/engine/reference_analyser.h"

#include <cmath>

namespace brindle::reference {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kBins = 241;

double centre_hz(int bin) {
    return 20.0 * std::exp2(bin / 24.0);
}

LowPass butterworth(float cutoff_hz, double dt) {
    const double sqrt2 = static_cast<double>(std::sqrt(2.0f));
    const double t = std::tan(static_cast<double>(cutoff_hz) * kPi * dt);
    const double t2 = t * t;
    const double n = 1.0 / (t2 + sqrt2 * t + 1.0);
    LowPass filter;
    filter.b0 = t2 * n;
    filter.b1 = 2.0 * t2 * n;
    filter.b2 = t2 * n;
    filter.a1 = -(2.0 * t2 - 2.0) * n;
    filter.a2 = -(t2 + 1.0 - sqrt2 * t) * n;
    return filter;
}

}  // namespace

double LowPass::operator()(double x) {
    const double y = s1 + b0 * x;
    s1 = s2 + b1 * x + a1 * y;
    s2 = b2 * x + a2 * y;
    return y;
}

Analyser::Analyser(double rate)
    : rows(128, std::vector<float>(kBins)),
      bins(kBins),
      frame_mask(static_cast<int>(rate) <= 64000 ? 2047 : 4095) {
    const double dt = 1.0 / rate;
    for (int i = 0; i < kBins; ++i) {
        const double hz = centre_hz(i);
        const auto cutoff_hz = static_cast<float>(0.707 * (centre_hz(i + 1) - hz));
        Bin& bin = bins[static_cast<size_t>(i)];
        bin.step_cos = std::cos(2.0 * kPi * hz * dt);
        bin.step_sin = std::sin(2.0 * kPi * hz * dt);
        bin.re_path = bin.im_path = butterworth(cutoff_hz, dt);
    }
}

void Analyser::add(float x) {
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
    noise = noise_state * 4.6566e-22;
    ++counter;
}

void Analyser::renormalise() {
    for (Bin& bin : bins) {
        bin.magnitude2 = bin.re * bin.re + bin.im * bin.im;
        const double scale = 1.0 + 0.005 * (1.0 - bin.magnitude2);
        bin.re *= scale;
        bin.im *= scale;
        if (counter == 0 && bin.magnitude2 < 0.5) {
            bin.re = 1.0;
            bin.im = 0.0;
        }
    }
}

void Analyser::finish_row() {
    const double n = frame_mask + 1;
    double peak = 0.0;
    for (const Bin& bin : bins) {
        if (bin.power > peak) peak = bin.power;
    }
    double offset = 6.02;
    if (normalise) {
        const double level = 10.0 * std::log10(peak / n);
        const double lift = -10.0 - (level + 6.02);
        offset = (lift > 30.0 ? 30.0 : lift) + 6.02;
    }
    row_index = (row_index + 1) & 127;
    std::vector<float>& row = rows[static_cast<size_t>(row_index)];
    for (size_t i = 0; i < bins.size(); ++i) {
        row[i] = static_cast<float>(offset + 10.0 * std::log10(bins[i].power / n));
        bins[i].power = 0.0;
    }
}

}  // namespace brindle::reference
