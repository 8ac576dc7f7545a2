// SPDX-License-Identifier: ISC
// Compares response curves with complex transfer functions of the analogue prototypes.
#include "graph/curves/response.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <cmath>
#include <complex>
#include <functional>
#include <limits>
#include <numbers>
#include <vector>

#include "contract/types.h"
#include "graph/curves/type_curves.h"

namespace brindle {
namespace {

using Complex = std::complex<double>;
/// H(s) with s = j·f/f0.
using Prototype = std::function<Complex(Complex)>;

constexpr double kPi = std::numbers::pi;

/// Floats represent the few hundred dB that occur here to better than 2e-5.
constexpr double kToleranceDb = 1e-4;
constexpr size_t kPoints = 799;  // not a whole number of vectors
const float kNan = std::numeric_limits<float>::quiet_NaN();

FrequencyGrid DrawnGrid() {
    FrequencyGrid grid;
    SetFrequencyGrid(grid, kPoints, 20.0f, 20000.0f);
    return grid;
}

/// The polynomial with the Butterworth poles of an order and corner as roots; 1 at s = 0.
Complex Butterworth(int order, Complex s, double corner = 1.0) {
    Complex product = 1.0;
    for (int k = 1; k <= order; ++k) {
        const Complex pole = corner * std::polar(1.0, kPi * (2 * k + order - 1) / (2.0 * order));
        product *= 1.0 - s / pole;
    }
    return product;
}

double Amplitude(double db) {
    return std::pow(10.0, db / 20.0);
}

Prototype LowPass(int order) {
    return [=](Complex s) { return 1.0 / Butterworth(order, s); };
}
Prototype HighPass(int order) {
    return [=](Complex s) { return 1.0 / Butterworth(order, 1.0 / s); };
}
/// Boost: poles at the corner, zeros where the plateau needs them; cut: the reverse.
Prototype LowShelf(int order, double plateau_db) {
    const double spread = std::pow(Amplitude(std::abs(plateau_db)), 1.0 / order);
    const double plateau = Amplitude(plateau_db);
    return [=](Complex s) {
        return plateau_db >= 0.0 ? plateau * Butterworth(order, s, spread) / Butterworth(order, s)
                                 : plateau * Butterworth(order, s) / Butterworth(order, s, spread);
    };
}
/// A high shelf is a low shelf with an inverted frequency axis.
Prototype HighShelf(int order, double plateau_db) {
    return [low = LowShelf(order, plateau_db)](Complex s) { return low(1.0 / s); };
}
/// Width: between the points 3 dB below a high peak; for a low peak, that of the numerator.
Prototype Bell(double gain_db, double q) {
    const double A = Amplitude(std::abs(gain_db));
    // Solve |H|² = A²/2 at f/f0 − f0/f = 1/q for the numerator's damping.
    const double top = A * A > 3.0 ? std::sqrt(A * A - 2.0) / q : 1.0 / q;
    return [=](Complex s) {
        const Complex h = (s * s + top * s + 1.0) / (s * s + top / A * s + 1.0);
        return gain_db >= 0.0 ? h : 1.0 / h;
    };
}
Prototype Search(double gain_db, double q) {
    return [=](Complex s) { return Amplitude(gain_db) * (s / q) / (s * s + s / q + 1.0); };
}
Prototype Notch(double q) {
    return [=](Complex s) { return (s * s + 1.0) / (s * s + s / q + 1.0); };
}

struct Case {
    int type;
    Prototype prototype;
    bool hasPinnedCentre = false;
};

std::vector<Case> BandCases(double gain, double q) {
    const Prototype flat = [](Complex) { return 1.0; };
    return {
        {0, flat},
        {7, flat},
        {8, flat},
        {11, flat},
        {1, [](Complex s) { return 1.0 / (1.0 + s); }},
        {2, [](Complex s) { return s / (1.0 + s); }},
        {3, LowPass(2)},
        {4, HighPass(2)},
        {5, LowShelf(2, gain)},
        {6, HighShelf(2, gain)},
        {9, Bell(gain, q), true},
        {10, Search(gain, q), true},
        {12, Notch(q), true},
    };
}

std::vector<Case> SectionCases(double gain, double q) {
    // A 36 dB/oct shelf has 0.3333 or 0.333 of the gain in each of its three parts, by design.
    return {{1, HighPass(2)},
            {2, HighPass(4)},
            {3, HighPass(6)},
            {4, HighPass(8)},
            {5, LowPass(2)},
            {6, LowPass(4)},
            {7, LowPass(6)},
            {8, LowPass(8)},
            {9, HighShelf(2, gain)},
            {10, HighShelf(4, gain)},
            {11, HighShelf(6, gain * 3.0 * 0.333)},
            {12, HighShelf(8, gain)},
            {13, LowShelf(2, gain)},
            {14, LowShelf(4, gain)},
            {15, LowShelf(6, gain * 3.0 * 0.3333)},
            {16, LowShelf(8, gain)},
            {17, Notch(q), true}};
}

void ExpectPrototypes(const std::vector<Case>& cases, int strip, const CurveSettings& set) {
    constexpr float kSentinel = 12345.0f;
    const FrequencyGrid grid = DrawnGrid();
    const auto centre = GridIndex(grid, set.freq_hz);
    for (const Case& c : cases) {
        alignas(64) struct {
            float before = kSentinel;
            Curve curve = {};  // misaligned for vectors
        } memory;
        memory.curve[kPoints] = kSentinel;
        AddStripCurve(grid, memory.curve, strip, static_cast<float>(c.type), set);
        for (size_t i = 0; i < kPoints; ++i) {
            if (c.hasPinnedCentre && i == centre) continue;
            const Complex s(0.0,
                            static_cast<double>(grid.hz[i]) / static_cast<double>(set.freq_hz));
            const double expected = 20.0 * std::log10(std::abs(c.prototype(s)));
            ASSERT_NEAR(static_cast<double>(memory.curve[i]), expected, kToleranceDb)
                << "type " << c.type << " gain " << set.gain_db << " f " << set.freq_hz << " q "
                << set.q << " at " << grid.hz[i] << " Hz";
        }
        EXPECT_EQ(memory.before, kSentinel);
        EXPECT_EQ(memory.curve[kPoints], kSentinel);
    }
}

TEST(Response, FollowsTheAnaloguePrototypesOnEveryTarget) {
    int64_t targets = 0;
    for (const float gain : {-18.0f, -6.0f, 0.0f, 4.7f, 12.0f, 18.0f}) {
        for (const float freq : {20.0f, 997.0f, 14321.0f}) {
            for (const float q : {0.1f, 0.71f, 100.0f}) {
                // The processor's vector targets take turns.
                if (targets == 0) targets = hwy::SupportedTargets();
                const int64_t target = targets & -targets;
                targets -= target;
                SCOPED_TRACE(hwy::TargetName(target));
                hwy::SetSupportedTargetsForTest(target);
                const CurveSettings set = {gain, freq, q};
                ExpectPrototypes(BandCases(gain, static_cast<double>(q)), 0, set);
                ExpectPrototypes(SectionCases(gain, static_cast<double>(q)), kBandCount, set);
                hwy::SetSupportedTargetsForTest(0);
            }
        }
    }
}

TEST(Response, CentrePointsArePinned) {
    const FrequencyGrid grid = DrawnGrid();
    const size_t centre = 452;  // trunc(799·log1000(1000/20)) = trunc(452.49)
    Curve curve = {};
    AddBell(grid, curve, 1000.0f, 5.0f, 40.0f, 1.0f);
    EXPECT_FLOAT_EQ(curve[centre], 5.0f);
    AddBell(grid, curve, 1000.0f, -2.0f, 40.0f, 0.5f);  // the weight leaves the centre alone
    EXPECT_FLOAT_EQ(curve[centre], 3.0f);
    AddBandPass(grid, curve, 1000.0f, 10.0f, 40.0f);
    EXPECT_FLOAT_EQ(curve[centre], 13.0f);
    AddNotch(grid, curve, 1000.0f, 1.0f);
    EXPECT_EQ(std::count(curve.begin(), curve.end(), -120.0f), 1);
    EXPECT_EQ(curve[centre], -120.0f);
}

TEST(Response, WhatAHostShouldNotSendLeavesTheCurveAlone) {
    const FrequencyGrid grid = DrawnGrid();
    const float inf = std::numeric_limits<float>::infinity();
    std::vector<float> types = {-1.0f, 1e30f, kNan};
    for (int type = 0; type < static_cast<int>(kSectionTypes.size()); ++type) {
        types.push_back(static_cast<float>(type));
    }
    for (const float type : types) {
        for (const int strip : {0, kBandCount}) {
            SCOPED_TRACE(testing::Message() << "strip " << strip << " type " << type);
            for (const CurveSettings& set : {CurveSettings{6.0f, kNan, 1.0f},
                                             {6.0f, -50.0f, 1.0f},
                                             {6.0f, 0.0f, 1.0f},
                                             {6.0f, inf, 1.0f},
                                             {kNan, 1e9f, kNan}}) {
                Curve curve = {};
                AddStripCurve(grid, curve, strip, type, set);
                ASSERT_THAT(curve, testing::Each(0.0f)) << set.freq_hz;
            }
            // Extreme valid values give finite levels, inside and outside the graph.
            for (const float freq : {1e-3f, 19.9f, grid.hz[300], 20000.0f, 1e6f}) {
                Curve curve = {};
                AddStripCurve(grid, curve, strip, type, {200.0f, freq, 1e-30f});
                AddStripCurve(grid, curve, strip, type, {-200.0f, freq, 1e30f});
                for (const float level : curve) ASSERT_TRUE(std::isfinite(level)) << freq;
            }
        }
    }
}

TEST(FrequencyGrid, DividesTheRangeIntoCountRatios) {
    FrequencyGrid grid;
    SetFrequencyGrid(grid, 800, 20.0f, 20000.0f);
    EXPECT_EQ(grid.hz[0], 20.0f);
    EXPECT_NEAR(grid.hz[400], 632.4555, 0.01);  // the middle of the logarithmic range
    EXPECT_NEAR(grid.hz[799], 19828.06, 0.5);   // 20000 / 1000^(1/800)
    EXPECT_EQ(GridIndex(grid, 20000.0f), 800u);
    SetFrequencyGrid(grid, 600, 20.0f, 20000.0f);
    EXPECT_EQ(grid.hz[600], 1.0f);
    SetFrequencyGrid(grid, 1025, 20.0f, 20000.0f);
    SetFrequencyGrid(grid, 10, 20.0f, std::numeric_limits<float>::infinity());
    EXPECT_EQ(grid.count, 600);
}

}  // namespace
}  // namespace brindle
