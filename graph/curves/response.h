// SPDX-License-Identifier: ISC
/// Magnitude responses of the band and section types, from their analogue prototypes: the sample
/// rate has no effect. Each evaluator adds its levels in dB to the curve.
///
/// Valid arguments: `freq_hz` from 0.001 to 1e6, `gain_db` within ±200, `q` finite and above 0.
/// Invalid ones, which a host may send, leave the curve unchanged. No evaluator allocates or keeps
/// state. UI thread.
#pragma once

#include "graph/curves/frequency_grid.h"

namespace brindle {

/// First-order low-pass w0/(s + w0).
void AddLowPass6(const FrequencyGrid& grid, Curve& curve, float freq_hz);
/// First-order high-pass s/(s + w0).
void AddHighPass6(const FrequencyGrid& grid, Curve& curve, float freq_hz);

/// Butterworth low-pass of order 2, 4, 6 or 8.
template <int kOrder>
void AddLowPass(const FrequencyGrid& grid, Curve& curve, float freq_hz);
/// Butterworth high-pass of order 2, 4, 6 or 8.
template <int kOrder>
void AddHighPass(const FrequencyGrid& grid, Curve& curve, float freq_hz);

/// Shelf with the poles and zeros of a Butterworth filter of order 2, 4, 6 or 8; full gain at DC.
/// For boosts the poles are at `freq_hz`, for cuts the zeros.
template <int kOrder>
void AddLowShelf(const FrequencyGrid& grid, Curve& curve, float freq_hz, float gain_db);
/// High shelf like `AddLowShelf`, with full gain at high frequencies.
template <int kOrder>
void AddHighShelf(const FrequencyGrid& grid, Curve& curve, float freq_hz, float gain_db);

/// Peak of `gain_db`. Above 4.77 dB, the width between the points 3 dB below the peak is freq/Q;
/// below, the numerator has that width. `weight` scales all levels except the centre point, which
/// becomes its previous value plus the gain, so that the drawn peak has the set gain with any grid
/// spacing.
void AddBell(const FrequencyGrid& grid, Curve& curve, float freq_hz, float gain_db, float q,
             float weight);
/// Band-pass with unity peak, shifted by `gain_db`. The centre point becomes its previous value
/// plus the gain, as in `AddBell`.
void AddBandPass(const FrequencyGrid& grid, Curve& curve, float freq_hz, float gain_db, float q);
/// Notch. The centre point becomes -120 dB, whatever the curve's value was, because the zero itself
/// falls between grid points.
void AddNotch(const FrequencyGrid& grid, Curve& curve, float freq_hz, float q);

}  // namespace brindle
