// SPDX-License-Identifier: ISC
// Compiled once per vector width: Highway includes this file again for every target.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "graph/curves/response_kernel.cpp"
#include <hwy/foreach_target.h>
// foreach_target.h must come first.
#include <hwy/contrib/math/math-inl.h>
#include <hwy/highway.h>

#include "graph/curves/response_kernel.h"

#ifndef BRINDLE_RESPONSE_KERNEL_ONCE
#define BRINDLE_RESPONSE_KERNEL_ONCE

#include <algorithm>
#include <cmath>
#include <limits>

namespace brindle {

inline constexpr double kTwoPi = 6.283185307179586;
/// A notch exactly on a grid point has no level in dB; this keeps it finite, far below the graph.
inline constexpr double kLeastPower = std::numeric_limits<double>::min();

}  // namespace brindle
#endif

HWY_BEFORE_NAMESPACE();
namespace brindle::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

template <class D, class V = hn::Vec<D>>
HWY_INLINE V Evaluate(D d, const Quadratic& q, V w2) {
    const V e = hn::Sub(hn::Set(d, q.root), w2);
    const V square = hn::Mul(hn::Set(d, q.square), hn::Mul(e, e));
    const V linear = hn::Mul(hn::Set(d, q.linear), w2);
    return hn::Add(hn::Add(square, linear), hn::Set(d, q.constant));
}

template <class D, class V = hn::Vec<D>>
HWY_INLINE V Power(D d, const Response& response, V w2) {
    V numerator = Evaluate(d, response.factors[0].numerator, w2);
    V denominator = Evaluate(d, response.factors[0].denominator, w2);
    for (size_t k = 1; k < response.count; ++k) {
        numerator = hn::Mul(numerator, Evaluate(d, response.factors[k].numerator, w2));
        denominator = hn::Mul(denominator, Evaluate(d, response.factors[k].denominator, w2));
    }
    return hn::Max(hn::Div(numerator, denominator), hn::Set(d, kLeastPower));
}

void AddResponseVector(const Response& response, const float* HWY_RESTRICT hz,
                       float* HWY_RESTRICT curve, size_t count) {
    const hn::ScalableTag<double> d;
    const hn::Rebind<float, decltype(d)> df;
    const size_t lanes = hn::Lanes(d);
    const auto scale = hn::Set(d, response.scale);
    const auto offset = hn::Set(d, response.offset_db);

    size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const auto f = hn::PromoteTo(d, hn::LoadU(df, hz + i));
        const auto w = hn::Mul(hn::Set(d, kTwoPi), f);
        const auto level = hn::Log10(d, Power(d, response, hn::Mul(w, w)));
        const auto before = hn::PromoteTo(d, hn::LoadU(df, curve + i));
        const auto after = hn::Add(before, hn::Add(hn::Mul(level, scale), offset));
        hn::StoreU(hn::DemoteTo(df, after), df, curve + i);
    }
    AddResponseScalar(response, hz + i, curve + i, count - i);
}

}  // namespace
}  // namespace brindle::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace brindle {
namespace {

HWY_EXPORT(AddResponseVector);

double Evaluate(const Quadratic& q, double w2) {
    const double e = q.root - w2;
    return q.square * (e * e) + q.linear * w2 + q.constant;
}

}  // namespace

void AddResponse(const Response& response, const float* hz, float* curve, size_t count) noexcept {
    HWY_DYNAMIC_DISPATCH(AddResponseVector)(response, hz, curve, count);
}

void AddResponseScalar(const Response& response, const float* hz, float* curve,
                       size_t count) noexcept {
    for (size_t i = 0; i < count; ++i) {
        const double w = kTwoPi * static_cast<double>(hz[i]);
        const double w2 = w * w;
        double numerator = 1.0;
        double denominator = 1.0;
        for (size_t k = 0; k < response.count; ++k) {
            numerator *= Evaluate(response.factors[k].numerator, w2);
            denominator *= Evaluate(response.factors[k].denominator, w2);
        }
        const double power = std::max(numerator / denominator, kLeastPower);
        curve[i] = static_cast<float>(static_cast<double>(curve[i]) +
                                      (std::log10(power) * response.scale + response.offset_db));
    }
}

}  // namespace brindle
#endif
