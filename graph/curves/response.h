// SPDX-License-Identifier: ISC
/// Magnitude responses of the band and section types, as their analogue prototypes have them: no
/// sample rate enters. Each evaluator adds its levels in dB to what the curve already holds.
///
/// Common to all: `freq_hz` within 0.001 to 1e6, `gain_db` within ±200 and `q` above 0 and finite;
/// anything else (a host may send what it likes) leaves the curve as it is. None allocates or keeps
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

/// Shelf with the poles and zeros of a Butterworth filter of order 2, 4, 6 or 8, full gain at DC.
/// Boosts keep the poles at `freq_hz`, cuts the zeros.
template <int kOrder>
void AddLowShelf(const FrequencyGrid& grid, Curve& curve, float freq_hz, float gain_db);
/// The same with full gain at high frequencies.
template <int kOrder>
void AddHighShelf(const FrequencyGrid& grid, Curve& curve, float freq_hz, float gain_db);

/// Peak of `gain_db` with s²-terms whose damping grows with the gain: above 4.77 dB the width
/// between the points 3 dB below the peak is freq/Q; below, the numerator keeps that width.
/// `weight` scales all levels but the centre point's, which is pinned to its earlier value plus
/// the gain, so that the drawn peak meets the set gain whatever the spacing of the grid.
void AddBell(const FrequencyGrid& grid, Curve& curve, float freq_hz, float gain_db, float q,
             float weight);
/// Band-pass with unity peak, all of it shifted by `gain_db`; the centre point is pinned as a
/// bell's.
void AddBandPass(const FrequencyGrid& grid, Curve& curve, float freq_hz, float gain_db, float q);
/// Notch; the centre point becomes -120 dB whatever the curve held there, because the zero itself
/// falls between grid points.
void AddNotch(const FrequencyGrid& grid, Curve& curve, float freq_hz, float q);

}  // namespace brindle
