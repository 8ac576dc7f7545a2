// SPDX-License-Identifier: ISC
// What a section's controls mean for its four stages.
#include "engine/sections.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "engine/band_types.h"

namespace brindle {
namespace {

SectionStages apply(int32_t type, float gain_db, float freq_hz, float q, double rate = 48000.0) {
    SectionStages section;
    for (FilterStage& stage : section) {
        init(stage, 0, 0.0, 1000.0, 1.0, -kBandDamping, 1.0 / rate);
    }
    apply_section(section, type, gain_db, section_frequency(type, freq_hz), q);
    return section;
}

int32_t code(SectionType type) {
    return static_cast<int32_t>(type);
}

TEST(Sections, DampingsAreThePolePairsOfAButterworthFilter) {
    for (int32_t type = code(SectionType::HighPass12); type <= code(SectionType::LoShelf48);
         ++type) {
        SCOPED_TRACE(kSectionTypeLabels[static_cast<size_t>(type)].name);
        const int count = (type - 1) % 4 + 1;
        const double sign = type < code(SectionType::HiShelf12) ? -1.0 : 1.0;
        const SectionStages section = apply(type, 12.0f, 1000.0f, 1.0f);
        for (int i = 0; i < count; ++i) {
            // 2·count poles stand 180°/(2·count) apart, symmetric about the negative real axis.
            const double spacing = std::numbers::pi / (2.0 * count);
            const double angle = spacing * (count - i - 0.5);
            EXPECT_NEAR(section[static_cast<size_t>(i)].damping, sign * 2.0 * std::cos(angle),
                        1e-9);
        }
        for (size_t i = static_cast<size_t>(count); i < section.size(); ++i) {
            EXPECT_EQ(section[i].type, static_cast<int32_t>(BandType::Flat));
        }
    }
}

// Neither is the square root of two, and three shelves are meant to miss a ten-thousandth.
TEST(Sections, OddDigitsAreMeant) {
    EXPECT_EQ(band_damping(4), -1.41213562);
    EXPECT_EQ(band_damping(5), 1.41213562);
    EXPECT_DOUBLE_EQ(apply(code(SectionType::LoShelf36), 10.0f, 100.0f, 1.0f)[0].gain_target,
                     3.333);
}

TEST(Sections, MoveTheirStagesFrequency) {
    const struct {
        SectionType type;
        float asked_hz;
        double stages_hz;
    } kRows[] = {
        {SectionType::HighPass12, 1000.0f, 1000.0},   {SectionType::HighPass24, 1000.0f, 880.0},
        {SectionType::HighPass36, 1000.0f, 750.0},    {SectionType::HighPass48, 1000.0f, 700.0},
        {SectionType::LowPass12, 1000.0f, 1000.0},    {SectionType::LowPass24, 1000.0f, 1200.0},
        {SectionType::LowPass36, 1000.0f, 1400.0},    {SectionType::LowPass48, 1000.0f, 1500.0},
        {SectionType::LowPass12, 20500.0f, 20500.0},  {SectionType::LowPass24, 17000.0f, 20000.0},
        {SectionType::LowPass36, 15000.0f, 20000.0},  {SectionType::LowPass48, 15000.0f, 20000.0},
        {SectionType::HighPass24, 25000.0f, 22000.0}, {SectionType::HiShelf24, 20500.0f, 20500.0}};
    for (const auto& row : kRows) {
        SCOPED_TRACE(kSectionTypeLabels[static_cast<size_t>(row.type)].name);
        for (const FilterStage& stage : apply(code(row.type), 0.0f, row.asked_hz, 1.0f)) {
            EXPECT_EQ(stage.freq_target, row.stages_hz);
        }
    }
}

TEST(Sections, OfUnknownTypeAreFlat) {
    for (int32_t type : {18, 1000, -1, -3}) {
        for (const FilterStage& stage : apply(type, 6.0f, 1000.0f, 1.0f)) EXPECT_EQ(stage.type, 0);
    }
}

TEST(Sections, SpreadAWideNotchAndKeepItBelowNyquist) {
    const auto notch = apply(code(SectionType::WideNotch), 0.0f, 1000.0f, 1.0f);
    const double expected[] = {681.4, 880.0, 1136.4, 1467.6};
    for (size_t i = 0; i < kSectionStages; ++i) {
        EXPECT_NEAR(notch[i].freq_target, expected[i], 0.5);
        EXPECT_EQ(notch[i].type, static_cast<int32_t>(BandType::Notch));
    }
    const auto high = apply(code(SectionType::WideNotch), 0.0f, 15000.0f, 0.1f, 44100.0);
    EXPECT_NEAR(high[2].freq_target, 0.45 * 44100.0, 1e-6);
    EXPECT_NEAR(high[3].freq_target, 0.45 * 44100.0, 1e-6);
}

}  // namespace
}  // namespace brindle
