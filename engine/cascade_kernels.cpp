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
constexpr size_t kLanes = hn::MaxLanes(D());

HWY_INLINE V round_to_float(V x) {
    return hn::PromoteTo(D(), hn::DemoteTo(F(), x));
}

/// Where the pipeline stands at a step: its stage k works on sample step - k·skew.
struct Step {
    size_t begun;    // stages, from the first on, that have begun
    size_t ended;    // stages that have seen the last sample
    size_t crossed;  // stages that have passed the beginning of the newest stretch
};

/// `kVectors` vectors of stages, from the `first` on, over `kChannels` channels.
template <size_t kSkew, size_t kVectors, size_t kChannels>
class Pipeline {
  public:
    /// Steps from a sample's entrance to its leaving.
    static constexpr size_t kDelay = kSkew * (kVectors * kLanes - 1);
    static_assert(kDelay <= kMinStretch, "two ticks at once in the pipeline");

    HWY_INLINE Pipeline(size_t first, const float* const* in, float* const* out, size_t n)
        : first_(first), in_(in), out_(out), n_(n) {}

    HWY_INLINE void run(std::span<const Stretch> stretches, CascadeState* states) {
        load(states);
        size_t step = 0;
        const CascadeWeights* before = stretches[0].weights;
        for (size_t i = 0; i < stretches.size(); ++i) {
            const auto [begin, weights] = stretches[i];
            const size_t end = i + 1 < stretches.size() ? stretches[i + 1].begin : n_ + kDelay;
            if (weights != before) {
                const size_t passed = std::min(end, begin + kDelay);
                if (begin >= kDelay && passed <= n_) {
                    for (; step < passed; ++step) edge<false, true>(step, begin, *before, *weights);
                } else {
                    for (; step < passed; ++step) edge<true, true>(step, begin, *before, *weights);
                }
            }
            const size_t filled = std::min(end, kDelay);
            for (; step < filled; ++step) edge<true, false>(step, begin, *before, *weights);
            step = steady(step, std::min(end, n_), *weights);
            for (; step < end; ++step) edge<true, false>(step, begin, *weights, *weights);
            before = weights;
        }
        store(states);
    }

  private:
    struct Weights {
        V b0[kVectors], b1[kVectors], b2[kVectors], a1[kVectors], a2[kVectors];
        V wet[kVectors], dry[kVectors];
    };
    using Mask = hn::Mask<D>;

