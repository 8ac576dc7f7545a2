// SPDX-License-Identifier: ISC
/// The spectrum analyser: 241 bins, 24 an octave from 20 Hz, and a ring of their levels in dB.
#pragma once

#include <array>
#include <cstdint>

#include "engine/analyser_bins.h"

namespace brindle {

/// One analyser, owned by its instance. Audio thread, but for `init_analyser`.
struct SpectrumAnalyser {
    AnalyserBins bins;
    AdvanceBins advance_bins;
    double rate;          ///< Hz
    double dt;            ///< s, one sample
    double noise;         ///< dither of the next sample
    uint32_t frame_mask;  ///< samples in a row, less one
    int32_t noise_state;
    uint16_t counter;  ///< samples, wraps
    bool normalise;    ///< rows are shifted so that their loudest bin reads -10 dB
    std::array<std::array<float, kPlotBins>, kPlotRows> rows;  ///< dB
    uint32_t row_index;                                        ///< newest row
};

/// Puts `analyser` at its start for a host that runs at `rate` Hz. Writes all of it, so that no
/// page of it is new to the audio thread. Call at instantiation.
void init_analyser(SpectrumAnalyser& analyser, double rate);

/// Analyses `n` samples of `input`. A sample that is not finite counts as silence. Real-time safe.
void analyse(SpectrumAnalyser& analyser, const float* input, uint32_t n) noexcept;

}  // namespace brindle
