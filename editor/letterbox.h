// SPDX-License-Identifier: ISC
/// How the panel lies in a window: as large as its proportions allow, in the middle.
#pragma once

#include <cstdint>

#include "gl/GLPoint.h"
#include "gl/GLRect.h"

namespace brindle {

/// The margins beside and above the frame in window pixels, for a window and a design of these
/// sizes. Windows that are narrower than the design have margins above and below.
GLPoint LetterboxMargins(int32_t windowWidth, int32_t windowHeight, int32_t designWidth,
                         int32_t designHeight);

/// The point in a view's bounds that a pixel of a frame shows. Pixels count from the frame's upper
/// left corner; upwards the bounds count as 2 high, whatever they are.
GLPoint FramePixelToTree(GLPoint pixel, GLPoint frameSize, const GLRect& bounds);

}  // namespace brindle
