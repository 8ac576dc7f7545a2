// SPDX-License-Identifier: ISC
/// The common shapes and colours of the controls. Values are shown in dark sunken displays; buttons
/// are raised keys. A hovered control gets a light outline, a held one the contrast colour, a
/// control without effect is grey. Light comes from above. Boxy hosts get square corners, flat
/// hosts no light and shade. Sizes are half extents around the current origin. UI thread, GL
/// context current.
#pragma once

#include "gl/GLView.h"
#include "gl/drawing.h"

namespace brindle {

/// Texts that consist of one symbol glyph.
inline constexpr const char* kTriangleGlyph = "\x81";  ///< pointing down
inline constexpr const char* kTickGlyph = "\x82";

/// What a control asks the page once per pass.
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

    /// Corner size of a part with half height `hh`.
    float Corner(float hh) const;
    /// A control's colour in its current state: the contrast colour while it is held, grey while it
    /// has no effect.
    GLColor Accent(const GLColor& color) const;
    /// Opacity of the control's texts in its current state.
    float TextAlpha() const;
};

/// How bright a colour is on a screen: 0 for black, 1 for white.
float Luminance(const GLColor& color);
/// Black or white, whichever stands out more from a ground.
const GLColor& InkOn(const GLColor& ground);
/// A colour whose components are moved towards white by `share`, 0 to 1.
GLColor Lightened(const GLColor& color, float share);

/// A dark display, sunken into the panel.
void DrawDisplay(const Look& look, float hw, float hh);
/// A key: raised from the panel, pressed in while it is held, flush and dull without effect.
void DrawKey(const Look& look, float hw, float hh);
/// The light of a key whose values are set; draw it over the key.
void DrawLitKey(const Look& look, float hw, float hh);
/// The background of a popup.
void DrawPopup(const Look& look, float hw, float hh);
/// The outline of a hovered or held control; drawn on top, in the front pass.
void DrawStateOutline(const Look& look, float hw, float hh);
/// The outline of a part in the current colour, visible on each side at the design size, or with a
/// thickness in page units; a round corner's size is four times the thickness.
void DrawOutline(const Look& look, float hw, float hh);
void DrawOutline(const Look& look, float hw, float hh, float thickness);

/// A value on a horizontal track, normalised: 0 at the left end, 1 at the right.
struct TrackValue {
    float at;
    float zero;  ///< where the fill starts; it has a mark
};
/// The track's groove with its mark at `zero`; `travel` is half the track's length.
void DrawGroove(const Look& look, const GLColor& color, float travel, float zero);
/// The fill from zero to the value, and the value's mark.
void DrawFill(const Look& look, const GLColor& color, float travel, const TrackValue& value);

/// Draws text in the current colour without leading and trailing spaces, `size` page units per text
/// unit, shrunk to fit into `room`.
void DrawFittedText(const Look& look, const char* text, int alignment, float size, float room);
/// Draws fitted text centred on a key, in `color`, with its shadow.
void DrawKeyText(const Look& look, const char* text, float size, float room, const GLColor& color);

}  // namespace brindle
