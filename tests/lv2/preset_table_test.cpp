// SPDX-License-Identifier: ISC
#include "editor/preset_table.h"

#include <gmock/gmock.h>

#include <cmath>
#include <string>
#include <vector>

#include "engine/band_types.h"

namespace brindle {
namespace {

float value(const Preset& preset, uint32_t port) {
    return preset.values.at(port - kFirstPresetPort);
}

const Preset& preset_named(const std::string& name) {
    for (const Preset& preset : kPresets) {
        if (preset.name == name) return preset;
    }
    ADD_FAILURE() << "no preset " << name;
    return kPresets[0];
}

TEST(PresetTable, NamesStandInTheOrderOfTheButtons) {
    std::vector<std::string> names;
    for (const Preset& preset : kPresets) names.emplace_back(preset.name);
    EXPECT_THAT(names, testing::ElementsAre("Dialog", "Hot Pocket", "60Hz Buzz Kill",
                                            "Push+Pull Tone", "Kick", "Snare"));
}

void expect_strip_in_range(const Preset& preset, uint32_t first, size_t types, float top_hz) {
    SCOPED_TRACE(first);
    const float on = value(preset, first + kEnable);
    EXPECT_TRUE(on == 0.0f || on == 1.0f);
    const float type = value(preset, first + kType);
    EXPECT_EQ(type, std::floor(type));
    EXPECT_LT(type, static_cast<float>(types));
    EXPECT_LE(std::abs(value(preset, first + kGain)), 18.0f);
    EXPECT_GE(value(preset, first + kFrequency), 20.0f);
    EXPECT_LE(value(preset, first + kFrequency), top_hz);
    EXPECT_GE(value(preset, first + kQ), 0.1f);
    EXPECT_LE(value(preset, first + kQ), 100.0f);
}

TEST(PresetTable, EveryValueIsOneThatItsPortTakes) {
    for (const Preset& preset : kPresets) {
        SCOPED_TRACE(preset.name);
        for (int band = 0; band < kBandCount; ++band) {
            expect_strip_in_range(preset, band_port(band), kBandTypeCount, 20000.0f);
        }
        for (int section = 0; section < kSectionCount; ++section) {
            expect_strip_in_range(preset, section_port(section), kSectionTypeCount, 15000.0f);
        }
        EXPECT_EQ(value(preset, section_port(1) + kQ), 1.0f);
        EXPECT_EQ(value(preset, kTrimPort), 0.0f);
    }
}

// Mains hum at 60 Hz has its overtones at multiples of it: the section takes the fundamental, the
// bands notch the overtones from the second to the eighth.
TEST(PresetTable, BuzzKillNotchesTheOvertonesOfMainsHum) {
    const Preset& preset = preset_named("60Hz Buzz Kill");
    EXPECT_EQ(value(preset, section_port(0) + kType), static_cast<float>(SectionType::WideNotch));
    EXPECT_NEAR(value(preset, section_port(0) + kFrequency), 60.0f, 0.6f);
    for (int band = 0; band < 7; ++band) {
        SCOPED_TRACE(band);
        const float overtone_hz = 60.0f * static_cast<float>(band + 2);
        EXPECT_NEAR(value(preset, band_port(band) + kFrequency), overtone_hz, 0.005f * overtone_hz);
        EXPECT_EQ(value(preset, band_port(band) + kEnable), 1.0f);
    }
}

// The low end is pushed by one shelf and pulled by another, above it, by the same amount.
TEST(PresetTable, PushPullBoostsAndCutsTheLowsEqually) {
    const Preset& preset = preset_named("Push+Pull Tone");
    EXPECT_EQ(value(preset, band_port(0) + kType), static_cast<float>(BandType::LoShelf));
    EXPECT_EQ(value(preset, section_port(0) + kType), static_cast<float>(SectionType::LoShelf12));
    EXPECT_EQ(value(preset, band_port(0) + kGain), -value(preset, section_port(0) + kGain));
    EXPECT_LT(value(preset, band_port(0) + kFrequency),
              value(preset, section_port(0) + kFrequency));
}

}  // namespace
}  // namespace brindle
