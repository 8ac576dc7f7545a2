// SPDX-License-Identifier: ISC
#include "contract/presets.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "contract/types.h"

namespace brindle {
namespace {

float value(const Preset& preset, uint32_t port) {
    return preset.values.at(port - kFirstPresetPort);
}

TEST(PresetTable, NamesStandInTheOrderOfTheButtonsAndAllLeaveTheTrim) {
    std::vector<std::string> names;
    for (const Preset& preset : kPresets) {
        names.emplace_back(preset.name);
        EXPECT_EQ(value(preset, section_port(1) + kQ), 1.0f);
        EXPECT_EQ(value(preset, kTrimPort), 0.0f);
    }
    EXPECT_THAT(names, testing::ElementsAre("Dialog", "Hot Pocket", "60Hz Buzz Kill",
                                            "Push+Pull Tone", "Kick", "Snare"));
}

// Mains hum at 60 Hz has overtones at its multiples: the section notches the fundamental, the bands
// notch the overtones from the second to the eighth.
TEST(PresetTable, BuzzKillNotchesTheOvertonesOfMainsHum) {
    const Preset& preset = kPresets[2];
    EXPECT_EQ(value(preset, section_port(0) + kType), static_cast<float>(SectionType::WideNotch));
    EXPECT_NEAR(value(preset, section_port(0) + kFrequency), 60.0f, 0.6f);
    for (int band = 0; band < 7; ++band) {
        SCOPED_TRACE(band);
        const float overtone_hz = 60.0f * static_cast<float>(band + 2);
        EXPECT_NEAR(value(preset, band_port(band) + kFrequency), overtone_hz, 0.005f * overtone_hz);
        EXPECT_EQ(value(preset, band_port(band) + kEnable), 1.0f);
    }
}

// One shelf boosts the low end, another one above it cuts by the same amount.
TEST(PresetTable, PushPullBoostsAndCutsTheLowsEqually) {
    const Preset& preset = kPresets[3];
    EXPECT_EQ(value(preset, band_port(0) + kType), static_cast<float>(BandType::LoShelf));
    EXPECT_EQ(value(preset, section_port(0) + kType), static_cast<float>(SectionType::LoShelf12));
    EXPECT_EQ(value(preset, band_port(0) + kGain), -value(preset, section_port(0) + kGain));
    EXPECT_LT(value(preset, band_port(0) + kFrequency),
              value(preset, section_port(0) + kFrequency));
}

}  // namespace
}  // namespace brindle
