// SPDX-License-Identifier: ISC
// The cascade as a pipeline: each lane of a vector is a stage and works on the sample kSkew before
// its neighbour's, so that no stage waits for another within a step. Drawn for four stages, a skew
// of 1 and ten samples, with a control tick at sample 5, from which on the weights (') are new:
//
//   step      0  1  2   3  4   5  6  7   8  9  10 11 12
//   stage 0   0  1  2   3  4   5' 6' 7'  8' 9'  .  .  .
//   stage 1   .  0  1   2  3   4  5' 6'  7' 8'  9' .  .
//   stage 2   .  .  0   1  2   3  4  5'  6' 7'  8' 9' .
//   stage 3   .  .  .   0  1   2  3  4   5' 6'  7' 8' 9'
//             fill      run    hand over run    drain
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

/// kVectors vectors of stages, from stage `first` on, over kChannels channels. At each step, stage
/// k of the pipeline works on sample step - k·kSkew.
template <size_t kSkew, size_t kVectors, size_t kChannels>
class Pipeline {
  public:
    /// Whether the pipeline holds all stages of the cascade.
    static constexpr bool kWhole = kVectors * kLanes == kStageCount;
    /// Whether all vectors are filtered side by side: while one waits, the others work. Measured:
    /// eight narrow vectors need too many registers for that.
    static constexpr bool kTogether = kLanes > 2 || kChannels == 1;
    /// Steps between the first and the last stage of a sample.
    static constexpr size_t kDelay = kSkew * (kVectors * kLanes - 1);
    static_assert(kDelay <= kMinStretch, "two ticks at once in the pipeline");
    static_assert(kSkew == 1 || kSkew == 2, "steps have one or two phases");

    HWY_INLINE Pipeline(size_t first, size_t n, const float* const* in, float* const* out,
                        const Followers& followers)
        : first_(first), n_(n), in_(in), out_(out), followers_(followers) {}

    HWY_INLINE void run(std::span<const Stretch> stretches, CascadeState* states) {
        load(states);
        const CascadeWeights* before = stretches[0].weights;
        for (const Stretch& stretch : stretches) {
            if (stretch.weights != before) hand_over(stretch.begin, *before, *stretch.weights);
            before = stretch.weights;
            const auto weights = weights_of(*before);
            const size_t full = std::max(kDelay, (step_ + kSkew - 1) / kSkew * kSkew);
            const size_t end = stretch.end == n_ ? n_ + kDelay : stretch.end;
            run_steps<true>(std::min(full, end), weights);  // fill
            run_full(stretch.end, weights);
            run_steps<true>(end, weights);  // drain
        }
        store(states);
    }

  private:
    struct Weights {
        HWY_INLINE Weights() {}  // the implicit one is compiled without the target's instructions

