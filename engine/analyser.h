// SPDX-License-Identifier: ISC
/// The spectrum analyser: 241 bins, 24 an octave from 20 Hz, and a ring of their levels in dB.
#pragma once

#include <array>
#include <cstdint>

#include "engine/analyser_bins.h"

namespace brindle {

/// One instance's analyser. Only the audio thread uses it after `init_analyser`.
struct SpectrumAnalyser {
    AnalyserBins bins;
    AdvanceBins advance_bins;
    double rate;          ///< Hz
    double dt;            ///< s, one sample
    double noise;         ///< dither for the next sample
    uint32_t frame_mask;  ///< samples in a row, minus one
    int32_t noise_state;
    uint16_t counter;  ///< samples, wraps
    bool normalise;    ///< shift rows so that their loudest bin reads -10 dB
    std::array<std::array<float, kPlotBins>, kPlotRows> rows;  ///< dB
    uint32_t row_index;                                        ///< newest row
};

/// Initialises `analyser` for a host that runs at `rate` Hz. Writes every byte, so that the audio
/// thread meets no page for the first time. Call at instantiation.
void init_analyser(SpectrumAnalyser& analyser, double rate);

/// Analyses `n` samples of `input`. Samples that are not finite count as silence. Real-time safe.
void analyse(SpectrumAnalyser& analyser, const float* input, uint32_t n) noexcept;

}  // namespace brindle
