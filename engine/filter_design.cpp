// SPDX-License-Identifier: ISC
#include "engine/filter_design.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace brindle {
namespace {

constexpr double kPi = std::numbers::pi;

double square(double x) {
    return x * x;
}

// Rounding can make a radicand negative that is zero in exact arithmetic.
double root(double x) {
    return std::sqrt(std::max(0.0, x));
}

// Prewarped tangent of `freq` [Hz]: the bilinear transform's analogue frequency.
double tangent(double freq, double dt) {
    return std::tan(kPi * freq * dt);
}

// Poles of the matched designs, and the terms of their numerators.
struct MatchedPoles {
    double w;     // rad/sample
    double G, Q;  // root of the gain at the centre, quality
    double a1, a2;
    double s, c;    // sin² and cos² of w/2
    double P0, P1;  // the denominator at DC and at Nyquist
    double R;       // squared magnitude of the denominator at w
};

MatchedPoles matched_poles(const Prototype& p, double G, double Q) {
    MatchedPoles m{};
    m.w = 2.0 * kPi * p.freq * p.dt;
    m.G = G;
    m.Q = Q;
    const double d = 1.0 / (4.0 * square(G) * square(Q));
    const double e = std::exp(-0.5 * m.w / (G * Q));
    const double angle_part =
        d <= 1.0 ? std::cos(m.w * std::sqrt(1.0 - d)) : std::cosh(m.w * std::sqrt(d - 1.0));
    m.a1 = 2.0 * e * angle_part;
    m.a2 = -square(e);
    m.s = square(std::sin(m.w / 2.0));
    m.c = 1.0 - m.s;
    m.P0 = 1.0 - m.a1 - m.a2;
    m.P1 = 1.0 + m.a1 - m.a2;
    m.R = square(m.P0) * m.c + square(m.P1) * m.s + 16.0 * m.c * m.s * m.a2;
    return m;
}

// Below 2e-5 of the sample rate (20 Hz at 1 MHz), rounding destroys a Bell's numerator.
Prototype above_rounding(Prototype p) {
    p.freq = std::max(p.freq, 2e-5 / p.dt);
    return p;
}

MatchedPoles matched_poles_with_gain(const Prototype& p) {
    return matched_poles(p, exp10(p.gain / 40.0), p.q);
}

// Bilinear transform of a shelf with pole tangent `tp`, zero tangent `tz` and damping `k`: gain at
// DC, unity at Nyquist.
Coefficients shelf(double tp, double tz, double k) {
    const double den = 1.0 / (square(tp) + k * tp + 1.0);
    return {(square(tz) + k * tz + 1.0) * den, (2.0 * square(tz) - 2.0) * den,
            (square(tz) + 1.0 - k * tz) * den, -(2.0 * square(tp) - 2.0) * den,
            -(square(tp) + 1.0 - k * tp) * den};
}

// A shelf scaled to unity at DC, so that the gain is at Nyquist.
Coefficients high_shelf(double tp, double tz, double k) {
    Coefficients c = shelf(tp, tz, k);
    const double scale = square(tp) / square(tz);
    c.b0 *= scale;
    c.b1 *= scale;
    c.b2 *= scale;
    return c;
}

// Keeps a shelf's corner frequencies between 0.0003 and 0.375 of the sample rate.
double clamp_tangent(double t) {
    return std::max(std::min(t, 2.414), 0.000981748019);
}

}  // namespace

Coefficients design_flat(const Prototype& /*p*/) noexcept {
    return {1.0, 0.0, 0.0, 0.0, 0.0};
}

Coefficients design_low_pass6(const Prototype& proto) noexcept {
    const double w = 2.0 * kPi * proto.freq * proto.dt;
    const double u = 1.0 / (proto.freq * proto.dt);
    const double m = 2.0 / std::sqrt(square(u) + 4.0);  // magnitude wanted at Nyquist
    const double p = m > 0.5 ? std::sqrt(m) : 0.7071067811865476;
    const double p2 = square(p);
    const double r = 1.0 - p2;
    const double v = root((p2 - square(m)) * r) * std::tan(w * std::sqrt(r) / (2.0 * p)) / r;
    const double n = 1.0 / (v + 1.0);
    return {(m + v) * n, (v - m) * n, 0.0, (1.0 - v) * n, 0.0};
}

Coefficients design_high_pass6(const Prototype& p) noexcept {
    const double t = tangent(p.freq, p.dt);
    const double n = 1.0 / (t + 1.0);
    return {n, -n, 0.0, (1.0 - t) * n, 0.0};
}

