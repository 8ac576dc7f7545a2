// SPDX-License-Identifier: ISC
/// What the editor sets for all views of the process before the first frame, and views read.
/// UI thread.
#pragma once

#include <string>

#include "gl/GLColor.h"

namespace brindle {

/// The bundle's path, ending with a separator; pictures are looked for beneath it.
inline std::string resourceDirectory;

/// The host's theme colours; these defaults stand until a host gives opaque ones.
inline GLColor hostBackgroundColor = kCream;
inline GLColor hostContrastColor = kAmber;

/// Looks that a host asks for: square corners; no shadows, gloss and glass.
inline bool themeBoxy = false;
inline bool themeFlat = false;

/// What embossing, shadows and gloss darken with, and what they lighten with.
inline GLColor shadeColor = kBlack;
inline GLColor lightColor = kGrey40;

}  // namespace brindle
