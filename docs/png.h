// SPDX-License-Identifier: ISC
#pragma once

#include <cairo.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "tests/support/gl_context.h"

namespace brindle {

/// Writes a picture, its alpha left out, for people to look at. False where it cannot be written.
inline bool WritePng(const Picture& picture, const std::string& path) {
    cairo_surface_t* surface =
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, picture.width, picture.height);
    cairo_surface_flush(surface);
    for (int y = 0; y < picture.height; ++y) {
        uint8_t* row = cairo_image_surface_get_data(surface) +
                       std::ptrdiff_t{y} * cairo_image_surface_get_stride(surface);
        for (int x = 0; x < picture.width; ++x) {
            const Pixel pixel = picture.At(x, y);
            const uint32_t word =
                uint32_t{pixel.red} << 16 | uint32_t{pixel.green} << 8 | pixel.blue;
            std::memcpy(row + std::ptrdiff_t{x} * 4, &word, sizeof word);
        }
    }
    cairo_surface_mark_dirty(surface);
    const cairo_status_t status = cairo_surface_write_to_png(surface, path.c_str());
    cairo_surface_destroy(surface);
    return status == CAIRO_STATUS_SUCCESS;
}

}  // namespace brindle
