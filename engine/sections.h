// SPDX-License-Identifier: ISC
/// From a section's five controls to the settings of its four stages.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "engine/filter_stage.h"

namespace brindle {

inline constexpr size_t kSectionStages = 4;
using SectionStages = std::array<FilterStage, kSectionStages>;

/// The stages' frequency in a section of `type` whose control says `freq_hz`. It moves steep passes
/// so that the cascade's corner is at `freq_hz`, low-passes up to 20 kHz at most. Real-time safe.
float section_frequency(SectionType type, float freq_hz) noexcept;

/// Sets type, damping and targets of the four stages of a section of `type`, not the coefficients.
/// `gain` in dB, `freq` in Hz from section_frequency. Real-time safe.
void apply_section(SectionStages& section, SectionType type, float gain, float freq,
                   float q) noexcept;

}  // namespace brindle
