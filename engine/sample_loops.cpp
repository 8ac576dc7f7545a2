// SPDX-License-Identifier: ISC
#include "engine/sample_loops.h"

#include <algorithm>
#include <array>

// Highway compiles this file once per instruction set; the compiler vectorises the loops.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/sample_loops.cpp"
#include <hwy/foreach_target.h>
// clang-format off: Highway's own header comes after the one that repeats the file.
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace brindle {
namespace HWY_NAMESPACE {
namespace {

constexpr uint32_t power(uint32_t base, size_t exponent) {
    uint32_t result = 1;
    for (size_t i = 0; i < exponent; ++i) result *= base;
    return result;
}

/// A single generator would wait for its own product. kDitherRoom of them, which each advance by
/// that many values at a time, fit into vectors.
void dither(int32_t& state, float& noise, float* out, size_t n) noexcept {
    constexpr uint32_t kFactor = 16807;
    uint32_t states[kDitherRoom];
    for (size_t j = 0; j < kDitherRoom; ++j) {
        states[j] = static_cast<uint32_t>(state) * power(kFactor, j);
    }
    for (size_t i = 0;; i += kDitherRoom) {
        for (size_t j = 0; j < kDitherRoom; ++j) {
            const auto value = static_cast<float>(static_cast<int32_t>(states[j]));
            out[i + j] = static_cast<float>(static_cast<double>(value) * 4.6566e-16);
        }
        if (i + kDitherRoom > n) break;
        for (uint32_t& s : states) s *= power(kFactor, kDitherRoom);
    }
    const float first = noise;
    state = static_cast<int32_t>(states[n % kDitherRoom]);
    noise = out[n];
    out[0] = first;
}

template <size_t kChannels>
void trim(const SampleLoops::Input& input, size_t n) noexcept {
    const auto [in, dither, gain, weight, out, square] = input;
    for (size_t i = 0; i < n; ++i) {
        const float left = in[0][i] + dither[i];
        out[0][i] = left * gain;
        float loudest = left * left;
        if constexpr (kChannels == 2) {
            const float right = in[1][i] + dither[i];
            out[1][i] = right * gain;
            loudest = std::max(loudest, right * right);
        }
        square[i] = weight * loudest;
    }
}

SampleLoops sample_loops_here() {
    return {dither, trim<1>, trim<2>};
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace brindle
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace brindle {

HWY_EXPORT(sample_loops_here);

SampleLoops choose_sample_loops() {
    return HWY_DYNAMIC_DISPATCH(sample_loops_here)();
}

}  // namespace brindle
#endif
