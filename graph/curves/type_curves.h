// SPDX-License-Identifier: ISC
/// The evaluator of each band and section type.
#pragma once

#include "contract/types.h"
#include "graph/curves/frequency_grid.h"

namespace brindle {

/// The values of the controls that shape a curve, as the host reports them.
struct CurveSettings {
    float gain_db;
    float freq_hz;
    float q;
};

/// Adds a band's response in dB to `curve`. Flat, Lsh2, Hsh2 and SymLsh are drawn flat. UI thread.
void AddBandCurve(const FrequencyGrid& grid, Curve& curve, BandType type,
                  const CurveSettings& settings);

/// Adds a section's response in dB to `curve`. Unlike in the engine's cascades, steep filters are
/// drawn at the set frequency and a wide notch as one notch. UI thread.
void AddSectionCurve(const FrequencyGrid& grid, Curve& curve, SectionType type,
                     const CurveSettings& settings);

/// Adds the response of a strip whose type port holds `type`. UI thread.
void AddStripCurve(const FrequencyGrid& grid, Curve& curve, int strip, float type,
                   const CurveSettings& settings);

}  // namespace brindle
