// SPDX-License-Identifier: ISC
#include "gl/value_text.h"

#include <cmath>
#include <cstdio>

namespace brindle {
namespace {

constexpr float kSilence = 1e-6f;  // -120 dB, far below any meter's floor

/// How a value is written: its number, and "k" for thousands.
struct Notation {
    float number;
    int width;
    int decimals;
    const char* multiplier;
};

Notation Choose(float value, ValueStyle style) {
    switch (style) {
        case ValueStyle::Decibels: {
            const float db = AmplitudeToDb(value);
            return {db, 3, std::fabs(db) < 3.0f ? 1 : 0, ""};
        }
        case ValueStyle::Whole:
            return {value, 2, 0, ""};
        case ValueStyle::Plain:
            break;
    }
    if (std::fabs(value) >= 1000.0f) return {value / 1000.0f, 3, 1, "k"};
    return {value, 3, std::fabs(value) < 10.0f ? 1 : 0, ""};
}

}  // namespace

float AmplitudeToDb(float amplitude) {
    return 20.0f * std::log10(amplitude > kSilence ? amplitude : kSilence);
}

void FormatValue(char* text, size_t size, float value, ValueStyle style, const char* unit) {
    Notation notation = Choose(value, style);
    if (std::fabs(notation.number) < (notation.decimals == 0 ? 0.5f : 0.05f)) {
        notation.number = 0.0f;  // "-0.0" would be no truer than "0.0"
    }
    std::snprintf(text, size, "%*.*f%s%s", notation.width, notation.decimals,
                  static_cast<double>(notation.number), notation.multiplier, unit);
}

}  // namespace brindle
