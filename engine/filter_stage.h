// SPDX-License-Identifier: ISC
/// One second-order section: smoothed parameters and coefficients.
#pragma once

#include "contract/types.h"
#include "engine/filter_design.h"

namespace brindle {

/// Limits of a stage's frequency, as shares of the sample rate. Ports reach from 1e-6 (a wide
/// notch's lowest stage at 20 Hz and 768 kHz) to 0.4535 (20 kHz at 44.1 kHz), so the limits only
/// affect frequencies of zero, below zero and around Nyquist.
inline constexpr double kMinFreqShare = 1e-6;
inline constexpr double kMaxFreqShare = 0.499;

/// The Q of types 3 and 4.
inline constexpr double kFixedQ = 0.7071;

/// Deliberately not the square root of two.
inline constexpr double kBandDamping = 1.41213562;

/// The damping of a band of `type`: -kBandDamping up to HighPass12, +kBandDamping above.
double band_damping(BandType type) noexcept;

/// A second-order section in double precision:
/// y = b0·x + s1; s1 ← s2 + b1·x + a1·y; s2 ← b2·x + a2·y.
/// CascadeState holds the states s1 and s2 of all stages.
struct FilterStage {
    /// The values that the coefficients come from; zero where they play no part.
    struct Origin {
        BandType type;
        double gain, freq, q, damping;
        bool operator==(const Origin&) const = default;
    };

    double gain, freq, q;  ///< current values: dB, Hz, Q
    double gain_target, freq_target, q_target;
    BandType type;
    double damping;              ///< signed, of the shelf designs
    double dt;                   ///< 1 / sample rate, seconds
    double freq_low, freq_high;  ///< Hz, limits of freq_target
    double wet, dry;             ///< crossfade weights of the filtered and the plain signal
    Coefficients coefficients;   ///< b0, b1, b2, a1, a2
    Origin origin;
};

/// Sets current and target values alike, wet to 1 and dry to 0. `gain` in dB, `freq` in Hz, `dt` in
/// seconds. Does not set the coefficients.
void init(FilterStage& stage, BandType type, double gain, double freq, double q, double damping,
          double dt) noexcept;

/// Sets the targets, `freq` within kMinFreqShare and kMaxFreqShare of the sample rate. Real-time
/// safe.
void set_targets(FilterStage& stage, double gain, double freq, double q) noexcept;

/// Moves gain, frequency and Q one smoothing step toward their targets, then computes the stage's
/// coefficients, or copies them from the stage `alike` where its parameters are equal; `alike` may
/// be null. Called at each control tick. False when no parameter, and so no coefficient, has
/// changed. Real-time safe.
bool design(FilterStage& stage, const FilterStage* alike = nullptr) noexcept;

}  // namespace brindle
