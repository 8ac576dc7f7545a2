// SPDX-License-Identifier: ISC
/// The analyser's bins and their recursion, which takes most of the analyser's time.
#pragma once

#include <array>
#include <cstddef>

#include "contract/brindle.h"

namespace brindle {

/// The bins, rounded up to whole tiles of the widest vectors; those beyond kPlotBins stay zero.
inline constexpr size_t kBinSlots = 256;
/// One value of every bin. Aligned to the widest vectors.
struct alignas(64) BinArray : std::array<double, kBinSlots> {};

/// Each bin shifts its frequency to DC with its own oscillator, filters the real and the imaginary
/// part with a second-order Butterworth low-pass, and sums the power. Each quantity has an array of
/// its own, so that neighbouring bins are neighbouring lanes.
struct AnalyserBins {
    BinArray step_cos, step_sin;  ///< rotation per sample
    BinArray re, im;              ///< oscillator
    BinArray magnitude2;          ///< of the oscillator, squared, at the last correction
    BinArray power;               ///< sum over the samples of the row so far
    /// Low-pass y = s1 + b0·v, s1 = s2 + 2·b0·v + a1·y, s2 = b0·v + a2·y (b1 = 2·b0, b2 = b0).
    BinArray b0, a1, a2;
    BinArray re_s1, re_s2, im_s1, im_s2;  ///< states of both low-passes
};

/// Advances every bin by `count` samples `v`. Yields the same bits on every instruction set.
/// Real-time safe.
using AdvanceBins = void (*)(AnalyserBins& bins, const double* v, size_t count) noexcept;

/// Returns the fastest recursion for this processor. Call at instantiation.
AdvanceBins choose_advance_bins();

}  // namespace brindle
