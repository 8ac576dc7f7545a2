// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>

namespace brindle {

/// Room for one line of help, its end included.
inline constexpr size_t kInfoSize = 256;

/// Writes a help text that is a format with its own length in bytes as the only argument: "%%"
/// gives a percent sign, the first integer conversion (d i u o x X, with flags, width and
/// precision) the length. Whatever else follows a percent sign, a space too ("50% dry"), stays as
/// written. Cut at 255 characters; null gives an empty text; `text` may be `out`.
void FormatInfo(char (&out)[kInfoSize], const char* text);

}  // namespace brindle
