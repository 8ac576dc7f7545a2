// SPDX-License-Identifier: ISC
#include "docs/sound_report/analysis.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <numeric>
#include <span>
#include <utility>

namespace brindle {
namespace {

using Complex = std::complex<double>;
constexpr double kTurn = 2.0 * std::numbers::pi;

/// The discrete Fourier transform of a power of two of values, in place.
void transform(std::span<Complex> values) {
    const size_t count = values.size();
    for (size_t i = 1, j = 0; i < count; ++i) {
        size_t bit = count / 2;
        for (; (j & bit) != 0; bit /= 2) j ^= bit;
        j ^= bit;
        if (i < j) std::swap(values[i], values[j]);
    }
    for (size_t length = 2; length <= count; length *= 2) {
        for (size_t k = 0; k < length / 2; ++k) {
            const Complex turn =
                std::polar(1.0, -kTurn * static_cast<double>(k) / static_cast<double>(length));
            for (size_t i = k; i < count; i += length) {
                const Complex odd = values[i + length / 2] * turn;
                values[i + length / 2] = values[i] - odd;
                values[i] += odd;
            }
        }
    }
}

double hann(size_t i, size_t count) {
    return 0.5 - 0.5 * std::cos(kTurn * static_cast<double>(i) / static_cast<double>(count));
}

std::vector<Complex> windowed_spectrum(std::span<const double> samples) {
    std::vector<Complex> values(samples.size());
    for (size_t i = 0; i < samples.size(); ++i) values[i] = samples[i] * hann(i, samples.size());
    transform(values);
    return values;
}

}  // namespace

Samples sine(double amplitude, double freq_hz, double rate_hz, size_t count, double phase) {
    Samples samples(count);
    for (size_t i = 0; i < count; ++i) {
        samples[i] =
            amplitude * std::sin(kTurn * freq_hz / rate_hz * static_cast<double>(i) + phase);
    }
    return samples;
}

double mean_square(const Samples& samples) {
    return std::inner_product(samples.begin(), samples.end(), samples.begin(), 0.0) /
           static_cast<double>(samples.size());
}

double dbfs(double power) {
    return ratio_db(power, 0.5);
}

double ratio_db(double power, double reference) {
    return 10.0 * std::log10(power / reference);
}

double a_weighting(double freq_hz) {
    if (freq_hz < 20.0 || freq_hz > 20000.0) return 0.0;
    const double f2 = freq_hz * freq_hz;
    const double weight =
        1.2589 * 12194.0 * 12194.0 * f2 * f2 /
        ((f2 + 20.6 * 20.6) * std::sqrt((f2 + 107.7 * 107.7) * (f2 + 737.9 * 737.9)) *
         (f2 + 12194.0 * 12194.0));
    return weight * weight;
}

double weighted_power(const Samples& samples, double rate_hz, const Weighting& weighting) {
    constexpr size_t kWindow = 65536;
    constexpr double kHannPower = 0.375;  // mean of its square
    double sum = 0.0;
    size_t windows = 0;
    for (size_t at = 0; at + kWindow <= samples.size(); at += kWindow / 2, ++windows) {
        const auto spectrum = windowed_spectrum(std::span(samples).subspan(at, kWindow));
        for (size_t k = 1; k < kWindow / 2; ++k) {
            const double freq_hz = rate_hz * static_cast<double>(k) / kWindow;
            sum += 2.0 * weighting(freq_hz) * std::norm(spectrum[k]);
        }
    }
    return sum / (kHannPower * kWindow * kWindow * static_cast<double>(windows));
}

double peak_above(const Samples& samples, double rate_hz, double low_hz) {
    constexpr size_t kWindow = 32768;
    auto spectrum = windowed_spectrum(std::span(samples).first(kWindow));
    const auto lowest = static_cast<size_t>(low_hz / rate_hz * kWindow);
    std::fill_n(spectrum.begin(), lowest, 0.0);
    std::fill(spectrum.begin() + kWindow / 2, spectrum.end(), 0.0);
    // The transform of the upper half alone is the time backwards; its real part is the signal's.
    transform(spectrum);
    double peak = 0.0;
    for (const Complex& value : spectrum) {
        peak = std::max(peak, 2.0 * std::abs(value.real()) / kWindow);
    }
    return peak;
}

Samples without_sine(const Samples& samples, double freq_hz, double rate_hz) {
    const double count = static_cast<double>(samples.size());
    const double mean = std::accumulate(samples.begin(), samples.end(), 0.0) / count;
    Complex sum = 0.0;
    for (size_t i = 0; i < samples.size(); ++i) {
        sum += samples[i] * std::polar(1.0, -kTurn * freq_hz / rate_hz * static_cast<double>(i));
    }
    sum *= 2.0 / count;
    Samples rest(samples.size());
    for (size_t i = 0; i < samples.size(); ++i) {
        const Complex turn = std::polar(1.0, kTurn * freq_hz / rate_hz * static_cast<double>(i));
        rest[i] = samples[i] - mean - (sum * turn).real();
    }
    return rest;
}

}  // namespace brindle
