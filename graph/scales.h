// SPDX-License-Identifier: ISC
/// The scales on which knobs and handles move: positions 0 to 1 against port values, and note names
/// for frequencies.
#pragma once

#include <string>

namespace brindle {

/// Q from 0.1 to 100, logarithmic.
float QAt(float position);
float PositionOfQ(float q);

/// Band frequencies from 20 to 20000 Hz, logarithmic. The graph's axis is the same scale.
float BandHzAt(float position);
float PositionOfBandHz(float freq_hz);

/// Section frequencies from 20 to 15000 Hz, logarithmic.
float SectionHzAt(float position);
float PositionOfSectionHz(float freq_hz);

/// Gains from -18 to 18 dB, linear. Positions of gains beyond are 0 and 1.
float GainDbAt(float position);
float PositionOfGainDb(float gain_db);

/// The nearest note of the scale with A4 = 440 Hz, as musicians write it ("C#4"; C4 is the middle
/// C). Empty from D#9 (9956 Hz) upwards, and where the frequency is not above 0.
std::string NoteName(float freq_hz);

}  // namespace brindle
