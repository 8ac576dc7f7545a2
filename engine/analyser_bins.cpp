// SPDX-License-Identifier: ISC
#include "engine/analyser_bins.h"

// Highway compiles this file once per instruction set.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/analyser_bins.cpp"
#include <hwy/foreach_target.h>
// clang-format off: Highway's own header comes after the one that repeats the file.
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace brindle {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;
using D = hn::ScalableTag<double>;
using V = hn::Vec<D>;

/// One sample through the low-passes of a vector of bins; returns their output. Products and sums
/// round separately: a fused multiply-add would change the bits.
HWY_INLINE V low_pass(V x, V b0, V a1, V a2, V& s1, V& s2) {
    const V p = hn::Mul(b0, x);  // b2·x, and exactly half of b1·x
    const V y = hn::Add(s1, p);
    s1 = hn::Add(hn::Add(s2, hn::Add(p, p)), hn::Mul(a1, y));
    s2 = hn::Add(p, hn::Mul(a2, y));
    return y;
}

/// A vector of bins from the `first` on over all samples, with their state in registers.
HWY_INLINE void advance_tile(AnalyserBins& bins, size_t first, const double* v, size_t count) {
    const D d;
    const V step_cos = hn::Load(d, &bins.step_cos[first]);
    const V step_sin = hn::Load(d, &bins.step_sin[first]);
    const V b0 = hn::Load(d, &bins.b0[first]);
    const V a1 = hn::Load(d, &bins.a1[first]);
    const V a2 = hn::Load(d, &bins.a2[first]);
    V re = hn::Load(d, &bins.re[first]);
    V im = hn::Load(d, &bins.im[first]);
    V re_s1 = hn::Load(d, &bins.re_s1[first]);
    V re_s2 = hn::Load(d, &bins.re_s2[first]);
    V im_s1 = hn::Load(d, &bins.im_s1[first]);
    V im_s2 = hn::Load(d, &bins.im_s2[first]);
    V power = hn::Load(d, &bins.power[first]);
    for (size_t i = 0; i < count; ++i) {
        const V x = hn::Set(d, v[i]);
        const V turned = hn::Sub(hn::Mul(re, step_cos), hn::Mul(im, step_sin));
        im = hn::Add(hn::Mul(re, step_sin), hn::Mul(im, step_cos));
        re = turned;
        const V y_re = low_pass(hn::Mul(x, re), b0, a1, a2, re_s1, re_s2);
        const V y_im = low_pass(hn::Mul(x, im), b0, a1, a2, im_s1, im_s2);
        power = hn::Add(power, hn::Add(hn::Mul(y_re, y_re), hn::Mul(y_im, y_im)));
    }
    hn::Store(re, d, &bins.re[first]);
    hn::Store(im, d, &bins.im[first]);
    hn::Store(re_s1, d, &bins.re_s1[first]);
    hn::Store(re_s2, d, &bins.re_s2[first]);
    hn::Store(im_s1, d, &bins.im_s1[first]);
    hn::Store(im_s2, d, &bins.im_s2[first]);
    hn::Store(power, d, &bins.power[first]);
}

void advance_bins(AnalyserBins& bins, const double* v, size_t count) noexcept {
    const size_t lanes = hn::Lanes(D());
    for (size_t first = 0; first < kPlotBins; first += lanes) {
        advance_tile(bins, first, v, count);
    }
}

AdvanceBins advance_bins_here() {
    return advance_bins;
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace brindle
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace brindle {

HWY_EXPORT(advance_bins_here);

AdvanceBins choose_advance_bins() {
    return HWY_DYNAMIC_DISPATCH(advance_bins_here)();
}

}  // namespace brindle
#endif
