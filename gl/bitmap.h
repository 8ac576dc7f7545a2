// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <vector>

namespace brindle {

/// An uncompressed picture of 32 bits a pixel.
struct Bitmap {
    int32_t width = 0;
    int32_t height = 0;
    /// height rows of width pixels, the bottom row first; bytes are blue, green, red, alpha.
    std::vector<uint8_t> pixels;
};

/// Largest width and height that are read. More would be a damaged file or an attack on memory.
inline constexpr int32_t kMaxBitmapSide = 2048;

/// Set while files may well be missing: keeps "File not found" from being printed. UI thread.
inline bool quietMissingFiles = false;

/// Reads a BMP file of 32 bits a pixel. What is wrong with a file that is not read is said in a
/// line on standard output. False, and an empty picture, where it cannot be read.
bool LoadBitmap(const char* path, Bitmap& image);

}  // namespace brindle
