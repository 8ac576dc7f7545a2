// SPDX-License-Identifier: ISC
/// Fits the panel into a window: as large as its aspect ratio allows, and centred.
#pragma once

#include <cstdint>

#include "gl/GLPoint.h"
#include "gl/GLRect.h"

namespace brindle {

/// The margins beside and above the frame in window pixels, for given window and design sizes.
/// Windows narrower than the design have margins above and below.
GLPoint LetterboxMargins(int32_t windowWidth, int32_t windowHeight, int32_t designWidth,
                         int32_t designHeight);

/// The point in a view's bounds at a frame's pixel. Pixels count from the frame's upper left
/// corner. The bounds' height counts as 2, whatever it is.
GLPoint FramePixelToTree(GLPoint pixel, GLPoint frameSize, const GLRect& bounds);

}  // namespace brindle
