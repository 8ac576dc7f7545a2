// SPDX-License-Identifier: ISC
/// Positions of the panel's parts, in interface points (the panel has 1333 by 800) from its edges.
#pragma once

namespace brindle::layout {

/// The top row: presets, help line, flat-all.
inline constexpr float kHeaderBelowTop = 22.0f;
inline constexpr float kPresetLabelLeft = 40.0f;
inline constexpr float kFirstPresetLeft = 106.0f;
inline constexpr float kPresetPitch = 111.0f;
inline constexpr float kPresetWidth = 106.0f;
inline constexpr float kPresetHeight = 16.0f;
inline constexpr float kHelpLeft = 792.0f;
inline constexpr float kHelpWidth = 496.0f;
inline constexpr float kFlatAllFromRight = 23.0f;
inline constexpr float kFlatAllSize = 26.0f;

/// The graph. Its margins are in design pixels, which puts the keyboard under its frequencies.
inline constexpr float kGraphMarginPixels = 40.0f;
inline constexpr float kGraphTop = 80.0f;
inline constexpr float kGraphHeight = 336.0f;  ///< 21 design pixels for 3 dB
inline constexpr float kHandleSize = 22.0f;

/// The strips: two groups of four bands, and the two sections.
inline constexpr float kFirstStripLeft = 125.0f;
inline constexpr float kStripPitch = 87.0f;
inline constexpr float kStripWidth = kStripPitch - 6.0f;
inline constexpr float kGroupGap = 15.0f;
inline constexpr float kStripBottom = 38.0f;
inline constexpr float kStripTop = 230.0f;
inline constexpr float kStripMiddle = 0.5f * (kStripBottom + kStripTop);
inline constexpr float kStripHeight = kStripTop - kStripBottom;

/// Meters on both sides, their names above them, their scales beside them towards the strips.
inline constexpr float kMeterInLeft = 80.0f;
inline constexpr float kMeterOutLeft = 1253.0f;
inline constexpr float kMeterWidth = 22.0f;
inline constexpr float kMeterBottom = 48.0f;
inline constexpr float kMeterTop = 208.0f;
inline constexpr float kMeterScaleGap = 16.0f;  ///< from the meter's middle
inline constexpr float kMeterScaleWidth = 13.2f;
inline constexpr float kMeterNameSize = 7.0f;
inline constexpr float kMeterNameWidth = 30.0f;
inline constexpr float kHalfCapital = 0.585f * kMeterNameSize;
inline constexpr float kMeterNameHeight = 2.0f * (kHalfCapital + 2.0f);
inline constexpr float kMeterNameMiddle = 228.0f - kHalfCapital;

/// The output section, beside the strips: nameplate and trim.
inline constexpr float kOutputLeft = 1040.0f;
inline constexpr float kOutputWidth = 168.0f;
inline constexpr float kNameAbove = 194.0f;
inline constexpr float kSecondNameAbove = 172.0f;
inline constexpr float kNameHeight = 20.0f;
inline constexpr float kTrimLeft = 1050.0f;
inline constexpr float kTrimWidth = 148.0f;
inline constexpr float kTrimHeight = 30.0f;
inline constexpr float kTrimAbove = 84.0f;  ///< its middle
inline constexpr float kTrimLabelAbove = 112.0f;

/// Left edge of strip 0 to 9.
constexpr float StripLeft(int strip) {
    const int group = strip < 4 ? 0 : strip < 8 ? 1 : 2;
    return kFirstStripLeft + kStripPitch * static_cast<float>(strip) +
           kGroupGap * static_cast<float>(group);
}

}  // namespace brindle::layout
