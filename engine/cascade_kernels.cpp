// SPDX-License-Identifier: ISC
// The cascade as a pipeline: the lanes of vectors are stages, and each works on a sample `kSkew`
// before its neighbour's, so that none waits for another.
#include <algorithm>

#include "engine/cascade.h"

// Highway compiles this file once per instruction set.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/cascade_kernels.cpp"
#include <hwy/foreach_target.h>
// clang-format off: Highway's own header comes after the one that repeats the file.
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace brindle {
namespace HWY_NAMESPACE {
namespace {

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

CascadeKernels cascade_here() {
    return plain_cascade();
}

#else

namespace hn = hwy::HWY_NAMESPACE;
using D = hn::CappedTag<double, 8>;
using F = hn::Rebind<float, D>;
using V = hn::Vec<D>;
using VF = hn::Vec<F>;
constexpr size_t kLanes = hn::MaxLanes(D());

HWY_INLINE V round_to_float(V x) {
    return hn::PromoteTo(D(), hn::DemoteTo(F(), x));
}

/// `kVectors` vectors of stages, from the `first` on, over `kChannels` channels. At a step, stage k
/// of them works on sample step - k·kSkew.
template <size_t kSkew, size_t kVectors, size_t kChannels>
class Pipeline {
  public:
    /// Whether samples that leave have passed the whole cascade.
    static constexpr bool kWhole = kVectors * kLanes == kStageCount;
    /// Vectors that are filtered side by side, so that one's waits are filled with another's work.
    /// Measured: eight narrow ones need more registers than that is worth.
    static constexpr size_t kTogether = kLanes == 2 && kChannels == 2 ? 1 : kChannels * kVectors;
    /// Steps from a sample's entrance to its leaving.
    static constexpr size_t kDelay = kSkew * (kVectors * kLanes - 1);
    static_assert(kDelay <= kMinStretch, "two ticks at once in the pipeline");
    static_assert(kSkew == 1 || kSkew == 2, "steps have one or two phases");

    HWY_INLINE Pipeline(size_t first, const float* const* in, float* const* out, size_t n,
                        const Followers& followers)
        : first_(first), in_(in), out_(out), n_(n), followers_(followers) {}

    HWY_INLINE void run(std::span<const Stretch> stretches, CascadeState* states) {
        load(states);
        const CascadeWeights* before = stretches[0].weights;
        for (size_t i = 0; i < stretches.size(); ++i) {
            const auto [begin, weights] = stretches[i];
            const size_t end = i + 1 < stretches.size() ? stretches[i + 1].begin : n_ + kDelay;
            if (weights != before) {
                // All stages have a sample, but at the ends of the block.
                if (begin >= kDelay && begin + kDelay <= n_) {
                    cross<false>(*before, *weights);
                } else {
                    cross<true>(*before, *weights);
                }
            }
            const Weights w = weights_of(*weights);
            const size_t whole = (step_ + kSkew - 1) / kSkew * kSkew;
            edges<true>(std::min(end, std::max(kDelay, whole)), w);
            steady(std::min(end, n_), w);
            edges<true>(end, w);
            before = weights;
        }
        store(states);
    }

  private:
    struct Weights {
        HWY_INLINE Weights() {}  // the implicit one is compiled without the target's instructions
        V b0[kVectors], b1[kVectors], b2[kVectors], a1[kVectors], a2[kVectors];
        V wet[kVectors], dry[kVectors];
    };
    using Mask = hn::Mask<D>;

    HWY_INLINE void load(const CascadeState* states) {
        for (size_t c = 0; c < kChannels; ++c) {
            for (size_t p = 0; p < kVectors; ++p) {
                s1_[c][p] = hn::Load(D(), &states[c].s1[first_ + p * kLanes]);
                s2_[c][p] = hn::Load(D(), &states[c].s2[first_ + p * kLanes]);
                for (size_t s = 0; s < kSkew; ++s) left_[s][c][p] = hn::Zero(F());
            }
        }
    }

    HWY_INLINE void store(CascadeState* states) const {
        for (size_t c = 0; c < kChannels; ++c) {
            for (size_t p = 0; p < kVectors; ++p) {
                hn::Store(s1_[c][p], D(), &states[c].s1[first_ + p * kLanes]);
                hn::Store(s2_[c][p], D(), &states[c].s2[first_ + p * kLanes]);
            }
        }
    }

    /// Lanes of vector `p` that lie before stage `count` of the pipeline.
    static HWY_INLINE Mask before(size_t count, size_t p) {
        alignas(64) static constexpr int64_t kOnes[2 * kStageCount] = {
            -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
        const size_t at = kStageCount - std::min(count, kStageCount) + p * kLanes;
        const auto bits = hn::LoadU(hn::RebindToSigned<D>(), kOnes + at);
        return hn::RebindMask(D(), hn::MaskFromVec(bits));
    }

    HWY_INLINE Weights weights_of(const CascadeWeights& weights) const {
        Weights w;
        for (size_t p = 0; p < kVectors; ++p) {
            const size_t at = first_ + p * kLanes;
            w.b0[p] = hn::Load(D(), &weights.b0[at]);
            w.b1[p] = hn::Load(D(), &weights.b1[at]);
            w.b2[p] = hn::Load(D(), &weights.b2[at]);
            w.a1[p] = hn::Load(D(), &weights.a1[at]);
            w.a2[p] = hn::Load(D(), &weights.a2[at]);
            w.wet[p] = hn::Load(D(), &weights.wet[at]);
            w.dry[p] = hn::Load(D(), &weights.dry[at]);
        }
        return w;
    }

    /// Has a stage take its next weights while those after it still work with the ones before.
    HWY_INLINE void take_over(Weights& w, size_t stage, const CascadeWeights& from,
                              const CascadeWeights& to) const {
        const size_t p = stage / kLanes;
        const size_t at = first_ + p * kLanes;
        const Mask m = before(stage + 1, p);
        const auto pick = [m, at](const StageArray& next, const StageArray& now) HWY_ATTR {
            return hn::IfThenElse(m, hn::Load(D(), &next[at]), hn::Load(D(), &now[at]));
        };
        w.b0[p] = pick(to.b0, from.b0);
        w.b1[p] = pick(to.b1, from.b1);
        w.b2[p] = pick(to.b2, from.b2);
        w.a1[p] = pick(to.a1, from.a1);
        w.a2[p] = pick(to.a2, from.a2);
        w.wet[p] = pick(to.wet, from.wet);
        w.dry[p] = pick(to.dry, from.dry);
    }

    /// What enters the stages of vector `p`: what left the stage before each, or `input`.
    static HWY_INLINE V entering(const VF* left, size_t p, VF input) {
        const VF before = p == 0 ? input : left[p - 1];
        if constexpr (kLanes == 2) {
            return hn::CombineShiftRightBytes<8>(D(), hn::PromoteTo(D(), left[p]),
                                                 hn::PromoteTo(D(), before));
        } else if constexpr (kLanes == 4) {
            return hn::PromoteTo(D(), hn::CombineShiftRightBytes<12>(F(), left[p], before));
        } else {
            alignas(32) static constexpr int32_t kTurned[8] = {7, 0, 1, 2, 3, 4, 5, 6};
            const auto turned = hn::SetTableIndices(F(), kTurned);
            const VF first = hn::TableLookupLanes(before, turned);
            const VF rest = hn::TableLookupLanes(left[p], turned);
            return hn::PromoteTo(D(), hn::IfThenElse(hn::FirstN(F(), 1), first, rest));
        }
    }

    /// One step of all stages, the step's number being kPhase modulo kSkew. `keep(p, now, next)`
    /// decides on the states of vector p.
    template <size_t kPhase, typename Keep>
    HWY_INLINE void advance(const Weights& w, const VF* input, Keep keep) {
        // From the last vector to the first: each needs what the one before it left earlier.
#pragma GCC unroll 8
        for (size_t last = kChannels * kVectors; last > 0; last -= kTogether) {
            V x[kTogether], y[kTogether];
            for (size_t i = 0; i < kTogether; ++i) {
                const size_t c = (last - 1 - i) / kVectors, p = (last - 1 - i) % kVectors;
                x[i] = entering(left_[kPhase][c], p, input[c]);
                y[i] = round_to_float(hn::Add(s1_[c][p], hn::Mul(w.b0[p], x[i])));
            }
            for (size_t i = 0; i < kTogether; ++i) {
                const size_t c = (last - 1 - i) / kVectors, p = (last - 1 - i) % kVectors;
                const V s1 =
                    hn::Add(hn::Add(s2_[c][p], hn::Mul(w.b1[p], x[i])), hn::Mul(w.a1[p], y[i]));
                const V s2 = hn::Add(hn::Mul(w.b2[p], x[i]), hn::Mul(w.a2[p], y[i]));
                s1_[c][p] = keep(p, s1_[c][p], s1);
                s2_[c][p] = keep(p, s2_[c][p], s2);
                left_[kPhase][c][p] =
                    hn::DemoteTo(F(), hn::Add(hn::Mul(w.wet[p], y[i]), hn::Mul(w.dry[p], x[i])));
            }
        }
    }

    template <size_t kPhase>
    HWY_INLINE void put_out(size_t sample) {
        float out[kChannels];
        for (size_t c = 0; c < kChannels; ++c) {
            out[c] = hn::ExtractLane(left_[kPhase][c][kVectors - 1], kLanes - 1);
            out_[c][sample] = out[c];
        }
        if constexpr (kWhole) followers_.step(sample, out[0], out[kChannels - 1]);
    }

    /// The steps at which the first sample after a control tick passes from stage to stage, and the
    /// tick's weights with it.
    template <bool kMasked>
    HWY_INLINE void cross(const CascadeWeights& from, const CascadeWeights& to) {
        Weights w = weights_of(from);
        for (size_t stage = 0; stage + 1 < kVectors * kLanes; ++stage) {
            take_over(w, stage, from, to);
            edges<kMasked>(step_ + kSkew, w);
        }
    }

    /// Steps up to `until`, at some of which not all stages have a sample if kMasked.
    template <bool kMasked>
    HWY_INLINE void edges(size_t until, const Weights& w) {
        for (; step_ < until; ++step_) {
            if (step_ % kSkew == 0) {
                edge<0, kMasked>(w);
            } else {
                edge<1 % kSkew, kMasked>(w);
            }
        }
    }

    template <size_t kPhase, bool kMasked>
    HWY_INLINE void edge(const Weights& w) {
        const size_t step = step_;
        VF input[kChannels];
        for (size_t c = 0; c < kChannels; ++c) {
            const float x = !kMasked || step < n_ ? in_[c][step] : 0.0f;
            input[c] = hn::Set(F(), x);
        }
        const size_t begun = kMasked ? step / kSkew + 1 : kStageCount;
        const size_t ended = !kMasked || step < n_ ? 0 : (step - n_) / kSkew + 1;
        Mask active[kVectors];
        for (size_t p = 0; p < kVectors; ++p) {
            active[p] = hn::AndNot(before(ended, p), before(begun, p));
        }
        advance<kPhase>(w, input, [&active](size_t p, V now, V next) HWY_ATTR {
            return kMasked ? hn::IfThenElse(active[p], next, now) : next;
        });
        if (step >= kDelay) put_out<kPhase>(step - kDelay);
    }

    /// Steps up to `until`, or a few less, at which nothing changes.
    HWY_INLINE void steady(size_t until, const Weights& w) {
        if (step_ % kSkew != 0) return;
        size_t step = step_;
        for (; step + kSkew <= until; step += kSkew) {
            steady_step<0>(step, w);
            if constexpr (kSkew == 2) steady_step<1>(step + 1, w);
        }
        step_ = step;
    }

    template <size_t kPhase>
    HWY_INLINE void steady_step(size_t step, const Weights& w) {
        VF input[kChannels];
        for (size_t c = 0; c < kChannels; ++c) input[c] = hn::Set(F(), in_[c][step]);
        advance<kPhase>(w, input, [](size_t, V, V next) HWY_ATTR { return next; });
        put_out<kPhase>(step - kDelay);
    }

    size_t first_;
    const float* const* in_;
    float* const* out_;
    size_t n_;
    Followers followers_;
    V s1_[kChannels][kVectors], s2_[kChannels][kVectors];
    VF left_[kSkew][kChannels][kVectors];  // what left the stages at the last steps, by their phase
    size_t step_ = 0;
};

template <size_t kSkew, size_t kVectors, size_t kChannels>
HWY_NOINLINE void run_cascade(std::span<const Stretch> stretches, CascadeState* states,
                              const float* const* in, float* const* out, size_t n,
                              const Followers& followers) noexcept {
    using Part = Pipeline<kSkew, kVectors, kChannels>;
    for (size_t first = 0; first < kStageCount; first += kVectors * kLanes) {
        Part(first, first == 0 ? in : out, out, n, followers).run(stretches, states);
    }
    if constexpr (!Part::kWhole) follow(followers, out[0], out[kChannels - 1], n);
}

// More vectors than four a channel do not fit into the registers.
constexpr size_t kVectors = std::min<size_t>(4, kStageCount / kLanes);

/// Measured: a skew of 2 hides most of a stage's latency. Eight vectors of four lanes hide it
/// themselves, and the pipeline fills sooner with a skew of 1.
template <size_t kChannels>
constexpr size_t kSkewOf = kChannels == 2 && kLanes == 4 ? 1 : 2;

CascadeKernels cascade_here() {
    return {run_cascade<kSkewOf<1>, kVectors, 1>, run_cascade<kSkewOf<2>, kVectors, 2>};
}

#endif

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace brindle
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace brindle {

HWY_EXPORT(cascade_here);

CascadeKernels choose_cascade() {
    return HWY_DYNAMIC_DISPATCH(cascade_here)();
}

}  // namespace brindle
#endif
