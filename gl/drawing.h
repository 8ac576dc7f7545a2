// SPDX-License-Identifier: ISC
/// What widgets draw with. All routines draw around the current matrix's origin, in its units, in
/// the colour that was applied before (those that state colours of their own say so and leave any
/// behind). Sizes are half extents `hw`, `hh`; `r` is the size of a corner. Texturing is on before
/// and after each of them. Null resources draw nothing where pictures are needed.
/// UI thread, with the editor's GL context current.
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

/// Where a text stands to the origin.
enum TextAlignment : int { kAlignLeft, kAlignCentre, kAlignRight };

/// One glyph over the square from -1 to 1; nothing for an index from 99 on.
void DrawGlyph(const GLResources* resources, size_t index);

/// A line of text whose capitals are centred on the origin's height, in text units (scale first:
/// capitals are 1.17 units high). It ends before the first character without a glyph, which does
/// not count to its width, while those behind it do. Unknown alignments are left.
void DrawText(const GLResources* resources, const char* text, int alignment);

/// The shadow of such a text, in the shade colour; draw the text after it. The matrix stays moved
/// by (0.1, -0.1).
void DrawTextShadow(const GLResources* resources, const char* text, int alignment);

/// Width in text units that `DrawText` aligns by; 0 for null.
float TextWidth(const char* text);

/// An image over the square from -1 to 1, loaded when it was not.
void DrawImage(GLResources* resources, uint32_t number);

/// A texture over the rectangle.
void DrawTexture(GLuint texture, float hw, float hh);

void DrawRect(float hw, float hh);

/// An ellipse in the rectangle, with room for its soft edge: it ends at 31/32 of hw and hh.
void DrawDisc(const GLResources* resources, float hw, float hh);

/// A pill: its ends are half circles of radius hh.
void DrawBar(const GLResources* resources, float hw, float hh);

void DrawRoundRect(const GLResources* resources, float hw, float hh, float r);

/// A rounded rectangle that can be joined to a neighbour: styles 1 to 4 have square corners at the
/// top, bottom, left and right; all other styles are `DrawRoundRect`.
void DrawFramedBox(const GLResources* resources, int style, float hw, float hh, float r);

/// The outline of a rounded rectangle, r / 4 thick, inside its edge.
void DrawRoundFrame(const GLResources* resources, float hw, float hh, float r);

/// A rounded rectangle in `color`, embossed by one interface point: shaded below on the right, lit
/// above on the left.
void DrawWell(const GLResources* resources, float hw, float hh, float r, const GLColor& color);

/// The soft inner edge of something sunken: shade from the upper edge of a rounded rectangle on
/// downwards and, with `lower`, light from the lower edge on upwards, two interface points inside
/// and r high. Nothing in flat style.
void DrawShadow(const GLResources* resources, float hw, float hh, float r, bool lower);

/// A shade on the upper part of a face that makes it look curved. Nothing in flat style.
void DrawGloss(const GLResources* resources, float hw, float hh);

}  // namespace brindle
