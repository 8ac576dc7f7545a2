// SPDX-License-Identifier: ISC
/// Makes all pictures of the editor. Usage: make_pictures FONT DIRECTORY. Writes
/// DIRECTORY/images/img_N.bmp and DIRECTORY/chars/char_N, which res/README.md describes. The same
/// font gives the same bytes.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "gl/glyph_table.h"
#include "res/glyph_outlines.h"
#include "res/raster.h"

namespace brindle {
namespace {

constexpr double kSoftEdge = 31.0 / 32.0;  ///< radius of shapes that end inside their picture
constexpr double kRingInside = 0.75;       ///< inner radius of the ring whose outer radius is 1

double Radius(double x, double y) {
    return std::sqrt(x * x + y * y);
}

Shade Disc(double x, double y) {
    return {1.0, Radius(x, y) <= 1.0 ? 1.0 : 0.0};
}

Shade SoftDisc(double x, double y) {
    return {1.0, Radius(x, y) <= kSoftEdge ? 1.0 : 0.0};
}

Shade Ring(double x, double y) {
    const double radius = Radius(x, y);
    return {1.0, radius <= 1.0 && radius >= kRingInside ? 1.0 : 0.0};
}

/// A bevelled rim around a slightly hollow top, lit from above.
Shade KnobFace(double x, double y) {
    constexpr double kRim = 0.86;
    const double radius = Radius(x, y);
    const double light = radius > kRim ? 0.72 + 0.28 * y / radius : 0.80 - 0.12 * y;
    return {light, radius <= kSoftEdge ? 1.0 : 0.0};
}

Shade Halo(double x, double y) {
    const double rest = std::max(0.0, 1.0 - x * x - y * y);
    return {1.0, rest * rest};
}

/// The glyphs that follow the font's characters: symbols of the editor, in text units.
constexpr double kAdvance127 = kGlyphAdvances[127 - kFirstGlyph];

Shade Cursor(double x, double y) {
    return {1.0, std::abs(x) <= kAdvance127 / 4.0 && std::abs(y) <= 0.8 ? 1.0 : 0.0};
}

Shade MiddleDot(double x, double y) {
    return {1.0, Radius(x, y) <= kAdvance127 / 2.0 ? 1.0 : 0.0};
}

Shade Triangle(double x, double y) {
    constexpr double kTop = 0.32;
    constexpr double kTip = -0.36;
    const double halfWidth = 0.5 * (y - kTip) / (kTop - kTip);
    return {1.0, y <= kTop && std::abs(x) <= halfWidth ? 1.0 : 0.0};
}

/// Distance from the line segment between two points.
double Distance(double x, double y, double ax, double ay, double bx, double by) {
    const double length2 = (bx - ax) * (bx - ax) + (by - ay) * (by - ay);
    const double along = ((x - ax) * (bx - ax) + (y - ay) * (by - ay)) / length2;
    const double t = std::clamp(along, 0.0, 1.0);
    return Radius(x - ax - t * (bx - ax), y - ay - t * (by - ay));
}

Shade Tick(double x, double y) {
    const double near = std::min(Distance(x, y, -0.45, -0.05, -0.12, -0.4),
                                 Distance(x, y, -0.12, -0.4, 0.48, 0.45));
    return {1.0, near <= 0.09 ? 1.0 : 0.0};
}

/// A chain of pictures, each half the size of the one before.
struct Chain {
    int firstNumber;
    int count;
    int firstSize;  ///< pixels
    Shape shape;
};

constexpr Chain kImages[] = {
    // number count size  shape
    {102, 1, 128, Halo},      //
    {150, 6, 256, Disc},      //
    {160, 6, 256, SoftDisc},  //
    {250, 4, 128, KnobFace},  //
    {318, 4, 128, Ring},      //
};

constexpr Shape kExtraGlyphs[] = {Cursor, MiddleDot, Triangle, Tick};
constexpr int kFirstExtraGlyph = 127;

void WriteBitmap(const Raster& raster, const std::filesystem::path& path) {
    std::ofstream file(path, std::ios::binary);
    const auto put = [&file](uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i) file.put(static_cast<char>(value >> (8 * i)));
    };
    constexpr uint32_t kHeaderSize = 54;
    const auto size = static_cast<uint32_t>(raster.size);
    put(0x4D42, 2);
    put(kHeaderSize + size * size * 4, 4);
    put(0, 4);
    put(kHeaderSize, 4);
    put(kHeaderSize - 14, 4);
    put(size, 4);
    put(size, 4);
    put(1, 2);
    put(32, 2);
    put(0, 4);
    put(size * size * 4, 4);
    for (int i = 0; i < 4; ++i) put(0, 4);
    for (const Texel& texel : raster.texels) {
        put(texel.light, 1);
        put(texel.light, 1);
        put(texel.light, 1);
        put(texel.alpha, 1);
    }
    file.close();
    if (!file) throw std::runtime_error("cannot write " + path.string());
}

void MakeImages(const std::filesystem::path& directory) {
    std::filesystem::create_directories(directory);
    for (const Chain& chain : kImages) {
        for (int i = 0; i < chain.count; ++i) {
            const std::string name = "img_" + std::to_string(chain.firstNumber + i) + ".bmp";
            WriteBitmap(Rasterise(chain.shape, chain.firstSize >> i), (directory / name));
        }
    }
}

void MakeGlyphs(const std::string& font, const std::filesystem::path& directory) {
    std::filesystem::create_directories(directory);
    GlyphOutlines outlines(font);
    for (int character = kFirstGlyph; character < kFirstExtraGlyph; ++character) {
        WriteBitmap(outlines.Draw(character), directory / ("char_" + std::to_string(character)));
    }
    int character = kFirstExtraGlyph;
    for (const Shape& shape : kExtraGlyphs) {
        WriteBitmap(Rasterise(shape, kGlyphSize),
                    directory / ("char_" + std::to_string(character++)));
    }
}

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: make_pictures FONT DIRECTORY\n", stderr);
        return 2;
    }
    try {
        const std::filesystem::path directory = argv[2];
        brindle::MakeImages(directory / "images");
        brindle::MakeGlyphs(argv[1], directory / "chars");
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "make_pictures: %s\n", fault.what());
        return 1;
    }
    return 0;
}