    HWY_INLINE void load(const CascadeState* states) {
        for (size_t c = 0; c < kChannels; ++c) {
            for (size_t p = 0; p < kVectors; ++p) {
                s1_[c][p] = hn::Load(D(), &states[c].s1[first_ + p * kLanes]);
                s2_[c][p] = hn::Load(D(), &states[c].s2[first_ + p * kLanes]);
                for (size_t s = 0; s < kSkew; ++s) v_[s][c][p] = hn::Zero(D());
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

    HWY_INLINE Weights mixed_weights(const CascadeWeights& before_tick,
                                     const CascadeWeights& after_tick, size_t crossed) const {
        const Weights from = weights_of(before_tick);
        const Weights to = weights_of(after_tick);
        Weights w;
        for (size_t p = 0; p < kVectors; ++p) {
            const Mask m = before(crossed, p);
            w.b0[p] = hn::IfThenElse(m, to.b0[p], from.b0[p]);
            w.b1[p] = hn::IfThenElse(m, to.b1[p], from.b1[p]);
            w.b2[p] = hn::IfThenElse(m, to.b2[p], from.b2[p]);
            w.a1[p] = hn::IfThenElse(m, to.a1[p], from.a1[p]);
            w.a2[p] = hn::IfThenElse(m, to.a2[p], from.a2[p]);
            w.wet[p] = hn::IfThenElse(m, to.wet[p], from.wet[p]);
            w.dry[p] = hn::IfThenElse(m, to.dry[p], from.dry[p]);
        }
        return w;
    }

    /// What enters the stages of vector `p`: the last stage's output of the vector before or
    /// `input`, then its own but for the last.
    HWY_INLINE V entering(size_t c, size_t p, V input) const {
        alignas(64) static constexpr int64_t kTurn8[8] = {7, 0, 1, 2, 3, 4, 5, 6};
        alignas(64) static constexpr int64_t kTurn4[4] = {3, 0, 1, 2};
        alignas(64) static constexpr int64_t kTurn2[2] = {1, 0};
        const int64_t* turn = kLanes == 8 ? kTurn8 : kLanes == 4 ? kTurn4 : kTurn2;
        const auto turned = hn::SetTableIndices(D(), turn);
        const V carry = p == 0 ? input : hn::TableLookupLanes(v_[0][c][p - 1], turned);
        return hn::IfThenElse(hn::FirstN(D(), 1), carry, hn::TableLookupLanes(v_[0][c][p], turned));
    }

    /// One step of all stages. `keep(p, now, next)` decides on the states of vector p.
    template <typename Keep>
    HWY_INLINE void advance(const Weights& w, const V* input, Keep keep) {
        for (size_t c = 0; c < kChannels; ++c) {
            for (size_t p = kVectors; p-- > 0;) {
                const V x = entering(c, p, input[c]);
                const V y = round_to_float(hn::Add(s1_[c][p], hn::Mul(w.b0[p], x)));
                const V s1 = hn::Add(hn::Add(s2_[c][p], hn::Mul(w.b1[p], x)), hn::Mul(w.a1[p], y));
                const V s2 = hn::Add(hn::Mul(w.b2[p], x), hn::Mul(w.a2[p], y));
                s1_[c][p] = keep(p, s1_[c][p], s1);
                s2_[c][p] = keep(p, s2_[c][p], s2);
                left_[c][p] = round_to_float(hn::Add(hn::Mul(w.wet[p], y), hn::Mul(w.dry[p], x)));
            }
            for (size_t p = 0; p < kVectors; ++p) {
                for (size_t s = 0; s + 1 < kSkew; ++s) v_[s][c][p] = v_[s + 1][c][p];
                v_[kSkew - 1][c][p] = left_[c][p];
            }
        }
    }

    HWY_INLINE void put_out(size_t sample) const {
        for (size_t c = 0; c < kChannels; ++c) {
            out_[c][sample] =
                static_cast<float>(hn::ExtractLane(left_[c][kVectors - 1], kLanes - 1));
        }
    }

    /// A step at which not all stages have a sample, or not all have the same weights.
    template <bool kMasked, bool kMixed>
    HWY_INLINE void edge(size_t step, size_t tick, const CascadeWeights& before_tick,
                         const CascadeWeights& after_tick) {
        V input[kChannels];
        for (size_t c = 0; c < kChannels; ++c) {
            input[c] = !kMasked || step < n_ ? hn::Set(D(), static_cast<double>(in_[c][step]))
                                             : hn::Zero(D());
        }
        const size_t crossed = step < tick ? 0 : (step - tick) / kSkew + 1;
        const Weights w =
            kMixed ? mixed_weights(before_tick, after_tick, crossed) : weights_of(after_tick);
        if constexpr (kMasked) {
            const size_t begun = step / kSkew + 1;
            const size_t ended = step < n_ ? 0 : (step - n_) / kSkew + 1;
            Mask active[kVectors];
            for (size_t p = 0; p < kVectors; ++p)
                active[p] = hn::AndNot(before(ended, p), before(begun, p));
            advance(w, input, [&active](size_t p, V now, V next) HWY_ATTR {
                return hn::IfThenElse(active[p], next, now);
            });
        } else {
            advance(w, input, [](size_t, V, V next) HWY_ATTR { return next; });
        }
        if (step >= kDelay) put_out(step - kDelay);
    }

    /// Steps at which nothing changes, a multiple of kSkew of them; returns the next step.
    HWY_INLINE size_t steady(size_t step, size_t end, const CascadeWeights& weights) {
        const Weights w = weights_of(weights);
        for (; step + kSkew <= end; step += kSkew) {
            for (size_t s = 0; s < kSkew; ++s) {
                V input[kChannels];
                for (size_t c = 0; c < kChannels; ++c) {
                    input[c] = hn::Set(D(), static_cast<double>(in_[c][step + s]));
                }
                advance(w, input, [](size_t, V, V next) HWY_ATTR { return next; });
                put_out(step + s - kDelay);
            }
        }
        return step;
    }

    size_t first_;
    const float* const* in_;
    float* const* out_;
    size_t n_;
    V s1_[kChannels][kVectors], s2_[kChannels][kVectors];
    V v_[kSkew][kChannels][kVectors];  // what left each stage, the oldest first
    V left_[kChannels][kVectors];      // what left each stage at the last step
};

template <size_t kSkew, size_t kVectors, size_t kChannels>
void run_passes(std::span<const Stretch> stretches, CascadeState* states, const float* const* in,
                float* const* out, size_t n) noexcept {
    constexpr size_t kStages = kVectors * kLanes;
    for (size_t first = 0; first < kStageCount; first += kStages) {
        Pipeline<kSkew, kVectors, kChannels> pipeline(first, first == 0 ? in : out, out, n);
        pipeline.run(stretches, states);
    }
}

// Measured: a skew of 2 hides most of a stage's latency; where the stages of two channels take
// eight vectors, these hide it themselves and a skew of 1 fills sooner. More vectors than four a
// channel do not fit into the registers.
CascadeKernels cascade_here() {
    constexpr size_t kVectors = std::min<size_t>(4, kStageCount / kLanes);
    constexpr size_t kStereoSkew = kVectors == 4 ? 1 : 2;
    return {run_passes<2, kVectors, 1>, run_passes<kStereoSkew, kVectors, 2>};
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
