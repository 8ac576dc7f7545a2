// SPDX-License-Identifier: ISC
#include "graph/curves/type_curves.h"

#include <array>

#include "graph/curves/response.h"

namespace brindle {
namespace {

using Evaluator = void (*)(const FrequencyGrid&, Curve&, const CurveSettings&);

/// Adapts an evaluator that takes the frequency alone.
template <void (*kAdd)(const FrequencyGrid&, Curve&, float)>
void Filter(const FrequencyGrid& grid, Curve& curve, const CurveSettings& set) {
    kAdd(grid, curve, set.freq_hz);
}
/// Adapts an evaluator that takes frequency and gain.
template <void (*kAdd)(const FrequencyGrid&, Curve&, float, float)>
void Shelf(const FrequencyGrid& grid, Curve& curve, const CurveSettings& set) {
    kAdd(grid, curve, set.freq_hz, set.gain_db);
}
void Bell(const FrequencyGrid& grid, Curve& curve, const CurveSettings& set) {
    AddBell(grid, curve, set.freq_hz, set.gain_db, set.q, 1.0f);
}
void Search(const FrequencyGrid& grid, Curve& curve, const CurveSettings& set) {
    AddBandPass(grid, curve, set.freq_hz, set.gain_db, set.q);
}
void Notch(const FrequencyGrid& grid, Curve& curve, const CurveSettings& set) {
    AddNotch(grid, curve, set.freq_hz, set.q);
}

void Flat(const FrequencyGrid&, Curve&, const CurveSettings&) {}

/// Indexed by BandType.
constexpr auto kBandEvaluators = std::to_array<Evaluator>({
    Flat,                    // Flat
    Filter<AddLowPass6>,     // LP 6dB/oct
    Filter<AddHighPass6>,    // HP 6dB/oct
    Filter<AddLowPass<2>>,   // LP 12dB/oct
    Filter<AddHighPass<2>>,  // HP 12dB/oct
    Shelf<AddLowShelf<2>>,   // Lo Shelf
    Shelf<AddHighShelf<2>>,  // Hi Shelf
    Flat,                    // Lsh2
    Flat,                    // Hsh2
    Bell,                    // Bell
    Search,                  // Search
    Flat,                    // SymLsh
    Notch,                   // Notch
});
static_assert(kBandEvaluators.size() == kTypeCount<BandType>);

/// Indexed by SectionType.
constexpr auto kSectionEvaluators = std::to_array<Evaluator>({
    Flat,                    // Flat
    Filter<AddHighPass<2>>,  // HP 12dB/oct
    Filter<AddHighPass<4>>,  // HP 24dB/oct
    Filter<AddHighPass<6>>,  // HP 36dB/oct
    Filter<AddHighPass<8>>,  // HP 48dB/oct
    Filter<AddLowPass<2>>,   // LP 12dB/oct
    Filter<AddLowPass<4>>,   // LP 24dB/oct
    Filter<AddLowPass<6>>,   // LP 36dB/oct
    Filter<AddLowPass<8>>,   // LP 48dB/oct
    Shelf<AddHighShelf<2>>,  // Hi Shelf 12dB/oct
    Shelf<AddHighShelf<4>>,  // Hi Shelf 24dB/oct
    Shelf<AddHighShelf<6>>,  // Hi Shelf 36dB/oct
    Shelf<AddHighShelf<8>>,  // Hi Shelf 48dB/oct
    Shelf<AddLowShelf<2>>,   // Lo Shelf 12dB/oct
    Shelf<AddLowShelf<4>>,   // Lo Shelf 24dB/oct
    Shelf<AddLowShelf<6>>,   // Lo Shelf 36dB/oct
    Shelf<AddLowShelf<8>>,   // Lo Shelf 48dB/oct
    Notch,                   // Wide Notch
});
static_assert(kSectionEvaluators.size() == kTypeCount<SectionType>);

}  // namespace

void AddBandCurve(const FrequencyGrid& grid, Curve& curve, BandType type,
                  const CurveSettings& settings) {
    kBandEvaluators[type_index(type)](grid, curve, settings);
}

void AddSectionCurve(const FrequencyGrid& grid, Curve& curve, SectionType type,
                     const CurveSettings& settings) {
    kSectionEvaluators[type_index(type)](grid, curve, settings);
}

void AddStripCurve(const FrequencyGrid& grid, Curve& curve, int strip, float type,
                   const CurveSettings& settings) {
    if (is_band(strip)) {
        AddBandCurve(grid, curve, decode_type<BandType>(type), settings);
    } else {
        AddSectionCurve(grid, curve, decode_type<SectionType>(type), settings);
    }
}

}  // namespace brindle
