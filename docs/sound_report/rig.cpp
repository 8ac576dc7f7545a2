// SPDX-License-Identifier: ISC
#include "docs/sound_report/rig.h"

#include "contract/brindle.h"

namespace brindle {
namespace {

bool stands_on_b(SectionType type) {
    return type >= SectionType::LowPass12 && type <= SectionType::HiShelf48;
}

}  // namespace

Setting band_setting(BandType type, double gain_db, double freq_hz, double q, int band) {
    return {band, static_cast<int>(type), gain_db, freq_hz, q};
}

Setting section_setting(SectionType type, double gain_db, double freq_hz, double q) {
    return {kBandCount + (stands_on_b(type) ? 1 : 0), static_cast<int>(type), gain_db, freq_hz, q};
}

Rig::Rig(Bundle& bundle, int channels, double rate_hz, uint32_t block)
    : Plugin(bundle, channels, rate_hz, block) {
    for (int strip = 0; strip < kStripCount; ++strip) set(strip_port(strip) + kEnable, 0.0f);
}

Rig::Rig(Bundle& bundle, int channels, double rate_hz, const std::vector<Setting>& settings)
    : Rig(bundle, channels, rate_hz, 1024) {
    for (const Setting& setting : settings) apply(setting);
}

void Rig::apply(const Setting& setting) {
    const uint32_t port = strip_port(setting.strip);
    set(port + kEnable, 1.0f);
    set(port + kType, static_cast<float>(setting.type));
    set(port + kGain, static_cast<float>(setting.gain_db));
    set(port + kFrequency, static_cast<float>(setting.freq_hz));
    set(port + kQ, static_cast<float>(setting.q));
}

Samples Rig::play(const Samples& samples) {
    const auto width = static_cast<size_t>(channels());
    std::vector<float> audio(samples.size() * width);
    for (size_t i = 0; i < audio.size(); ++i) audio[i] = static_cast<float>(samples[i / width]);
    process(audio.data(), audio.data(), samples.size());
    Samples out(samples.size());
    for (size_t i = 0; i < out.size(); ++i) out[i] = double{audio[i * width]};
    return out;
}

std::vector<Setting> sixteen_stages() {
    std::vector<Setting> settings = {section_setting(SectionType::HighPass48, 0.0, 20.0, 1.0),
                                     section_setting(SectionType::LowPass48, 0.0, 15000.0, 1.0)};
    int band = 0;
    for (const double freq_hz : {60.0, 250.0, 2000.0, 8000.0}) {
        for (const double gain_db : {6.0, -6.0}) {
            settings.push_back(band_setting(BandType::Bell, gain_db, freq_hz, 1.0, band++));
        }
    }
    return settings;
}

}  // namespace brindle
