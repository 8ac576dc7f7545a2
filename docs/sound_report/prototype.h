// SPDX-License-Identifier: ISC
/// The analogue filters that the types are modelled on.
#pragma once

#include <complex>
#include <vector>

#include "docs/sound_report/rig.h"

namespace brindle {

/// scale (n2 s^2 + n1 s + n0) / (d2 s^2 + d1 s + d0), with s = jf and f in Hz.
struct AnalogueStage {
    double n2, n1, n0;
    double d2, d1, d0;
    double scale = 1.0;
};
using Prototype = std::vector<AnalogueStage>;

/// What a setting stands for: one stage for a band, up to four for a section, with the frequencies
/// that the section gives them. `rate_hz` holds the highest notches down.
Prototype prototype(const Setting& setting, double rate_hz);

std::complex<double> response_at(const Prototype& filter, double freq_hz);
double gain_db_at(const Prototype& filter, double freq_hz);
double delay_ms_at(const Prototype& filter, double freq_hz);
/// Gain of the ordinary digital form, by the bilinear transform that keeps `corner_hz`.
double bilinear_gain_db(const Prototype& filter, double freq_hz, double corner_hz, double rate_hz);
/// Gain of a Butterworth filter as steep as a section's passes, at the frequency that was set.
double butterworth_gain_db(const Setting& setting, double freq_hz);

}  // namespace brindle
