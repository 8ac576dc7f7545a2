// SPDX-License-Identifier: ISC
#include "docs/sound_report/prototype.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace brindle {
namespace {

/// A shelf between a zero pair and a pole pair, both damped by `damping`. High shelves have their
/// gain at the top, low ones at the bottom.
AnalogueStage shelf(double pole_hz, double zero_hz, double damping, bool is_high) {
    const double ratio = pole_hz / zero_hz;
    return {1.0,
            damping * zero_hz,
            zero_hz * zero_hz,
            1.0,
            damping * pole_hz,
            pole_hz * pole_hz,
            is_high ? ratio * ratio : 1.0};
}

AnalogueStage band_stage(BandType type, double gain_db, double f, double q, double damping) {
    const double G = std::pow(10.0, gain_db / 40.0);
    const double spread = std::pow(10.0, std::abs(gain_db) / 40.0);
    const double half_spread = std::sqrt(spread);
    const bool boost = gain_db >= 0.0;
    constexpr double kFlatQ = 0.7071;
    const double high = std::max(f, 100.0);
    const double high2 = std::min(f, 10000.0);
    switch (type) {
        case BandType::LowPass6:
            return {0.0, 0.0, f, 0.0, 1.0, f};
        case BandType::HighPass6:
            return {0.0, 1.0, 0.0, 0.0, 1.0, f};
        case BandType::LowPass12:
            return {0.0, 0.0, f * f, 1.0, f / kFlatQ, f * f};
        case BandType::HighPass12:
            return {1.0, 0.0, 0.0, 1.0, f / kFlatQ, f * f};
        case BandType::LoShelf:
            return shelf(boost ? f : f * spread, boost ? f * spread : f, damping, false);
        case BandType::HiShelf:
            return shelf(boost ? high : high / spread, boost ? high / spread : high, damping, true);
        case BandType::LoShelf2:
            return shelf(boost ? f / spread : f, boost ? f : f / spread, damping, false);
        case BandType::HiShelf2:
            return shelf(boost ? high2 * spread : high2, boost ? high2 : high2 * spread, damping,
                         true);
        case BandType::SymLoShelf:
            return shelf(boost ? f / half_spread : f * half_spread,
                         boost ? f * half_spread : f / half_spread, damping, false);
        case BandType::Bell:
            return {1.0, f * G / q, f * f, 1.0, f / (G * q), f * f};
        case BandType::Search:
            return {0.0, f * G / q, 0.0, 1.0, f / (G * q), f * f};
        case BandType::Notch:
            return {1.0, 0.0, f * f, 1.0, f / q, f * f};
        default:
            return {0.0, 0.0, 1.0, 0.0, 0.0, 1.0};
    }
}

/// The stages of a steep pass, which are all alike.
Prototype steep_pass(BandType type, int stages, double freq_hz) {
    constexpr double kHighFactors[] = {1.0, 0.88, 0.75, 0.7};
    constexpr double kLowFactors[] = {1.0, 1.2, 1.4, 1.5};
    const auto row = static_cast<size_t>(stages - 1);
    const double shifted_hz = type == BandType::HighPass12
                                  ? freq_hz * kHighFactors[row]
                                  : std::min(freq_hz * kLowFactors[row], 20000.0);
    return {static_cast<size_t>(stages), band_stage(type, 0.0, shifted_hz, 1.0, 0.0)};
}

/// Shares of the gain, with the damping of a Butterworth filter's pole pairs.
Prototype steep_shelf(BandType type, int stages, const Setting& setting) {
    Prototype filter;
    const double share_db = setting.gain_db * (stages == 3 ? 0.3333 : 1.0 / stages);
    for (int k = 0; k < stages; ++k) {
        const double damping = 2.0 * std::sin((2 * k + 1) * std::numbers::pi / (4.0 * stages));
        filter.push_back(band_stage(type, share_db, setting.freq_hz, setting.q, damping));
    }
    return filter;
}

Prototype wide_notch(const Setting& setting, double rate_hz) {
    const double q = setting.q * 3.9;
    const double r = (std::sqrt(4.0 * q * q + 1.0) + 1.0) / (2.0 * q);
    Prototype filter;
    for (const double power : {-3.0, -1.0, 1.0, 3.0}) {
        const double freq_hz = std::min(setting.freq_hz * std::pow(r, power), 0.45 * rate_hz);
        filter.push_back(band_stage(BandType::Notch, 0.0, freq_hz, setting.q, 0.0));
    }
    return filter;
}

int offset(SectionType type, SectionType first) {
    return static_cast<int>(type) - static_cast<int>(first);
}

}  // namespace

Prototype prototype(const Setting& setting, double rate_hz) {
    constexpr double kBandDamping = 1.41213562;
    if (setting.strip < kBandCount) {
        return {band_stage(static_cast<BandType>(setting.type), setting.gain_db, setting.freq_hz,
                           setting.q, kBandDamping)};
    }
    const auto type = static_cast<SectionType>(setting.type);
    if (type == SectionType::WideNotch) return wide_notch(setting, rate_hz);
    if (type >= SectionType::LoShelf12) {
        return steep_shelf(BandType::LoShelf, offset(type, SectionType::LoShelf12) + 1, setting);
    }
    if (type >= SectionType::HiShelf12) {
        return steep_shelf(BandType::HiShelf, offset(type, SectionType::HiShelf12) + 1, setting);
    }
    if (type >= SectionType::LowPass12) {
        return steep_pass(BandType::LowPass12, offset(type, SectionType::LowPass12) + 1,
                          setting.freq_hz);
    }
    return steep_pass(BandType::HighPass12, offset(type, SectionType::HighPass12) + 1,
                      setting.freq_hz);
}

std::complex<double> response_at(const Prototype& filter, double freq_hz) {
    const std::complex<double> s(0.0, freq_hz);
    std::complex<double> response = 1.0;
    for (const AnalogueStage& stage : filter) {
        response *= stage.scale * ((stage.n2 * s + stage.n1) * s + stage.n0) /
                    ((stage.d2 * s + stage.d1) * s + stage.d0);
    }
    return response;
}

double gain_db_at(const Prototype& filter, double freq_hz) {
    return 20.0 * std::log10(std::abs(response_at(filter, freq_hz)));
}

double delay_ms_at(const Prototype& filter, double freq_hz) {
    constexpr double kStep = 1e-4;
    const double step_hz = freq_hz * kStep;
    const double turn =
        std::arg(response_at(filter, freq_hz + step_hz) / response_at(filter, freq_hz - step_hz));
    return -turn / (2.0 * std::numbers::pi * 2.0 * step_hz) * 1000.0;
}

double bilinear_gain_db(const Prototype& filter, double freq_hz, double corner_hz, double rate_hz) {
    return gain_db_at(filter, corner_hz * std::tan(std::numbers::pi * freq_hz / rate_hz) /
                                  std::tan(std::numbers::pi * corner_hz / rate_hz));
}

double butterworth_gain_db(const Setting& setting, double freq_hz) {
    const auto type = static_cast<SectionType>(setting.type);
    const bool is_low = type >= SectionType::LowPass12;
    const int order =
        2 * (offset(type, is_low ? SectionType::LowPass12 : SectionType::HighPass12) + 1);
    const double ratio = is_low ? freq_hz / setting.freq_hz : setting.freq_hz / freq_hz;
    return -10.0 * std::log10(1.0 + std::pow(ratio, 2.0 * order));
}

}  // namespace brindle
