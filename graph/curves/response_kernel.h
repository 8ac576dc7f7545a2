// SPDX-License-Identifier: ISC
/// The loop of all evaluators: levels of a rational response over the frequency grid.
#pragma once

#include <array>
#include <cstddef>

namespace brindle {

/// square·(root − W)² + linear·W + constant, a polynomial in the squared angular frequency W.
/// Expanding the difference (root − W) would lose the depth of a notch to rounding.
struct Quadratic {
    double square = 0.0;
    double root = 0.0;
    double linear = 0.0;
    double constant = 0.0;
};

/// One factor of a squared magnitude.
struct ResponseFactor {
    Quadratic numerator;
    Quadratic denominator;
};

inline constexpr size_t kMaxFactors = 4;

/// A response in dB: scale·log10(product of the factors) + offset_db.
struct Response {
    size_t count = 0;  ///< factors in use, 1 to kMaxFactors
    std::array<ResponseFactor, kMaxFactors> factors;
    double scale = 10.0;
    double offset_db = 0.0;
};

/// Adds the response at `count` frequencies `hz` to `curve`, with the widest vectors of the
/// processor. The arrays must not overlap. Equals AddResponseScalar except for rounding.
void AddResponse(const Response& response, const float* hz, float* curve, size_t count) noexcept;

/// The scalar version, which defines the result.
void AddResponseScalar(const Response& response, const float* hz, float* curve,
                       size_t count) noexcept;

}  // namespace brindle