        /// Sets the weights of vector `p`; `get` loads one quantity, given its member.
        template <typename Get>
        HWY_INLINE void set(size_t p, Get get) {
            b0[p] = get(&CascadeWeights::b0);
            b1[p] = get(&CascadeWeights::b1);
            b2[p] = get(&CascadeWeights::b2);
            a1[p] = get(&CascadeWeights::a1);
            a2[p] = get(&CascadeWeights::a2);
            wet[p] = get(&CascadeWeights::wet);
            dry[p] = get(&CascadeWeights::dry);
        }

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
            w.set(p, [&weights, at](StageArray CascadeWeights::*quantity)
                         HWY_ATTR { return hn::Load(D(), &(weights.*quantity)[at]); });
        }
        return w;
    }

    /// Gives `stage` the weights `to`, while the stages after it keep `from`.
    HWY_INLINE void switch_stage(Weights& w, size_t stage, const CascadeWeights& from,
                                 const CascadeWeights& to) const {
        const size_t p = stage / kLanes;
        const size_t at = first_ + p * kLanes;
        const Mask m = before(stage + 1, p);
        w.set(p, [&, m, at](StageArray CascadeWeights::*quantity) HWY_ATTR {
            return hn::IfThenElse(m, hn::Load(D(), &(to.*quantity)[at]),
                                  hn::Load(D(), &(from.*quantity)[at]));
        });
    }

    /// The inputs of vector `p`: the outputs of the stages before, `input` for the first stage.
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

    /// Steps the stages of the vectors from kFrom up to kTo once; kPhase is the step modulo kSkew.
    /// `keep(p, now, next)` returns the new states of vector p.
    template <size_t kPhase, size_t kFrom, size_t kTo, typename Keep>
    HWY_INLINE void advance(const Weights& w, const VF* input, Keep keep) {
        constexpr size_t kCount = kTo - kFrom;
        constexpr size_t kBeside = kTogether ? kChannels * kCount : 1;
        // From the last vector to the first: each reads what the one before left at earlier steps.
#pragma GCC unroll 8
        for (size_t last = kChannels * kCount; last > 0; last -= kBeside) {
            V x[kBeside], y[kBeside];
            for (size_t i = 0; i < kBeside; ++i) {
                const size_t c = (last - 1 - i) / kCount, p = kFrom + (last - 1 - i) % kCount;
                x[i] = entering(left_[kPhase][c], p, input[c]);
                y[i] = round_to_float(hn::Add(s1_[c][p], hn::Mul(w.b0[p], x[i])));
            }
            for (size_t i = 0; i < kBeside; ++i) {
                const size_t c = (last - 1 - i) / kCount, p = kFrom + (last - 1 - i) % kCount;
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

    /// The first sample after the control tick at `begin` passes from stage to stage, and the new
    /// weights with it.
    HWY_INLINE void hand_over(size_t begin, const CascadeWeights& from, const CascadeWeights& to) {
        // Near the block's ends some stages have no sample.
        if (begin >= kDelay && begin + kDelay <= n_) {
            hand_over<false>(from, to);
        } else {
            hand_over<true>(from, to);
        }
    }

    template <bool kMasked>
    HWY_INLINE void hand_over(const CascadeWeights& from, const CascadeWeights& to) {
        Weights w = weights_of(from);
        for (size_t stage = 0; stage + 1 < kVectors * kLanes; ++stage) {
            switch_stage(w, stage, from, to);
            run_steps<kMasked>(step_ + kSkew, w);
        }
    }

    /// Runs the steps before `until`; some stages have no sample if kMasked.
    template <bool kMasked>
    HWY_INLINE void run_steps(size_t until, const Weights& w) {
        for (; step_ < until; ++step_) {
            if (step_ % kSkew == 0) {
                run_step<0, kMasked>(w);
            } else {
                run_step<1 % kSkew, kMasked>(w);
            }
        }
    }

    template <size_t kPhase, bool kMasked>
    HWY_INLINE void run_step(const Weights& w) {
        constexpr size_t kHalf = kVectors / 2;
        const size_t begun = step_ / kSkew + 1;  // stages that have had a sample
        const size_t ended = step_ < n_ ? 0 : (step_ - n_) / kSkew + 1;
        if (!kMasked) {
            run_vectors<kPhase, false, 0, kVectors>(w, begun, ended);
        } else if (begun <= kHalf * kLanes) {
            run_vectors<kPhase, true, 0, kHalf>(w, begun, ended);
        } else if (ended >= kHalf * kLanes) {
            run_vectors<kPhase, true, kHalf, kVectors>(w, begun, ended);
        } else {
            run_vectors<kPhase, true, 0, kVectors>(w, begun, ended);
        }
        if (step_ >= kDelay) put_out<kPhase>(step_ - kDelay);
    }

    /// Steps the vectors from kFrom up to kTo; if kMasked, only the stages that have a sample.
    template <size_t kPhase, bool kMasked, size_t kFrom, size_t kTo>
    HWY_INLINE void run_vectors(const Weights& w, size_t begun, size_t ended) {
        VF input[kChannels];
        for (size_t c = 0; c < kChannels; ++c) {
            input[c] = hn::Set(F(), !kMasked || step_ < n_ ? in_[c][step_] : 0.0f);
        }
        Mask active[kVectors];
        for (size_t p = kFrom; p < kTo; ++p) {
            active[p] = hn::AndNot(before(ended, p), before(begun, p));
        }
        advance<kPhase, kFrom, kTo>(w, input, [&active](size_t p, V now, V next) HWY_ATTR {
            return kMasked ? hn::IfThenElse(active[p], next, now) : next;
        });
    }

    /// Runs the steps before `until` in groups of kSkew, while all stages have a sample.
    HWY_INLINE void run_full(size_t until, const Weights& w) {
        if (step_ % kSkew != 0) return;
        size_t step = step_;
        for (; step + kSkew <= until; step += kSkew) {
            run_full_step<0>(step, w);
            if constexpr (kSkew == 2) run_full_step<1>(step + 1, w);
        }
        step_ = step;
    }

    template <size_t kPhase>
    HWY_INLINE void run_full_step(size_t step, const Weights& w) {
        VF input[kChannels];
        for (size_t c = 0; c < kChannels; ++c) input[c] = hn::Set(F(), in_[c][step]);
        advance<kPhase, 0, kVectors>(w, input, [](size_t, V, V next) HWY_ATTR { return next; });
        put_out<kPhase>(step - kDelay);
    }

    size_t first_, n_;
    const float* const* in_;
    float* const* out_;
    Followers followers_;
    V s1_[kChannels][kVectors], s2_[kChannels][kVectors];
    VF left_[kSkew][kChannels][kVectors];  // the stages' outputs at the last kSkew steps
    size_t step_ = 0;
};

template <size_t kSkew, size_t kVectors, size_t kChannels>
HWY_NOINLINE void run_cascade(std::span<const Stretch> stretches, CascadeState* states,
                              const float* const* in, float* const* out,
                              const Followers& followers) noexcept {
    using Part = Pipeline<kSkew, kVectors, kChannels>;
    const size_t n = stretches.back().end;
    for (size_t first = 0; first < kStageCount; first += kVectors * kLanes) {
        Part(first, n, first == 0 ? in : out, out, followers).run(stretches, states);
    }
    if constexpr (!Part::kWhole) follow(followers, out[0], out[kChannels - 1], n);
}

// The registers hold four vectors a channel.
constexpr size_t kVectors = std::min<size_t>(4, kStageCount / kLanes);

/// Measured: a skew of 2 hides most of a stage's latency. Eight vectors of four lanes hide it by
/// themselves; with a skew of 1 their pipeline fills sooner.
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
