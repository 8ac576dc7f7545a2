// SPDX-License-Identifier: ISC
/// The controls' common language of shape, light and colour. Values stand in dark sunken displays,
/// what is pressed is a raised key; the pointer brings a light outline, a held control gets the
/// contrast colour, and what has no effect at present is grey. Light falls from above. Boxy hosts
/// get square corners, flat ones neither light nor shade.
/// Sizes are half extents around the current origin. UI thread, GL context current.
#pragma once

#include "gl/GLView.h"
#include "gl/drawing.h"

namespace brindle {

/// Texts of one picture glyph each.
inline constexpr const char* kTriangleGlyph = "\x81";  ///< pointing down
inline constexpr const char* kTickGlyph = "\x82";

/// What a control asks once before it draws a pass.
struct Look {
    explicit Look(GLView& view);

    const GLResources* resources;
    float s;  ///< interface scale: a design point in page units
    bool boxy;
    bool flat;
    bool enabled;
    bool hovered;
    bool captured;
    GLColor contrast;

    /// Corner size of a part with this half height.
    float Corner(float hh) const;
    /// A control's colour in its present state: the contrast colour while it is held, grey while
    /// it is without effect.
    GLColor Accent(const GLColor& color) const;
    /// Opacity of its texts in its present state.
    float TextAlpha() const;
};

/// A colour with each component moved towards white, 0 to 1.
GLColor Lightened(const GLColor& color, float share);

/// A dark display, sunken into the panel.
void DrawDisplay(const Look& look, float hw, float hh);
/// A key, raised out of the panel, pressed into it while it is held, flush and dull without effect.
void DrawKey(const Look& look, float hw, float hh);
/// The ground of what pops up above everything else.
void DrawPopup(const Look& look, float hw, float hh);
/// What the pointer and the hold add around a control; over everything else, in the front pass.
void DrawStateOutline(const Look& look, float hw, float hh);
/// The edge of a part in the current colour, visible on each side at the design size.
void DrawOutline(const Look& look, float hw, float hh);

/// A value on a horizontal track: normalised values from 0 at its left end to 1.
struct TrackValue {
    float at;
    float zero;  ///< where the fill begins, marked
};
/// The track's groove with its mark at zero; `travel` is half its length.
void DrawGroove(const Look& look, const GLColor& color, float travel, float zero);
/// The fill from zero to the value, and the value's mark.
void DrawFill(const Look& look, const GLColor& color, float travel, const TrackValue& value);

/// Text without the spaces around it in the current colour, `size` page units to a text unit,
/// smaller where it would be wider than `room`.
void DrawFittedText(const Look& look, const char* text, int alignment, float size, float room);
/// The same centred on a key in a colour, with the shadow that it throws.
void DrawKeyText(const Look& look, const char* text, float size, float room, const GLColor& color);

}  // namespace brindle
