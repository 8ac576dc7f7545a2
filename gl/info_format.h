// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>

namespace brindle {

/// Size of a help text, its terminator included.
inline constexpr size_t kInfoSize = 256;

/// Formats a help text, with its own length in bytes as the only argument: "%%" gives a percent
/// sign, the first integer conversion (d i u o x X, with flags, width and precision) gives the
/// length. Any other percent sign is kept, also before a space ("50% dry"). The result is cut at
/// 255 characters; null gives an empty text; `text` may be `out`.
void FormatInfo(char (&out)[kInfoSize], const char* text);

}  // namespace brindle
