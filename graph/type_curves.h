// SPDX-License-Identifier: ISC
/// Which evaluator draws which band or section type.
#pragma once

#include "graph/frequency_grid.h"

namespace brindle {

/// The controls that shape a curve, as the host reports them.
struct CurveSettings {
    float gain_db;
    float freq_hz;
    float q;
};

/// Adds a band's response in dB to `curve`. `type` is the type port's value; codes are its integer
/// part after adding 0.1. The types Flat, Lsh2, Hsh2 and SymLsh, and whatever is no type, are drawn
/// flat. UI thread.
void AddBandCurve(const FrequencyGrid& grid, Curve& curve, float type,
                  const CurveSettings& settings);

/// The same for a section. Steep filters are drawn at the set frequency and a wide notch as one
/// notch, which is not what the engine's cascades do.
void AddSectionCurve(const FrequencyGrid& grid, Curve& curve, float type,
                     const CurveSettings& settings);

}  // namespace brindle
