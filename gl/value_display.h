// SPDX-License-Identifier: ISC
/// The two faces of a continuous control: a display with the value's text above a slim track, and a
/// round knob in a ring of lamps. Both show the value, where its track starts, and its range.
#pragma once

#include "gl/look.h"

namespace brindle {

/// A control's state for drawing. Sizes are half extents in page units.
struct ControlFace {
    float hw;
    float hh;
    float at;    ///< normalised value
    float zero;  ///< normalised start of the value's track
    const char* text;
    float textSize;  ///< page units per text unit
    const GLColor& textColor;
    const GLColor& color;  ///< the value's
};

/// Draw what is beneath the value (back pass), and the value (main pass).
void DrawValueDisplayBack(const Look& look, const ControlFace& face);
void DrawValueDisplay(const Look& look, const ControlFace& face);

/// Travel of the value on its track to either side of the centre.
float ValueTravel(const Look& look, const ControlFace& face);

/// The angle of a round knob's mark in degrees, counter-clockwise from the top: 135 at the lower
/// end, -135 at the upper end.
float KnobAngle(float normalised);
/// Draw a round knob as large as fits: beneath the value (back pass), and the value (main pass).
void DrawRoundKnobBack(const Look& look, const ControlFace& face);
void DrawRoundKnob(const Look& look, const ControlFace& face);
/// Draws the glow of a hovered or held round knob (front pass).
void DrawRoundKnobState(const Look& look, const ControlFace& face);

}  // namespace brindle
