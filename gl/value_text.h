// SPDX-License-Identifier: ISC
/// A control's value as text.
#pragma once

#include <cstddef>

namespace brindle {

/// How a control formats its value.
enum class ValueStyle {
    Plain,     ///< one decimal below 10, none above, thousands as "1.5k"
    Whole,     ///< no decimals
    Decibels,  ///< a linear amplitude in decibels, one decimal below 3 dB
};

/// Decibels of a linear amplitude, at least -120; 0, negative amplitudes and NaN give -120.
float AmplitudeToDb(float amplitude);

/// Writes a finite value and its unit into a buffer of `size` characters, truncated if it is full.
/// Short numbers are padded with a space, as in " 50Hz"; values that round to zero have no sign.
void FormatValue(char* text, size_t size, float value, ValueStyle style, const char* unit);

}  // namespace brindle
