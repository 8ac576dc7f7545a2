// SPDX-License-Identifier: ISC
/// How a section's five controls become the settings of its four cascaded stages.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "engine/filter_stage.h"

namespace brindle {

inline constexpr size_t kSectionStages = 4;
using SectionStages = std::array<FilterStage, kSectionStages>;

/// Damping of a band's stage: types up to HighPass12 have the negative value, the others the
/// positive one. Deliberately not the square root of two.
inline constexpr double kBandDamping = 1.41213562;

/// Damping value of a band of the given type.
double band_damping(BandType type) noexcept;

/// The frequency sent to the stages of a section of `type` whose control stands at
/// `freq_hz`: steep passes are moved so that the whole cascade's corner stands where it was asked
/// for, low-passes at most to 20 kHz. Real-time safe.
float section_frequency(SectionType type, float freq_hz) noexcept;

/// Sets type, damping and targets of the four stages for a section of `type`. `gain` in dB, `freq`
/// in Hz as section_frequency gives it. Coefficients are left to `design`. Real-time safe.
void apply_section(SectionStages& section, SectionType type, float gain, float freq,
                   float q) noexcept;

}  // namespace brindle