Coefficients design_low_pass12(const Prototype& p) noexcept {
    const MatchedPoles m = matched_poles(p, 1.0, p.q);
    const double h = m.P0 + root((square(m.Q) * m.R - m.c * square(m.P0)) / m.s);
    return {h / 2.0, m.P0 - h / 2.0, 0.0, m.a1, m.a2};
}

Coefficients design_high_pass12(const Prototype& p) noexcept {
    const MatchedPoles m = matched_poles(p, 1.0, p.q);
    const double b0 = m.Q * root(m.R) / (4.0 * m.s);
    return {b0, -2.0 * b0, b0, m.a1, m.a2};
}

Coefficients design_bell(const Prototype& proto) noexcept {
    const MatchedPoles d = matched_poles_with_gain(above_rounding(proto));
    const double G4 = square(square(d.G));
    const double W = G4 * (16.0 * (d.c - d.s) * d.a2 + square(d.P1) - square(d.P0));
    const double B = (G4 * d.R - d.s * W - square(d.P0)) / (4.0 * square(d.s));
    const double h = d.P0 - root(square(d.P0) + W + 4.0 * (d.s - d.c) * B);
    const double m = d.P0 - h / 2.0;
    const double b0 = (m + root(B + square(m))) / 2.0;
    return {b0, h / 2.0, -B / (4.0 * b0), d.a1, d.a2};
}

Coefficients design_search(const Prototype& p) noexcept {
    const MatchedPoles d = matched_poles_with_gain(p);
    const double v = 2.0 * p.freq * p.dt;  // frequency as a share of Nyquist
    const double at_nyquist = -0.5 * d.P1 * v / d.Q;
    const double u = at_nyquist / std::sqrt(square(v) / square(d.Q) + square(1.0 - square(v)));
    const double b0 = d.G * 0.5 * (d.P0 / (d.w * d.Q) - u);
    const double b1 = d.G * u;
    return {b0, b1, -b0 - b1, d.a1, d.a2};
}

Coefficients design_lo_shelf(const Prototype& p) noexcept {
    const double t = tangent(p.freq, p.dt);
    const double moved = t * exp10(std::abs(p.gain) / 40.0);
    return p.gain >= 0.0 ? shelf(clamp_tangent(t), clamp_tangent(moved), p.damping)
                         : shelf(clamp_tangent(moved), clamp_tangent(t), p.damping);
}

Coefficients design_hi_shelf(const Prototype& p) noexcept {
    const double t = tangent(std::max(p.freq, 100.0), p.dt);
    const double moved = t * exp10(-std::abs(p.gain) / 40.0);
    return p.gain >= 0.0 ? high_shelf(clamp_tangent(t), clamp_tangent(moved), p.damping)
                         : high_shelf(clamp_tangent(moved), clamp_tangent(t), p.damping);
}

Coefficients design_lo_shelf2(const Prototype& p) noexcept {
    const double t = tangent(p.freq, p.dt);
    const double moved = t * exp10(-std::abs(p.gain) / 40.0);
    return p.gain >= 0.0 ? shelf(clamp_tangent(moved), clamp_tangent(t), p.damping)
                         : shelf(clamp_tangent(t), clamp_tangent(moved), p.damping);
}

Coefficients design_hi_shelf2(const Prototype& p) noexcept {
    const double t = tangent(std::min(p.freq, 10000.0), p.dt);
    const double moved = t * exp10(std::abs(p.gain) / 40.0);
    return p.gain >= 0.0 ? high_shelf(clamp_tangent(moved), clamp_tangent(t), p.damping)
                         : high_shelf(clamp_tangent(t), clamp_tangent(moved), p.damping);
}

Coefficients design_sym_lo_shelf(const Prototype& p) noexcept {
    const double t = tangent(std::min(p.freq, 0.45 / p.dt), p.dt);
    const double M = exp10(std::abs(p.gain) / 80.0);
    return p.gain >= 0.0 ? shelf(t / M, t * M, p.damping) : shelf(t * M, t / M, p.damping);
}

Coefficients design_notch(const Prototype& p) noexcept {
    const double t = tangent(p.freq, p.dt);
    const double v = t / p.q;
    const double den = 1.0 / (square(t) + v + 1.0);
    const double b0 = (square(t) + 1.0) * den;
    return {b0, 2.0 * (square(t) - 1.0) * den, b0, -2.0 * (square(t) - 1.0) * den,
            -(square(t) - v + 1.0) * den};
}

}  // namespace brindle
