// SPDX-License-Identifier: ISC
/// Signals and what is measured of them. Levels in dBFS count from a sine at full scale, which is
/// 0.
#pragma once

#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace brindle {

using Samples = std::vector<double>;

/// `count` samples of a sine of this amplitude, from `phase` [rad] on.
Samples sine(double amplitude, double freq_hz, double rate_hz, size_t count, double phase = 0.0);
double mean_square(const Samples& samples);
double dbfs(double power);
/// Ratio of two powers in dB.
double ratio_db(double power, double reference);

/// The weight of a frequency's power.
using Weighting = std::function<double(double freq_hz)>;
/// A-weighting within 20 Hz to 20 kHz.
double a_weighting(double freq_hz);

/// Mean square of the samples with their spectrum weighted; of whole windows of 2^16 samples (Hann,
/// half overlapped), at least one of which they must fill.
double weighted_power(const Samples& samples, double rate_hz, const Weighting& weighting);
/// Peak of what is above a frequency in 2^15 samples, windowed (Hann).
double peak_above(const Samples& samples, double rate_hz, double low_hz);

/// What is left without its mean and the sine at `freq_hz`, which fits whole times.
Samples without_sine(const Samples& samples, double freq_hz, double rate_hz);

/// printf into a string.
template <typename... Values>
std::string text(const char* format, Values... values) {
    std::string result(static_cast<size_t>(std::snprintf(nullptr, 0, format, values...)), '\0');
    std::snprintf(result.data(), result.size() + 1, format, values...);
    return result;
}

}  // namespace brindle
