// SPDX-License-Identifier: ISC
#include "engine/analyser.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace brindle {
namespace {

/// Samples between two corrections of the oscillators' magnitudes.
constexpr uint32_t kTick = 128;
constexpr int kFastRateHz = 64000;  ///< above it, rows are twice as long
constexpr double kFirstBinHz = 20.0;
constexpr double kBinsPerOctave = 24.0;
/// Cutoff of a bin's low-pass as a share of the distance to the next bin.
constexpr double kCutoffShare = 0.707;
constexpr double kMaxCutoffShareOfRate = 0.49;
/// The square root of two in single precision.
constexpr double kSqrt2 = 1.4142135381698608;
constexpr double kNoiseScale = 4.6566e-22;
constexpr double kPeakDb = -10.0;
constexpr double kMaxLiftDb = 30.0;
/// Shifted to DC, a sine keeps half its amplitude; this adds the other half.
constexpr double kSineDb = 6.02;

double bin_hz(size_t bin) {
    return kFirstBinHz * std::exp2(static_cast<double>(bin) / kBinsPerOctave);
}

/// Designs a bin's second-order Butterworth low-pass by the bilinear transform with prewarped
/// cutoff. The cutoff stays below half the rate, beyond which the filter would be unstable.
void design_low_pass(AnalyserBins& bins, size_t bin, double dt) {
    const double cutoff_hz =
        std::min(kCutoffShare * (bin_hz(bin + 1) - bin_hz(bin)), kMaxCutoffShareOfRate / dt);
    const double t =
        std::tan(static_cast<double>(static_cast<float>(cutoff_hz)) * std::numbers::pi * dt);
    const double n = 1.0 / (t * t + kSqrt2 * t + 1.0);
    bins.b0[bin] = t * t * n;
    bins.a1[bin] = -(2.0 * (t * t) - 2.0) * n;
    bins.a2[bin] = -(t * t + 1.0 - kSqrt2 * t) * n;
}

/// Pulls every oscillator's magnitude toward 1; with `restart_weak`, restarts those below half the
/// power.
void renormalise(AnalyserBins& bins, bool restart_weak) noexcept {
    for (size_t bin = 0; bin < kPlotBins; ++bin) {
        const double magnitude2 = bins.re[bin] * bins.re[bin] + bins.im[bin] * bins.im[bin];
        const double scale = 1.0 + 0.005 * (1.0 - magnitude2);
        const bool restart = restart_weak && magnitude2 < 0.5;
        bins.magnitude2[bin] = magnitude2;
        bins.re[bin] = restart ? 1.0 : bins.re[bin] * scale;
        bins.im[bin] = restart ? 0.0 : bins.im[bin] * scale;
    }
}

/// Makes the next row from the powers summed since the last one.
void finish_row(SpectrumAnalyser& analyser) noexcept {
    BinArray& power = analyser.bins.power;
    const auto samples = static_cast<double>(analyser.frame_mask + 1);
    const double loudest = std::max(0.0, *std::max_element(power.begin(), power.end()));
    const double level_db = 10.0 * std::log10(loudest / samples);
    const double offset_db = analyser.normalise
                                 ? std::min(kPeakDb - (level_db + kSineDb), kMaxLiftDb) + kSineDb
                                 : kSineDb;
    analyser.row_index = (analyser.row_index + 1) % kPlotRows;
    auto& row = analyser.rows[analyser.row_index];
    for (size_t bin = 0; bin < kPlotBins; ++bin) {
        row[bin] = static_cast<float>(offset_db + 10.0 * std::log10(power[bin] / samples));
    }
    power.fill(0.0);
}

/// Writes `count` samples plus dither to `v`. The dither keeps the low-passes off denormal numbers.
void add_dither(SpectrumAnalyser& analyser, const float* input, double* v,
                uint32_t count) noexcept {
    auto state = static_cast<uint32_t>(analyser.noise_state);
    double noise = analyser.noise;
    for (uint32_t i = 0; i < count; ++i) {
        const float x = std::isfinite(input[i]) ? input[i] : 0.0f;
        v[i] = static_cast<double>(x) + noise;
        state *= 16807u;
        noise = static_cast<double>(static_cast<int32_t>(state)) * kNoiseScale;
    }
    analyser.noise_state = static_cast<int32_t>(state);
    analyser.noise = noise;
}

}  // namespace

void init_analyser(SpectrumAnalyser& analyser, double rate) {
    analyser.rate = rate;
    analyser.dt = 1.0 / rate;
    analyser.frame_mask = rate < kFastRateHz + 1 ? 2047 : 4095;
    analyser.noise_state = 1;
    analyser.noise = 0.0;
    analyser.counter = 0;
    analyser.normalise = true;
    analyser.bins = {};
    for (size_t bin = 0; bin < kPlotBins; ++bin) {
        const double turn = 2.0 * std::numbers::pi * bin_hz(bin) * analyser.dt;
        analyser.bins.step_cos[bin] = std::cos(turn);
        analyser.bins.step_sin[bin] = std::sin(turn);
        analyser.bins.re[bin] = 0.8;
        design_low_pass(analyser.bins, bin, analyser.dt);
    }
    for (auto& row : analyser.rows) row.fill(0.0f);
    analyser.row_index = 0;
    analyser.advance_bins = choose_advance_bins();
}

void analyse(SpectrumAnalyser& analyser, const float* input, uint32_t n) noexcept {
    std::array<double, kTick> v;
    while (n > 0) {
        // A tick follows each sample whose counter is a multiple of kTick.
        const uint32_t until_tick = (kTick - analyser.counter % kTick) % kTick + 1;
        const uint32_t count = std::min(n, until_tick);
        add_dither(analyser, input, v.data(), count);
        analyser.advance_bins(analyser.bins, v.data(), count);
        const auto last = static_cast<uint16_t>(analyser.counter + count - 1);
        if (count == until_tick) {
            renormalise(analyser.bins, last == 0);
            if ((last & analyser.frame_mask) == 0) finish_row(analyser);
        }
        analyser.counter = static_cast<uint16_t>(last + 1);
        input += count;
        n -= count;
    }
}

}  // namespace brindle
