// SPDX-License-Identifier: ISC
/// Settings that the editor makes for all views of the process before the first frame. UI thread.
#pragma once

#include <string>

#include "gl/GLColor.h"

namespace brindle {

/// The bundle's path, ending with a separator; pictures are loaded from there.
inline std::string resourceDirectory;

/// The host's theme colours; the defaults apply until a host sets opaque ones.
inline GLColor hostBackgroundColor = kCream;
inline GLColor hostContrastColor = kAmber;

/// Looks that a host requests: square corners; no shadows and gloss.
inline bool themeBoxy = false;
inline bool themeFlat = false;

/// The colours that embossing, shadows and gloss darken and lighten with.
inline GLColor shadeColor = kBlack;
inline GLColor lightColor{0.25f, 0.25f, 0.25f};

}  // namespace brindle
