// SPDX-License-Identifier: ISC
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace brindle {

/// Grey and opacity of a shape at one point, 0 to 1.
struct Shade {
    double light;
    double alpha;
};

/// A shape over the square from -1 to 1, y upwards.
using Shape = Shade (*)(double x, double y);

/// Grey and alpha of a picture's pixel, not premultiplied.
struct Texel {
    uint8_t light = 255;
    uint8_t alpha = 0;
};

/// A square picture, the bottom row first.
struct Raster {
    int size = 0;  ///< pixels
    std::vector<Texel> texels;
};

inline uint8_t ToByte(double value) {
    return static_cast<uint8_t>(std::lround(value * 255.0));
}

/// Averages a shape over each pixel, at 16 x 16 points. The grey is averaged over the points inside
/// the shape only, so that edges do not darken.
inline Raster Rasterise(Shape shape, int size) {
    constexpr int kGrid = 16;
    Raster raster{size, {}};
    for (int row = 0; row < size; ++row) {
        for (int column = 0; column < size; ++column) {
            double light = 0.0;
            double alpha = 0.0;
            for (int i = 0; i < kGrid * kGrid; ++i) {
                const int across = i % kGrid;
                const int up = i / kGrid;
                const double x = column + (across + 0.5) / kGrid;
                const double y = row + (up + 0.5) / kGrid;
                const Shade shade = shape(2.0 * x / size - 1.0, 2.0 * y / size - 1.0);
                light += shade.light * shade.alpha;
                alpha += shade.alpha;
            }
            Texel texel;
            if (alpha > 0.0) texel = {ToByte(light / alpha), ToByte(alpha / (kGrid * kGrid))};
            raster.texels.push_back(texel);
        }
    }
    return raster;
}

}  // namespace brindle
