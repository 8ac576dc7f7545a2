// SPDX-License-Identifier: ISC
#include "graph/scales.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "contract/ports.h"

namespace brindle {
namespace {

constexpr float kLnThousand = 6.9077554f;    // 0.1 to 100, and 20 to 20000
constexpr float kLnSevenFifty = 6.6200733f;  // 20 to 15000

/// Notes are counted from C-1 at 8.18 Hz; A4 is note 69.
constexpr int kFirstUnnamedNote = 123;
constexpr float kQuarterTone = 1.0293022f;
constexpr std::array<const char*, 12> kNoteNames = {"C",  "C#", "D",  "D#", "E",  "F",
                                                    "F#", "G",  "G#", "A",  "A#", "B"};

float NoteHz(int note) {
    return 440.0f * std::exp2(static_cast<float>(note - 69) / 12.0f);
}

}  // namespace

float QAt(float position) {
    return kLowestQ * std::exp(position * kLnThousand);
}
float PositionOfQ(float q) {
    return std::log(q / kLowestQ) / kLnThousand;
}

float BandHzAt(float position) {
    return kLowestHz * std::exp(position * kLnThousand);
}
float PositionOfBandHz(float freq_hz) {
    return std::log(freq_hz / kLowestHz) / kLnThousand;
}

float SectionHzAt(float position) {
    return kLowestHz * std::exp(position * kLnSevenFifty);
}
float PositionOfSectionHz(float freq_hz) {
    return std::log(freq_hz / kLowestHz) / kLnSevenFifty;
}

float GainDbAt(float position) {
    return 2.0f * kGainRangeDb * position - kGainRangeDb;
}
float PositionOfGainDb(float gain_db) {
    return std::clamp((gain_db + kGainRangeDb) / (2.0f * kGainRangeDb), 0.0f, 1.0f);
}

std::string NoteName(float freq_hz) {
    if (!(freq_hz > 0.0f)) return {};
    for (int next = 1; next <= kFirstUnnamedNote; ++next) {
        if (NoteHz(next) < freq_hz * kQuarterTone) continue;
        const int note = next - 1;
        return kNoteNames[static_cast<size_t>(note % 12)] + std::to_string(note / 12 - 1);
    }
    return {};
}

}  // namespace brindle
