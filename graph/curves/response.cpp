// SPDX-License-Identifier: ISC
#include "graph/curves/response.h"

#include <array>
#include <cmath>
#include <numbers>
#include <span>
#include <utility>

#include "graph/curves/response_kernel.h"

namespace brindle {
namespace {

using PairConstants = std::array<double, kMaxFactors>;

// clang-format off
/// sin²((2k − 1)·π/(2N)), k = 1 to N/2: the damping of a Butterworth filter's pole pairs.
constexpr PairConstants kPairDamping[] = {
    {0.4999999999999999},                                                              // N = 2
    {0.1464466094067262, 0.8535533905932737},                                          // 4
    {0.06698729810778072, 0.4999999999999999, 0.9330127018922192},                     // 6
    {0.03806023374435652, 0.3086582838174552, 0.691341716182545, 0.9619397662556434},  // 8
};

/// 4·sin²((2k − 1)·π/(2N)): the damping for the shelves, with digits of its own.
constexpr PairConstants kShelfDamping[] = {
    {2.0000000000000004},                                                              // N = 2
    {0.5857864376269049, 3.414213562373095},                                           // 4
    {0.26794919243112286, 1.9999999999999996, 3.7320508075688767},                     // 6
    {0.15224093497742608, 1.2346331352698208, 2.76536686473018, 3.8477590650225735},   // 8
};
// clang-format on

/// The constants of a filter of order N, one per pole pair (N/2).
std::span<const double> OfOrder(std::span<const PairConstants> table, int order) {
    const auto pairs = static_cast<size_t>(order / 2);
    return std::span(table[pairs - 1]).first(pairs);
}

/// The share of a shelf's gain in each of its N/2 sections. At order 6 low and high shelf differ,
/// and neither share is a third; this is intended.
template <int kOrder>
inline constexpr float kLowShelfShare = kOrder == 6 ? 0.3333f : 2.0f / kOrder;
template <int kOrder>
inline constexpr float kHighShelfShare = kOrder == 6 ? 0.333f : 2.0f / kOrder;

/// Below this amplitude (4.77 dB) a bell's width does not depend on its gain. It is the square root
/// of three, where both rules give the same width.
constexpr double kFixedWidthAmplitude = 1.732050808;
constexpr float kNotchDb = -120.0f;

/// Limits that keep products of up to sixteen angular frequencies within the range of a double.
bool IsFrequency(float freq_hz) {
    return freq_hz >= 1e-3f && freq_hz <= 1e6f;
}
bool IsGain(float gain_db) {
    return std::abs(gain_db) <= 200.0f;
}
bool IsQ(float q) {
    return q > 0.0f && std::isfinite(q);
}

double AngularFrequency(float freq_hz) {
    return 2.0 * std::numbers::pi * static_cast<double>(freq_hz);
}

double Amplitude(double gain_db) {
    return std::pow(10.0, std::abs(gain_db) * 0.05);
}

void AddToGrid(const FrequencyGrid& grid, Curve& curve, const Response& response) {
    AddResponse(response, grid.hz.data(), curve.data(), static_cast<size_t>(grid.count));
}

/// (u² − W)² + damping·u²·W, the squared magnitude of s² + √damping·u·s + u².
Quadratic PairAt(double u, double damping) {
    return {1.0, u * u, damping * u * u, 0.0};
}

/// One numerator for every pole pair, over (w0² − W)² + 4·c·w0²·W.
void AddButterworth(const FrequencyGrid& grid, Curve& curve, int order, float freq_hz,
                    const Quadratic& numerator) {
    const double w0 = AngularFrequency(freq_hz);
    Response response;
    for (const double c : OfOrder(kPairDamping, order)) {
        response.factors[response.count++] = {numerator, PairAt(w0, 4.0 * c)};
    }
    AddToGrid(grid, curve, response);
}

/// Factors P(b, w)/P(c, w) over the damping constants, each numerator times `normalise`.
void AddShelf(const FrequencyGrid& grid, Curve& curve, int order, double b, double c,
              double normalise) {
    Response response;
    for (const double damping : OfOrder(kShelfDamping, order)) {
        Quadratic numerator = PairAt(b, damping);
        numerator.square *= normalise;
        numerator.linear *= normalise;
        response.factors[response.count++] = {numerator, PairAt(c, damping)};
    }
    AddToGrid(grid, curve, response);
}

/// √A of one section: the ratio of its pole and zero frequencies.
double ShelfSpread(float gain_db, float share) {
    return std::sqrt(Amplitude(static_cast<double>(gain_db * share)));
}

/// Adds a response and sets its centre point to the previous value plus the gain.
void AddPinned(const FrequencyGrid& grid, Curve& curve, float freq_hz, float gain_db,
               const Response& response) {
    const auto centre = GridIndex(grid, freq_hz);
    const float before = centre ? curve[*centre] : 0.0f;
    AddToGrid(grid, curve, response);
    if (centre) curve[*centre] = before + gain_db;
}

}  // namespace

void AddLowPass6(const FrequencyGrid& grid, Curve& curve, float freq_hz) {
    if (!IsFrequency(freq_hz)) return;
    const double w0 = AngularFrequency(freq_hz);
    Response response{.count = 1, .factors = {}};
    response.factors[0].numerator.constant = w0 * w0;
    response.factors[0].denominator = {.linear = 1.0, .constant = w0 * w0};
    AddToGrid(grid, curve, response);
}

void AddHighPass6(const FrequencyGrid& grid, Curve& curve, float freq_hz) {
    if (!IsFrequency(freq_hz)) return;
    const double w0 = AngularFrequency(freq_hz);
    Response response{.count = 1, .factors = {}};
    response.factors[0].numerator.linear = 1.0;
    response.factors[0].denominator = {.linear = 1.0, .constant = w0 * w0};
    AddToGrid(grid, curve, response);
}

template <int kOrder>
void AddLowPass(const FrequencyGrid& grid, Curve& curve, float freq_hz) {
    if (!IsFrequency(freq_hz)) return;
    AddButterworth(grid, curve, kOrder, freq_hz,
                   {.constant = std::pow(AngularFrequency(freq_hz), 4.0)});
}

template <int kOrder>
void AddHighPass(const FrequencyGrid& grid, Curve& curve, float freq_hz) {
    if (!IsFrequency(freq_hz)) return;
    AddButterworth(grid, curve, kOrder, freq_hz, {.square = 1.0});
}

template <int kOrder>
void AddLowShelf(const FrequencyGrid& grid, Curve& curve, float freq_hz, float gain_db) {
    if (!IsFrequency(freq_hz) || !IsGain(gain_db)) return;
    const double w0 = AngularFrequency(freq_hz);
    const double r = ShelfSpread(gain_db, kLowShelfShare<kOrder>);
    const double b = gain_db >= 0.0f ? w0 * r : w0;
    const double c = gain_db >= 0.0f ? w0 : w0 * r;
    AddShelf(grid, curve, kOrder, b, c, 1.0);
}

template <int kOrder>
void AddHighShelf(const FrequencyGrid& grid, Curve& curve, float freq_hz, float gain_db) {
    if (!IsFrequency(freq_hz) || !IsGain(gain_db)) return;
    const double w0 = AngularFrequency(freq_hz);
    const double r = ShelfSpread(gain_db, kHighShelfShare<kOrder>);
    const double b = gain_db >= 0.0f ? w0 / r : w0;
    const double c = gain_db >= 0.0f ? w0 : w0 / r;
    AddShelf(grid, curve, kOrder, b, c, std::pow(c, 4.0) / std::pow(b, 4.0));
}

void AddBell(const FrequencyGrid& grid, Curve& curve, float freq_hz, float gain_db, float q,
             float weight) {
    if (!IsFrequency(freq_hz) || !IsGain(gain_db) || !IsQ(q) || !std::isfinite(weight)) return;
    const double w0 = AngularFrequency(freq_hz);
    const double A = Amplitude(static_cast<double>(gain_db));
    const double width = A <= kFixedWidthAmplitude ? 0.5 : std::sqrt(A * A - 2.0) * 0.5;
    const double p = width / static_cast<double>(q);
    double u = 2.0 * p * w0;
    double v = 2.0 * (p / A) * w0;
    if (gain_db < 0.0f) std::swap(u, v);
    Response response{.count = 1, .factors = {}, .scale = 10.0 * static_cast<double>(weight)};
    response.factors[0] = {{1.0, w0 * w0, u * u, 0.0}, {1.0, w0 * w0, v * v, 0.0}};
    AddPinned(grid, curve, freq_hz, gain_db, response);
}

void AddBandPass(const FrequencyGrid& grid, Curve& curve, float freq_hz, float gain_db, float q) {
    if (!IsFrequency(freq_hz) || !IsGain(gain_db) || !IsQ(q)) return;
    const double w0 = AngularFrequency(freq_hz);
    const double t = w0 / static_cast<double>(q);
    Response response{.count = 1, .factors = {}, .offset_db = static_cast<double>(gain_db)};
    response.factors[0] = {{.linear = t * t}, {1.0, w0 * w0, t * t, 0.0}};
    AddPinned(grid, curve, freq_hz, gain_db, response);
}

void AddNotch(const FrequencyGrid& grid, Curve& curve, float freq_hz, float q) {
    if (!IsFrequency(freq_hz) || !IsQ(q)) return;
    const double w0 = AngularFrequency(freq_hz);
    const double t = w0 / static_cast<double>(q);
    Response response{.count = 1, .factors = {}};
    response.factors[0] = {{.square = 1.0, .root = w0 * w0}, {1.0, w0 * w0, t * t, 0.0}};
    AddToGrid(grid, curve, response);
    if (const auto centre = GridIndex(grid, freq_hz)) curve[*centre] = kNotchDb;
}

#define BRINDLE_INSTANTIATE(order)                                                \
    template void AddLowPass<order>(const FrequencyGrid&, Curve&, float);         \
    template void AddHighPass<order>(const FrequencyGrid&, Curve&, float);        \
    template void AddLowShelf<order>(const FrequencyGrid&, Curve&, float, float); \
    template void AddHighShelf<order>(const FrequencyGrid&, Curve&, float, float)
BRINDLE_INSTANTIATE(2);
BRINDLE_INSTANTIATE(4);
BRINDLE_INSTANTIATE(6);
BRINDLE_INSTANTIATE(8);
#undef BRINDLE_INSTANTIATE

}  // namespace brindle
