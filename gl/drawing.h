// SPDX-License-Identifier: ISC
/// The drawing routines of the widgets. They draw around the current matrix's origin, in its units
/// and in the current colour (routines with colours of their own say so and may leave any colour
/// behind). Sizes are half extents `hw`, `hh`; `r` is a corner's size. Texturing is on before and
/// after each routine. Null resources draw nothing where pictures are needed. UI thread, with the
/// editor's GL context current.
#pragma once

#include <cstddef>
#include <cstdint>

#include "gl/GLColor.h"
#include "gl/GLResources.h"
#include "gl/gl.h"

namespace brindle {

/// Saves the current GL matrix for the lifetime of a scope.
struct MatrixScope {
    MatrixScope() { glPushMatrix(); }
    ~MatrixScope() { glPopMatrix(); }
    MatrixScope(const MatrixScope&) = delete;
    MatrixScope& operator=(const MatrixScope&) = delete;
};

/// How a text is aligned to the origin.
enum TextAlignment : int { kAlignLeft, kAlignCentre, kAlignRight };

/// Draws a glyph over the square from -1 to 1; nothing for indices from 99 upwards.
void DrawGlyph(const GLResources* resources, size_t index);

/// Draws a line of text in text units, its capitals centred vertically on the origin (scale first:
/// capitals are 1.17 units high). Drawing stops at the first character without a glyph; that
/// character adds no width, those after it do. Unknown alignments are left.
void DrawText(const GLResources* resources, const char* text, int alignment);

/// Draws the text's shadow in the shade colour; draw the text after it. The matrix stays moved by
/// (0.1, -0.1).
void DrawTextShadow(const GLResources* resources, const char* text, int alignment);

/// Draws the text at eight places around its own, `distance` text units away: an outline for text
/// that is drawn after it.
void DrawTextOutline(const GLResources* resources, const char* text, int alignment, float distance);

/// The width that `DrawText` aligns by, in text units; 0 for null.
float TextWidth(const char* text);

/// Draws an image over the square from -1 to 1, and loads it on first use.
void DrawImage(GLResources* resources, uint32_t number);

/// Draws a texture over the rectangle.
void DrawTexture(GLuint texture, float hw, float hh);

void DrawRect(float hw, float hh);

/// An ellipse that ends at 31/32 of `hw` and `hh`, which leaves space for its soft edge.
void DrawDisc(const GLResources* resources, float hw, float hh);

/// A pill shape: its ends are half circles of radius `hh`.
void DrawBar(const GLResources* resources, float hw, float hh);

constexpr float kNoRim = 1e9f;
/// A rounded rectangle. Where another shape will hide its inside, only the corners and a strip of
/// width `rim` along each straight edge are drawn (left and right at most as wide as the corners).
void DrawRoundRect(const GLResources* resources, float hw, float hh, float r, float rim = kNoRim);

/// A rounded rectangle that can be open on one side: styles 1 to 4 leave out the slices with the
/// corners at the top, bottom, left and right, and end straight, `r` short of that edge. All other
/// styles are `DrawRoundRect`.
void DrawFramedBox(const GLResources* resources, int style, float hw, float hh, float r,
                   float rim = kNoRim);

/// The outline of a rounded rectangle, r / 4 thick, inside its edge.
void DrawRoundFrame(const GLResources* resources, float hw, float hh, float r);

/// A rounded rectangle in `color`, embossed by one interface point: dark at the lower right, light
/// at the upper left.
void DrawWell(const GLResources* resources, float hw, float hh, float r, const GLColor& color);

/// The soft inner edge of a sunken rounded rectangle, `r` high and two interface points inside:
/// shade fading downwards from the upper edge and, with `lower`, light fading upwards from the
/// lower edge. Draws nothing in flat style.
void DrawShadow(const GLResources* resources, float hw, float hh, float r, bool lower);

/// A shade on the upper part of a face that makes it look curved. Draws nothing in flat style.
void DrawGloss(const GLResources* resources, float hw, float hh);

}  // namespace brindle
