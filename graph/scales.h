// SPDX-License-Identifier: ISC
/// The scales of knobs and handles, which convert positions from 0 to 1 to port values and back,
/// and the note names of frequencies.
#pragma once

#include <string>

namespace brindle {

/// Q from 0.1 to 100, logarithmic.
float QAt(float position);
float PositionOfQ(float q);

/// Band frequencies from 20 to 20000 Hz, logarithmic, like the graph's axis.
float BandHzAt(float position);
float PositionOfBandHz(float freq_hz);

/// Section frequencies from 20 to 15000 Hz, logarithmic.
float SectionHzAt(float position);
float PositionOfSectionHz(float freq_hz);

/// Gains from -18 to 18 dB, linear. Gains outside the range have position 0 or 1.
float GainDbAt(float position);
float PositionOfGainDb(float gain_db);

/// The nearest note with A4 = 440 Hz, in scientific pitch notation ("C#4"; C4 is the middle C).
/// Empty if it is D#9 (9956 Hz) or higher, and for frequencies not above 0.
std::string NoteName(float freq_hz);

}  // namespace brindle
