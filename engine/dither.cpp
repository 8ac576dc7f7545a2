// SPDX-License-Identifier: ISC
#include "engine/dither.h"

#include <array>

namespace brindle {
namespace {

constexpr uint32_t kFactor = 16807;

constexpr uint32_t power(uint32_t base, size_t exponent) {
    uint32_t result = 1;
    for (size_t i = 0; i < exponent; ++i) result *= base;
    return result;
}

}  // namespace

void next_dither(int32_t& state, float& noise, float* dither, size_t n) noexcept {
    // One generator waits for its own product; kDitherRoom of them, each that many values ahead at
    // a time, fit into vectors.
    std::array<uint32_t, kDitherRoom> states;
    for (size_t j = 0; j < kDitherRoom; ++j) {
        states[j] = static_cast<uint32_t>(state) * power(kFactor, j);
    }
    for (size_t i = 0;; i += kDitherRoom) {
        for (size_t j = 0; j < kDitherRoom; ++j) {
            const auto value = static_cast<float>(static_cast<int32_t>(states[j]));
            dither[i + j] = static_cast<float>(static_cast<double>(value) * 4.6566e-16);
        }
        if (i + kDitherRoom > n) break;
        for (uint32_t& s : states) s *= power(kFactor, kDitherRoom);
    }
    const float first = noise;
    state = static_cast<int32_t>(states[n % kDitherRoom]);
    noise = dither[n];
    dither[0] = first;
}

}  // namespace brindle
