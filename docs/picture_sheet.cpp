// SPDX-License-Identifier: ISC
/// Shows all pictures of a bundle on one sheet, on dark and on light: picture_sheet BUNDLE PNG
#include <cairo.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>

#include "gl/bitmap.h"
#include "gl/glyph_table.h"

namespace brindle {
namespace {

constexpr int kCell = 64;     ///< pixels of the sheet to a picture
constexpr int kColumns = 16;  ///< of each half of the sheet
constexpr int kImages[] = {102, 150, 151, 152, 153, 154, 155, 160, 161, 162, 163,
                           164, 165, 250, 251, 252, 253, 318, 319, 320, 321};
constexpr int kCount = static_cast<int>(std::size(kImages)) + static_cast<int>(kGlyphCount);
constexpr int kRows = (kCount + kColumns - 1) / kColumns;

std::string PicturePath(int place) {
    constexpr int kImageCount = static_cast<int>(std::size(kImages));
    return place < kImageCount
               ? "/res/images/img_" + std::to_string(kImages[place]) + ".bmp"
               : "/res/chars/char_" + std::to_string(kFirstGlyph + place - kImageCount);
}

/// Draws one picture over (x, y), shrunk or enlarged to a cell, its grey multiplied by `tint`.
void Paint(cairo_t* sheet, const Bitmap& image, int x, int y, double tint) {
    cairo_surface_t* surface =
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, image.width, image.height);
    cairo_surface_flush(surface);
    uint8_t* out = cairo_image_surface_get_data(surface);
    const size_t stride = static_cast<size_t>(cairo_image_surface_get_stride(surface));
    const auto width = static_cast<size_t>(image.width);
    const auto height = static_cast<size_t>(image.height);
    for (size_t row = 0; row < height; ++row) {
        for (size_t i = 0; i < width * 4; ++i) {
            const uint8_t* texel = &image.pixels[((height - 1 - row) * width + i / 4) * 4];
            const double grey = i % 4 == 3 ? 1.0 : texel[i % 4] / 255.0 * tint;
            out[row * stride + i] = static_cast<uint8_t>(std::lround(grey * texel[3]));
        }
    }
    cairo_surface_mark_dirty(surface);
    cairo_save(sheet);
    cairo_translate(sheet, x, y);
    cairo_scale(sheet, double{kCell} / image.width, double{kCell} / image.height);
    cairo_set_source_surface(sheet, surface, 0, 0);
    cairo_paint(sheet);
    cairo_restore(sheet);
    cairo_surface_destroy(surface);
}

bool MakeSheet(const std::string& bundle, const char* path) {
    cairo_surface_t* surface =
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, 2 * kColumns * kCell, kRows * kCell);
    cairo_t* sheet = cairo_create(surface);
    cairo_set_source_rgb(sheet, 0.12, 0.12, 0.14);
    cairo_paint(sheet);
    cairo_set_source_rgb(sheet, 0.85, 0.85, 0.8);
    cairo_rectangle(sheet, kColumns * kCell, 0, kColumns * kCell, kRows * kCell);
    cairo_fill(sheet);
    bool complete = true;
    for (int place = 0; place < kCount; ++place) {
        Bitmap image;
        if (!LoadBitmap((bundle + PicturePath(place)).c_str(), image)) {
            complete = false;
            continue;
        }
        const int x = place % kColumns * kCell;
        const int y = place / kColumns * kCell;
        Paint(sheet, image, x, y, 1.0);
        Paint(sheet, image, x + kColumns * kCell, y, 0.3);
    }
    const bool written = cairo_surface_write_to_png(surface, path) == CAIRO_STATUS_SUCCESS;
    cairo_destroy(sheet);
    cairo_surface_destroy(surface);
    return complete && written;
}

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: picture_sheet BUNDLE PNG\n", stderr);
        return 2;
    }
    return brindle::MakeSheet(argv[1], argv[2]) ? 0 : 1;
}
