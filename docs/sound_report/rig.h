// SPDX-License-Identifier: ISC
/// The built plugin on the bench.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "contract/brindle.h"
#include "contract/types.h"
#include "docs/sound_report/analysis.h"
#include "host/bundle.h"
#include "host/plugin.h"

namespace brindle {

inline constexpr double kRatesHz[] = {44100.0, 48000.0, 96000.0};

/// A strip that is on, and how it is set.
struct Setting {
    int strip;
    int type;  ///< a BandType or SectionType, as its port has it
    double gain_db = 0.0;
    double freq_hz = 1000.0;
    double q = 1.0;
};
Setting band_setting(BandType type, double gain_db, double freq_hz, double q, int band = 0);
/// Section A for high-passes, low shelves and the wide notch, B for the others.
Setting section_setting(SectionType type, double gain_db, double freq_hz, double q);

/// A Plugin in which all strips are off but those that are set.
class Rig : public Plugin {
  public:
    /// `block` frames are processed at a time.
    Rig(Bundle& bundle, int channels, double rate_hz, uint32_t block = 64);
    Rig(Bundle& bundle, int channels, double rate_hz, const std::vector<Setting>& settings);

    void apply(const Setting& setting);
    /// What comes out on the first channel for this on all channels.
    Samples play(const Samples& samples);
};

/// All sixteen stages at work, while the sum is flat from 60 Hz to 8 kHz: bells of +6 and -6 dB in
/// pairs, section A a high-pass at 20 Hz, section B a low-pass at 15 kHz, both 48 dB/oct.
std::vector<Setting> sixteen_stages();

/// Sections of the report; each returns its text and leaves its pictures in `folder`.
std::string report_magnitude(Bundle& bundle, const std::string& folder);
std::string report_delay(Bundle& bundle, const std::string& folder);
std::string report_noise(Bundle& bundle);
std::string report_glides(Bundle& bundle);
std::string report_meters(Bundle& bundle);
std::string report_analyser(Bundle& bundle);

}  // namespace brindle
