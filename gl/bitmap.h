// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <vector>

namespace brindle {

/// An uncompressed picture with 32 bits per pixel.
struct Bitmap {
    int32_t width = 0;
    int32_t height = 0;
    /// `height` rows of `width` pixels, bottom row first; bytes are blue, green, red, alpha.
    std::vector<uint8_t> pixels;
};

/// Largest width and height that are read. Larger ones mean a damaged or malicious file.
inline constexpr int32_t kMaxBitmapSide = 2048;

/// Suppresses "File not found" while files may be missing. UI thread.
inline bool quietMissingFiles = false;

/// Reads a BMP file with 32 bits per pixel. On failure, returns false with an empty picture and
/// prints the reason on standard output.
bool LoadBitmap(const char* path, Bitmap& image);

}  // namespace brindle
