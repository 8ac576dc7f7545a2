// SPDX-License-Identifier: ISC
/// Coefficients of second-order sections from analogue prototypes, one function for each type.
///
/// The recursion is y = b0·x + s1; s1 ← s2 + b1·x + a1·y; s2 ← b2·x + a2·y, so a1 and a2 have the
/// sign with which they are added. All functions are real-time safe and return finite, stable
/// coefficients over the whole range of Prototype.
#pragma once

namespace brindle {

/// The analogue filter that a stage imitates, and the time step.
struct Prototype {
    double gain;     ///< dB, -40 to 40
    double freq;     ///< Hz, above zero and below half the sample rate
    double q;        ///< 0.025 to 1000
    double damping;  ///< signed damping k of the shelves' s² + k·s + 1
    double dt;       ///< 1 / sample rate, seconds
};

struct Coefficients {
    double b0, b1, b2, a1, a2;
};

/// y = x.
Coefficients design_flat(const Prototype& p) noexcept;

/// Low-pass 1/(s + 1) whose magnitude follows the analogue one up to Nyquist. Source: M. Massberg,
/// "Digital Low-Pass Filter Design with Analog-Matched Magnitude Response", AES 131st Convention,
/// 2011, paper 8551.
Coefficients design_low_pass6(const Prototype& p) noexcept;

/// High-pass s/(s + 1) by bilinear transform, prewarped.
Coefficients design_high_pass6(const Prototype& p) noexcept;

/// The matched designs: poles of s² + s/(G·Q) + 1 by impulse invariance, zeros from the prototype's
/// magnitude. Source: M. Vicanek, "Matched Second Order Digital Filters", 2016. The Search type is
/// his simplified band-pass. G = 10^(gain/40) for Bell and Search, 1 for the passes.
Coefficients design_low_pass12(const Prototype& p) noexcept;
Coefficients design_high_pass12(const Prototype& p) noexcept;
Coefficients design_bell(const Prototype& p) noexcept;
Coefficients design_search(const Prototype& p) noexcept;

/// Shelves by bilinear transform of (s² + k·wz·s + wz²) / (s² + k·wp·s + wp²), one prewarped
/// tangent for the poles and one for the zeros (R. Bristow-Johnson, "Audio EQ Cookbook", for the
/// transform). They reach 10^(gain/20) at DC (low) or Nyquist (high) and unity at the other end.
Coefficients design_lo_shelf(const Prototype& p) noexcept;
Coefficients design_hi_shelf(const Prototype& p) noexcept;  ///< held at or above 100 Hz
Coefficients design_lo_shelf2(const Prototype& p) noexcept;
Coefficients design_hi_shelf2(const Prototype& p) noexcept;     ///< held at or below 10 kHz
Coefficients design_sym_lo_shelf(const Prototype& p) noexcept;  ///< held at or below 0.45 × rate

/// Notch (s² + 1)/(s² + s/Q + 1) by bilinear transform, prewarped (as in the Cookbook).
Coefficients design_notch(const Prototype& p) noexcept;

}  // namespace brindle
