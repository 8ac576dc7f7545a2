// SPDX-License-Identifier: ISC
/// One second-order section: smoothed parameters and coefficients.
#pragma once

#include "contract/types.h"

namespace brindle {

/// Lowest and highest frequency that a stage is asked for, as a share of the sample rate. Ports
/// reach from 1e-6 (a wide notch's lowest stage at 20 Hz and 768 kHz) to 0.4535 (20 kHz at
/// 44.1 kHz), so that only frequencies at zero, below, or about Nyquist are held.
inline constexpr double kMinFreqShare = 1e-6;
inline constexpr double kMaxFreqShare = 0.499;

/// Q that types 3 and 4 always have.
inline constexpr double kFixedQ = 0.7071;

/// A second-order section in double precision:
/// y = b0·x + s1; s1 ← s2 + b1·x + a1·y; s2 ← b2·x + a2·y.
/// The states s1 and s2 of each channel stand beside those of the other stages, in CascadeState.
struct FilterStage {
    /// What the coefficients were designed from; zero what does not enter into them.
    struct Origin {
        BandType type;
        double gain, freq, q, damping;
        bool operator==(const Origin&) const = default;
    };

    double gain, freq, q;  ///< current values: dB, Hz, Q
    double gain_target, freq_target, q_target;
    BandType type;
    double damping;              ///< signed damping of the shelf designs
    double dt;                   ///< 1 / sample rate, seconds
    double freq_low, freq_high;  ///< Hz, what frequency targets are held between
    double wet, dry;             ///< crossfade weights of the filtered and the plain signal
    double b0, b1, b2, a1, a2;   ///< a1 and a2 carry the sign with which they are added
    Origin origin;
};

/// Sets current and target values alike, weights wet 1 and dry 0. `gain` in dB,
/// `freq` in Hz, `dt` in seconds. Leaves the coefficients to `design`.
void init(FilterStage& stage, BandType type, double gain, double freq, double q, double damping,
          double dt) noexcept;

/// Sets what the stage glides to, `freq` held between kMinFreqShare and kMaxFreqShare of the
/// sample rate. Real-time safe.
void set_targets(FilterStage& stage, double gain, double freq, double q) noexcept;

/// One smoothing step of gain, frequency and Q toward their targets, then new coefficients for the
/// stage's type, unless they would be the same. Called at each control tick; true when the
/// coefficients are new. Where those of the stage `alike` would be the same, they are copied; it
/// may be null. Real-time safe.
bool design(FilterStage& stage, const FilterStage* alike = nullptr) noexcept;

}  // namespace brindle
