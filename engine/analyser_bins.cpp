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

/// Filters one sample in a vector of bins. Products and sums round separately: a fused multiply-add
/// would change the bits.
HWY_INLINE V low_pass(V x, V b0, V a1, V a2, V& s1, V& s2) {
    const V p = hn::Mul(b0, x);  // b2·x, and exactly half of b1·x
    const V y = hn::Add(s1, p);
    s1 = hn::Add(hn::Add(s2, hn::Add(p, p)), hn::Mul(a1, y));
    s2 = hn::Add(p, hn::Mul(a2, y));
    return y;
}

/// One vector of bins, from the `first` on, with all of their recursion in registers.
struct Tile {
    V step_cos, step_sin, re, im;
    V b0, a1, a2, re_s1, re_s2, im_s1, im_s2;
    V power;

    HWY_INLINE Tile(const AnalyserBins& bins, size_t first)
        : step_cos(hn::Load(D(), &bins.step_cos[first])),
          step_sin(hn::Load(D(), &bins.step_sin[first])),
          re(hn::Load(D(), &bins.re[first])),
          im(hn::Load(D(), &bins.im[first])),
          b0(hn::Load(D(), &bins.b0[first])),
          a1(hn::Load(D(), &bins.a1[first])),
          a2(hn::Load(D(), &bins.a2[first])),
          re_s1(hn::Load(D(), &bins.re_s1[first])),
          re_s2(hn::Load(D(), &bins.re_s2[first])),
          im_s1(hn::Load(D(), &bins.im_s1[first])),
          im_s2(hn::Load(D(), &bins.im_s2[first])),
          power(hn::Load(D(), &bins.power[first])) {}

    HWY_INLINE void advance(V x) {
        const V turned = hn::Sub(hn::Mul(re, step_cos), hn::Mul(im, step_sin));
        im = hn::Add(hn::Mul(re, step_sin), hn::Mul(im, step_cos));
        re = turned;
        const V y_re = low_pass(hn::Mul(x, re), b0, a1, a2, re_s1, re_s2);
        const V y_im = low_pass(hn::Mul(x, im), b0, a1, a2, im_s1, im_s2);
        power = hn::Add(power, hn::Add(hn::Mul(y_re, y_re), hn::Mul(y_im, y_im)));
    }

    HWY_INLINE void store(AnalyserBins& bins, size_t first) const {
        hn::Store(re, D(), &bins.re[first]);
        hn::Store(im, D(), &bins.im[first]);
        hn::Store(re_s1, D(), &bins.re_s1[first]);
        hn::Store(re_s2, D(), &bins.re_s2[first]);
        hn::Store(im_s1, D(), &bins.im_s1[first]);
        hn::Store(im_s2, D(), &bins.im_s2[first]);
        hn::Store(power, D(), &bins.power[first]);
    }
};

/// Two tiles at a time: each waits on its own recursion, so that one fills the other's pauses.
void advance_bins(AnalyserBins& bins, const double* v, size_t count) noexcept {
    const size_t lanes = hn::Lanes(D());
    for (size_t first = 0; first < kPlotBins; first += 2 * lanes) {
        Tile low(bins, first);
        Tile high(bins, first + lanes);
        for (size_t i = 0; i < count; ++i) {
            const V x = hn::Set(D(), v[i]);
            low.advance(x);
            high.advance(x);
        }
        low.store(bins, first);
        high.store(bins, first + lanes);
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
