// SPDX-License-Identifier: ISC
/// The two faces of a continuous control: a display with the value's text above a slim track, and a
/// round knob in a ring of lamps. Both show the value, where it starts from, and its range.
#pragma once

#include "gl/look.h"

namespace brindle {

/// A control as its face shows it. Sizes are half extents in page units.
struct ControlFace {
    float hw;
    float hh;
    float at;    ///< normalised value
    float zero;  ///< normalised start of the value's track
    const char* text;
    float textSize;  ///< page units to a text unit
    const GLColor& textColor;
    const GLColor& color;  ///< of the value
};

/// What lies beneath the value, for the back pass, and the value, for the main pass.
void DrawValueDisplayBack(const Look& look, const ControlFace& face);
void DrawValueDisplay(const Look& look, const ControlFace& face);

/// How far the value travels on its track to either side of the centre.
float ValueTravel(const Look& look, const ControlFace& face);

/// The direction of a round knob's mark in degrees against the clock from the top: 135 at the
/// lower, -135 at the upper end.
float KnobAngle(float normalised);
/// The same for a round knob, as large as fits.
void DrawRoundKnobBack(const Look& look, const ControlFace& face);
void DrawRoundKnob(const Look& look, const ControlFace& face);
/// What the pointer and the hold add to it, for the front pass.
void DrawRoundKnobState(const Look& look, const ControlFace& face);

}  // namespace brindle
