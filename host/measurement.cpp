// SPDX-License-Identifier: ISC
#include "host/measurement.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>

#include "host/interrupt.h"
#include "host/progress.h"

namespace brindle {
namespace {

constexpr double kLowestHz = 20.0;
constexpr double kHighestHz = 20000.0;
/// The excitation's first sample: so far above full scale that the plugin's dither (1e-6) does not
/// show, since the engine is linear.
constexpr float kStart = 65536.0f;
/// Silence is reported as this.
constexpr double kFloorDb = -300.0;

/// Ratio of one sample of the excitation to the one before.
double decay(double rate_hz) {
    return std::exp(-2.0 * std::numbers::pi * kLowestHz / rate_hz);
}

/// What comes out for a decaying exponential, until a chunk holds no more than 1e-16 of its energy.
/// An impulse would do but for the engine's rounding of each stage's output to single precision:
/// the rounding of one great sample makes a narrow filter at 20 Hz ring by a further 5 %. The
/// exponential holds as much more at low frequencies as such filters are slower.
std::vector<float> excite(Plugin& plugin) {
    constexpr size_t kChunk = 4096;
    constexpr double kLongestSeconds = 60.0;
    const auto channels = static_cast<size_t>(plugin.channels());
    const auto longest = static_cast<size_t>(kLongestSeconds * plugin.rate());
    const double ratio = decay(plugin.rate());
    std::vector<float> chunk(kChunk * channels);
    std::vector<float> result;
    double sample = kStart;
    double energy = 0.0;
    double chunk_energy = 0.0;
    do {
        throw_if_interrupted();
        for (size_t i = 0; i < kChunk; ++i, sample *= ratio) {
            for (size_t k = 0; k < channels; ++k) {
                chunk[i * channels + k] = static_cast<float>(sample);
            }
        }
        plugin.process(chunk.data(), chunk.data(), kChunk);
        chunk_energy = 0.0;
        for (size_t i = 0; i < kChunk; ++i) {
            const float answer = chunk[i * channels];
            result.push_back(answer);
            chunk_energy += double{answer} * double{answer};
        }
        energy += chunk_energy;
    } while (chunk_energy > 1e-16 * energy && result.size() < longest);
    return result;
}

std::vector<ResponsePoint> frequency_grid(double rate_hz, double points_per_octave) {
    std::vector<ResponsePoint> grid;
    const double top_hz = std::min(kHighestHz * 1.0001, 0.4999 * rate_hz);
    for (int i = 0;; ++i) {
        const double freq_hz = kLowestHz * std::exp2(i / points_per_octave);
        if (freq_hz > top_hz) return grid;
        grid.push_back({freq_hz, kFloorDb, 0.0, 0.0});
    }
}

/// Frequencies that are evaluated side by side, so that their chains of sums overlap.
constexpr size_t kLanes = 8;

/// What stands at `count` points from `first` on. The response is the z-transform of the plugin's
/// answer at u = e^(-jw), sum of y[n] u^n, over that of the excitation, kStart / (1 - ratio u).
/// The delay of either is the mean of n, weighted by its terms: the real part of the sum of
/// n y[n] u^n over the sum of y[n] u^n, and of ratio u / (1 - ratio u). Both sums come from
/// Horner's rule, from the last sample to the first, `slope` beside `sum`.
void evaluate(const std::vector<float>& samples, double rate_hz, ResponsePoint* first,
              size_t count) {
    using Lanes = std::array<double, kLanes>;
    Lanes u_re{}, u_im{}, sum_re{}, sum_im{}, slope_re{}, slope_im{};
    for (size_t k = 0; k < count; ++k) {
        const double w = 2.0 * std::numbers::pi * first[k].freq_hz / rate_hz;
        u_re[k] = std::cos(w);
        u_im[k] = -std::sin(w);
    }
    for (size_t i = samples.size(); i-- > 0;) {
        const auto sample = double{samples[i]};
        for (size_t k = 0; k < kLanes; ++k) {
            const double slope = slope_re[k] * u_re[k] - slope_im[k] * u_im[k] + sum_re[k];
            slope_im[k] = slope_re[k] * u_im[k] + slope_im[k] * u_re[k] + sum_im[k];
            slope_re[k] = slope;
            const double sum = sum_re[k] * u_re[k] - sum_im[k] * u_im[k] + sample;
            sum_im[k] = sum_re[k] * u_im[k] + sum_im[k] * u_re[k];
            sum_re[k] = sum;
        }
    }
    for (size_t k = 0; k < count; ++k) {
        const std::complex<double> u(u_re[k], u_im[k]);
        const std::complex<double> answer(sum_re[k], sum_im[k]);
        const std::complex<double> weighted = u * std::complex<double>(slope_re[k], slope_im[k]);
        const std::complex<double> step = decay(rate_hz) * u;
        const std::complex<double> ratio = answer * (1.0 - step) / double{kStart};
        if (std::abs(ratio) == 0.0) continue;
        first[k].gain_db = std::max(kFloorDb, 20.0 * std::log10(std::abs(ratio)));
        first[k].phase_deg = std::arg(ratio) * 180.0 / std::numbers::pi;
        first[k].delay_ms = (weighted / answer - step / (1.0 - step)).real() * 1000.0 / rate_hz;
    }
}

}  // namespace

std::vector<ResponsePoint> measure_response(Plugin& plugin, double points_per_octave) {
    plugin.settle();
    const std::vector<float> samples = excite(plugin);
    std::vector<ResponsePoint> points = frequency_grid(plugin.rate(), points_per_octave);
    // A coarse measurement is one of many, and quick.
    const bool is_fine = points_per_octave >= kFinePointsPerOctave;
    Progress progress("Measuring", is_fine ? static_cast<int64_t>(points.size()) : 0);
    for (size_t i = 0; i < points.size(); i += kLanes) {
        throw_if_interrupted();
        evaluate(samples, plugin.rate(), &points[i], std::min(kLanes, points.size() - i));
        progress.advance(kLanes);
    }
    return points;
}

}  // namespace brindle
