// SPDX-License-Identifier: ISC
#include "engine/analyser_bins.h"

#include <algorithm>

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

constexpr size_t kLanes = hn::MaxLanes(D());

/// Sixteen registers do not hold all states of two vectors, and one vector waits for itself. There,
/// oscillators and low-passes run one after the other over kBlock samples, and their states stay in
/// registers.
constexpr bool kTwoPasses = HWY_ARCH_X86 && (kLanes == 2 || kLanes == 4);
constexpr size_t kBlock = 64;
constexpr size_t kTurned = 4;    ///< vectors of oscillators side by side, in two passes
constexpr size_t kFiltered = 2;  ///< vectors of low-passes side by side

/// The oscillators of a vector of bins, from bin `first` on.
struct Oscillators {
    V step_cos, step_sin, re, im;

    HWY_INLINE Oscillators(const AnalyserBins& bins, size_t first)
        : step_cos(hn::Load(D(), &bins.step_cos[first])),
          step_sin(hn::Load(D(), &bins.step_sin[first])),
          re(hn::Load(D(), &bins.re[first])),
          im(hn::Load(D(), &bins.im[first])) {}

    HWY_INLINE void advance() {
        const V turned = hn::Sub(hn::Mul(re, step_cos), hn::Mul(im, step_sin));
        im = hn::Add(hn::Mul(re, step_sin), hn::Mul(im, step_cos));
        re = turned;
    }

    HWY_INLINE void store(AnalyserBins& bins, size_t first) const {
        hn::Store(re, D(), &bins.re[first]);
        hn::Store(im, D(), &bins.im[first]);
    }
};

/// The low-passes and powers of a vector of bins, from bin `first` on.
struct LowPasses {
    V b0, a1, a2, re_s1, re_s2, im_s1, im_s2, power;

    HWY_INLINE LowPasses(const AnalyserBins& bins, size_t first)
        : b0(hn::Load(D(), &bins.b0[first])),
          a1(hn::Load(D(), &bins.a1[first])),
          a2(hn::Load(D(), &bins.a2[first])),
          re_s1(hn::Load(D(), &bins.re_s1[first])),
          re_s2(hn::Load(D(), &bins.re_s2[first])),
          im_s1(hn::Load(D(), &bins.im_s1[first])),
          im_s2(hn::Load(D(), &bins.im_s2[first])),
          power(hn::Load(D(), &bins.power[first])) {}

    HWY_INLINE void advance(V re, V im) {
        const V y_re = filter(re, re_s1, re_s2);
        const V y_im = filter(im, im_s1, im_s2);
        power = hn::Add(power, hn::Add(hn::Mul(y_re, y_re), hn::Mul(y_im, y_im)));
    }

    HWY_INLINE void store(AnalyserBins& bins, size_t first) const {
        hn::Store(re_s1, D(), &bins.re_s1[first]);
        hn::Store(re_s2, D(), &bins.re_s2[first]);
        hn::Store(im_s1, D(), &bins.im_s1[first]);
        hn::Store(im_s2, D(), &bins.im_s2[first]);
        hn::Store(power, D(), &bins.power[first]);
    }

  private:
    /// Products and sums round separately: a fused multiply-add would change the bits. It may
    /// double p, which is exact, and spares a sum.
    HWY_INLINE V filter(V x, V& s1, V& s2) const {
        const V p = hn::Mul(b0, x);  // b2·x, and exactly half of b1·x
        const V y = hn::Add(s1, p);
        const V sum =
            kTwoPasses ? hn::MulAdd(hn::Set(D(), 2.0), p, s2) : hn::Add(s2, hn::Add(p, p));
        s1 = hn::Add(sum, hn::Mul(a1, y));
        s2 = hn::Add(p, hn::Mul(a2, y));
        return y;
    }
};

/// Advances kFiltered vectors of bins together: while one waits for its recursion, the other works.
HWY_INLINE void advance_together(AnalyserBins& bins, size_t first, const double* v, size_t count) {
    Oscillators oscillators[] = {{bins, first}, {bins, first + kLanes}};
    LowPasses low_passes[] = {{bins, first}, {bins, first + kLanes}};
    for (size_t i = 0; i < count; ++i) {
        const V x = hn::Set(D(), v[i]);
#pragma GCC unroll 2
        for (size_t t = 0; t < kFiltered; ++t) {
            oscillators[t].advance();
            low_passes[t].advance(hn::Mul(x, oscillators[t].re), hn::Mul(x, oscillators[t].im));
        }
    }
#pragma GCC unroll 2
    for (size_t t = 0; t < kFiltered; ++t) {
        oscillators[t].store(bins, first + t * kLanes);
        low_passes[t].store(bins, first + t * kLanes);
    }
}

/// The products of the oscillators and the samples of a block.
struct Products {
    alignas(64) double re[kBlock][kTurned][kLanes], im[kBlock][kTurned][kLanes];
};

HWY_INLINE void turn(AnalyserBins& bins, size_t first, const double* v, size_t count,
                     Products& products) {
    Oscillators oscillators[kTurned] = {{bins, first},
                                        {bins, first + kLanes},
                                        {bins, first + 2 * kLanes},
                                        {bins, first + 3 * kLanes}};
    for (size_t i = 0; i < count; ++i) {
        const V x = hn::Set(D(), v[i]);
#pragma GCC unroll 4
        for (size_t t = 0; t < kTurned; ++t) {
            oscillators[t].advance();
            hn::Store(hn::Mul(x, oscillators[t].re), D(), products.re[i][t]);
            hn::Store(hn::Mul(x, oscillators[t].im), D(), products.im[i][t]);
        }
    }
#pragma GCC unroll 4
    for (size_t t = 0; t < kTurned; ++t) oscillators[t].store(bins, first + t * kLanes);
}

/// Filters the products of the kFiltered vectors from the one at `t` on, whose bins begin at
/// `first`.
HWY_INLINE void filter(AnalyserBins& bins, size_t first, const Products& products, size_t t,
                       size_t count) {
    LowPasses low(bins, first), high(bins, first + kLanes);
    for (size_t i = 0; i < count; ++i) {
        low.advance(hn::Load(D(), products.re[i][t]), hn::Load(D(), products.im[i][t]));
        high.advance(hn::Load(D(), products.re[i][t + 1]), hn::Load(D(), products.im[i][t + 1]));
    }
    low.store(bins, first);
    high.store(bins, first + kLanes);
}

void advance_bins(AnalyserBins& bins, const double* v, size_t count) noexcept {
    if (kTwoPasses) {
        Products products;
        for (size_t first = 0; first < kPlotBins; first += kTurned * kLanes) {
            for (size_t i = 0; i < count; i += kBlock) {
                const size_t n = std::min(kBlock, count - i);
                turn(bins, first, v + i, n, products);
                for (size_t t = 0; t < kTurned && first + t * kLanes < kPlotBins; t += kFiltered) {
                    filter(bins, first + t * kLanes, products, t, n);
                }
            }
        }
    } else {
        for (size_t first = 0; first < kPlotBins; first += kFiltered * kLanes) {
            advance_together(bins, first, v, count);
        }
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
