// SPDX-License-Identifier: ISC
/// The analyser's bins and their recursion, the part of the analyser that every sample pays for.
#pragma once

#include <array>
#include <cstddef>

#include "contract/brindle.h"

namespace brindle {

/// Room for the bins in whole tiles of the widest vectors; what lies beyond kPlotBins stays zero.
inline constexpr size_t kBinSlots = 256;
/// One value of every bin. Aligned to the widest vectors.
struct alignas(64) BinArray : std::array<double, kBinSlots> {};

/// Each bin shifts its frequency to DC with an oscillator of its own, keeps what a second-order
/// Butterworth low-pass lets through of the real and the imaginary part, and sums its power.
/// One array per quantity, so that neighbouring bins are neighbouring lanes.
struct AnalyserBins {
    BinArray step_cos, step_sin;  ///< rotation per sample
    BinArray re, im;              ///< oscillator
    BinArray magnitude2;          ///< of the oscillator, squared, when last measured
    BinArray power;               ///< sum over the samples of the row
    /// Low-pass y = s1 + b0·v, s1 = s2 + 2·b0·v + a1·y, s2 = b0·v + a2·y (b1 = 2·b0, b2 = b0).
    BinArray b0, a1, a2;
    BinArray re_s1, re_s2, im_s1, im_s2;  ///< low-pass state of the real and the imaginary part
};

/// Advances every bin by `count` samples `v`. Yields the same bits on every instruction set.
/// Real-time safe.
using AdvanceBins = void (*)(AnalyserBins& bins, const double* v, size_t count) noexcept;

/// The fastest recursion for the processor at hand. Asks the processor: call at instantiation.
AdvanceBins choose_advance_bins();

}  // namespace brindle
