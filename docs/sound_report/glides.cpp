// SPDX-License-Identifier: ISC
// What is heard while controls move.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <numbers>
#include <string>
#include <vector>

#include "contract/brindle.h"
#include "docs/sound_report/rig.h"

namespace brindle {
namespace {

constexpr double kTurn = 2.0 * std::numbers::pi;
constexpr double kAboveHz = 4000.0;
constexpr size_t kBlock = 64;

/// A control of band 1 and where it glides; `value_of` finds where it is from the gain that a tone
/// has.
struct Glide {
    const char* name;
    Setting before;
    uint32_t port;
    double target;
    double start;
    double tone_hz;
    std::function<double(double gain)> value_of;
};

double squared(double value) {
    return value * value;
}

/// Q of a bell of +12 dB at 1 kHz by its gain at a frequency, from the model.
double bell_q(double gain, double freq_hz) {
    const double boost = std::pow(10.0, 12.0 / 20.0);
    const double x2 = squared(freq_hz / 1000.0);
    const double apart = squared(1.0 - x2);
    const double m = gain * gain;
    return std::sqrt(x2 * (boost - m / boost) / (apart * (m - 1.0)));
}

std::vector<Glide> glides() {
    const uint32_t port = band_port(0);
    return {
        {"gain, 0 to +12 dB (in dB)", band_setting(BandType::Bell, 0.0, 1000.0, 1.0), port + kGain,
         12.0, 0.0, 1000.0, [](double gain) { return 20.0 * std::log10(gain); }},
        {"frequency, 500 to 2000 Hz (in Hz)", band_setting(BandType::LowPass12, 0.0, 500.0, 1.0),
         port + kFrequency, 2000.0, 500.0, 1000.0,
         [](double gain) { return 1000.0 / std::pow(1.0 / squared(gain) - 1.0, 0.25); }},
        {"Q, 0.5 to 4", band_setting(BandType::Bell, 12.0, 1000.0, 0.5), port + kQ, 4.0, 0.5,
         1500.0, [](double gain) { return bell_q(gain, 1500.0); }},
        {"trim, 0 to +12 dB (as factor)", band_setting(BandType::Flat, 0.0, 1000.0, 1.0), kTrimPort,
         12.0, 1.0, 1000.0, [](double gain) { return gain; }},
        {"switching off a bell of +12 dB", band_setting(BandType::Bell, 12.0, 1000.0, 1.0),
         port + kEnable, 0.0, std::pow(10.0, 12.0 / 20.0), 1000.0,
         [](double gain) { return gain; }}};
}

/// A cosine on the left and a sine on the right: their sum of squares is the gain at each moment.
std::vector<double> gains_while(Rig& rig, double tone_hz, size_t from, size_t count) {
    std::vector<float> audio(2 * count);
    for (size_t i = 0; i < count; ++i) {
        const double phase = kTurn * tone_hz / rig.rate() * static_cast<double>(from + i);
        audio[2 * i] = static_cast<float>(std::cos(phase));
        audio[2 * i + 1] = static_cast<float>(std::sin(phase));
    }
    rig.process(audio.data(), audio.data(), count);
    std::vector<double> gains(count);
    for (size_t i = 0; i < count; ++i) {
        gains[i] = std::hypot(double{audio[2 * i]}, double{audio[2 * i + 1]});
    }
    return gains;
}

std::string glide_row(Bundle& bundle, const Glide& glide) {
    std::string row = std::string("| ") + glide.name;
    for (const double rate_hz : kRatesHz) {
        Rig rig(bundle, 2, rate_hz, {glide.before});
        rig.settle();
        const auto second = static_cast<size_t>(rate_hz) / 128 * 128;
        gains_while(rig, glide.tone_hz, 0, second);
        rig.set(glide.port, static_cast<float>(glide.target));
        const std::vector<double> gains = gains_while(rig, glide.tone_hz, second, 2 * second);
        const double end = glide.value_of(gains.back());
        for (const double part : {0.63212, 0.99}) {
            size_t at = 0;
            while ((glide.value_of(gains[at]) - glide.start) / (end - glide.start) < part) ++at;
            row += text(" | %.0f", 1000.0 * static_cast<double>(at) / rate_hz);
        }
    }
    return row + " |\n";
}

/// A control that a host moves like a slow wave, at each block.
struct Wave {
    const char* name;
    uint32_t control;
    std::function<double(double wave)> value;  ///< of -1 to 1
};

std::string zipper_cell(Bundle& bundle, double rate_hz, size_t block, const Wave& wave,
                        double wave_hz) {
    constexpr double kToneHz = 700.0;
    constexpr size_t kFrames = 8 * 65536;
    Rig rig(bundle, 1, rate_hz, {band_setting(BandType::Bell, 12.0, 1000.0, 1.0)});
    const auto turn = [&](size_t frame) {
        const double phase = kTurn * wave_hz * static_cast<double>(frame) / rate_hz;
        rig.set(band_port(0) + wave.control, static_cast<float>(wave.value(std::sin(phase))));
    };
    turn(0);
    rig.settle();
    const Samples in = sine(0.1, kToneHz, rate_hz, kFrames);
    Samples out;
    for (size_t at = 0; at < kFrames; at += block) {
        turn(at);
        const auto from = in.begin() + static_cast<std::ptrdiff_t>(at);
        const Samples part = rig.play(Samples(from, from + static_cast<std::ptrdiff_t>(block)));
        out.insert(out.end(), part.begin(), part.end());
    }
    out.erase(out.begin(), out.begin() + 65536);
    const double power = weighted_power(out, rate_hz, [](double freq_hz) {
        return freq_hz >= kAboveHz && freq_hz <= 20000.0 ? 1.0 : 0.0;
    });
    return text(" | %.0f", ratio_db(power, mean_square(out)));
}

std::string zipper_rows(Bundle& bundle) {
    const Wave waves[] = {{"none", kGain, [](double) { return 12.0; }},
                          {"gain, ±12 dB", kGain, [](double wave) { return 12.0 * wave; }},
                          {"frequency, 500 Hz to 2 kHz", kFrequency,
                           [](double wave) { return 1000.0 * std::exp2(wave); }},
                          {"Q, 0.5 to 4", kQ,
                           [](double wave) { return std::sqrt(2.0) * std::pow(8.0, wave / 2.0); }}};
    std::string rows;
    for (const Wave& wave : waves) {
        for (const double wave_hz : {1.0, 10.0}) {
            rows += text("| %s | %g", wave.name, wave_hz);
            for (const double rate_hz : kRatesHz) {
                rows += zipper_cell(bundle, rate_hz, kBlock, wave, wave_hz);
            }
            rows += zipper_cell(bundle, 48000.0, 1024, wave, wave_hz) + " |\n";
        }
    }
    return rows;
}

/// A change from one setting to another, in the middle of a tone.
struct Change {
    const char* name;
    Setting before;
    Setting after;
    bool switches_off = false;
};

constexpr size_t kClickFrames = 32768;

/// The peak above 4 kHz of a tone that starts anywhere, over the tone's amplitude [dB].
template <typename Play>
double worst_click_db(double rate_hz, const Play& play) {
    constexpr double kToneHz = 700.0;
    constexpr int kPhases = 8;
    double worst = 0.0;
    for (int i = 0; i < kPhases; ++i) {
        const Samples in = sine(1.0, kToneHz, rate_hz, 4 * kClickFrames, kTurn * i / kPhases);
        worst = std::max(worst, peak_above(play(in), rate_hz, kAboveHz));
    }
    return 20.0 * std::log10(worst);
}

Samples part(const Samples& samples, size_t from, size_t count) {
    const auto start = samples.begin() + static_cast<std::ptrdiff_t>(from);
    return {start, start + static_cast<std::ptrdiff_t>(count)};
}

/// What is around the change, which is in the middle.
Samples changed(Bundle& bundle, double rate_hz, const Change& change, const Samples& in) {
    Rig rig(bundle, 1, rate_hz, {change.before});
    rig.settle();
    const size_t middle = 2 * kClickFrames;
    Samples out = rig.play(part(in, 0, middle));
    rig.apply(change.after);
    if (change.switches_off) rig.set(band_port(0) + kEnable, 0.0f);
    const Samples rest = rig.play(part(in, middle, in.size() - middle));
    out.insert(out.end(), rest.begin(), rest.end());
    return part(out, middle - kClickFrames / 2, kClickFrames);
}

/// The tone cut from one settled filter's output to the other's.
Samples cut(Bundle& bundle, double rate_hz, const Change& change, const Samples& in) {
    Rig before(bundle, 1, rate_hz, {change.before});
    before.settle();
    Rig after(bundle, 1, rate_hz, {change.after});
    if (change.switches_off) after.set(band_port(0) + kEnable, 0.0f);
    after.settle();
    Samples out = before.play(in);
    const Samples second = after.play(in);
    const auto middle = static_cast<std::ptrdiff_t>(2 * kClickFrames);
    std::copy(second.begin() + middle, second.end(), out.begin() + middle);
    return part(out, 2 * kClickFrames - kClickFrames / 2, kClickFrames);
}

std::string click_rows(Bundle& bundle) {
    const Setting bell = band_setting(BandType::Bell, 12.0, 1000.0, 1.0);
    const Change changes[] = {
        {"band off: bell, +12 dB at 1 kHz", bell, bell, true},
        {"gain +12 to -12 dB at once", bell, band_setting(BandType::Bell, -12.0, 1000.0, 1.0)},
        {"Bell to Lo Shelf, +12 dB", bell, band_setting(BandType::LoShelf, 12.0, 1000.0, 1.0)},
        {"Bell +12 dB to Notch", bell, band_setting(BandType::Notch, 12.0, 1000.0, 1.0)},
        {"LP 12 to HP 12 at 1 kHz", band_setting(BandType::LowPass12, 0.0, 1000.0, 1.0),
         band_setting(BandType::HighPass12, 0.0, 1000.0, 1.0)},
        {"section A, HP 12 to HP 48 at 500 Hz",
         section_setting(SectionType::HighPass12, 0.0, 500.0, 1.0),
         section_setting(SectionType::HighPass48, 0.0, 500.0, 1.0)}};
    std::string rows;
    for (const Change& change : changes) {
        rows += std::string("| ") + change.name;
        for (const double rate_hz : kRatesHz) {
            rows += text(" | %.0f", worst_click_db(rate_hz, [&](const Samples& in) {
                             return changed(bundle, rate_hz, change, in);
                         }));
        }
        rows += text(" | %.0f |\n", worst_click_db(48000.0, [&](const Samples& in) {
                         return cut(bundle, 48000.0, change, in);
                     }));
    }
    return rows;
}

/// Level in dB of a full scale square, while the trim glides from 0 to +12 dB.
double trim_after_60_ms(Bundle& bundle) {
    constexpr double kRateHz = 48000.0;
    Rig rig(bundle, 1, kRateHz);
    rig.set(kTrimPort, 12.0f);
    const Samples out = rig.play(sine(0.1, 1000.0, kRateHz, 4800));
    return ratio_db(mean_square(part(out, 2880, 480)), 1.0);
}

}  // namespace

std::string report_glides(Bundle& bundle) {
    std::string result =
        R"(## Moving controls

Controls are read and filters designed anew every 64 samples (128 above 60 kHz). Gain,
frequency, Q and trim glide from there to what was set, bands and sections fade; a type
changes at once.

### Time of a step

Milliseconds until 63 % and 99 % of the way are gone:

| step | 44.1 kHz: 63 % | 99 % | 48 kHz: 63 % | 99 % | 96 kHz: 63 % | 99 % |
|---|---|---|---|---|---|---|
)";
    for (const Glide& glide : glides()) result += glide_row(bundle, glide);
    return result +
           R"(
Trim and fades are slower because gain, frequency and Q glide twice, in the loop and in the
design. Automation that is faster than this is rounded off.

### Zipper noise

A sine of 700 Hz through a bell at 1 kHz, +12 dB, Q 1, while a host turns one control
like a wave, a value a block. What is above 4 kHz, in dB of all that comes out:

| control | waves a second | blocks of 64: 44.1 kHz | 48 | 96 | blocks of 1024: 48 |
|---|---|---|---|---|---|
)" + zipper_rows(bundle) +
           R"(
The steps of 64 samples in which filters are designed remain as zipper noise; at rest it is
the dither that is measured. A host's own steps, even of 1024 samples, add at most 2 dB.

### Clicks

A sine of 700 Hz while something is switched: peak of what is above 4 kHz, in dB of the
sine's peak, the worst of eight phases. For comparison the last column cuts from one
filter's settled output to the other's, as an equaliser without any fade would.

| change | 44.1 kHz | 48 | 96 | cut, 48 |
|---|---|---|---|---|
)" + click_rows(bundle) +
           R"(
Fades and glides go in steps of 64 samples, which is what is left of their clicks. A change
of type is not faded: the filter goes on from the state of the other type, which softens
most changes, but not that from low-pass to high-pass. Automate band switches and gains
instead of types.

### How to check it

`--no-settle` starts with a trim of 0 dB, whatever is set; 60 to 70 ms later:

    sox -n -r 48000 -b 32 -e floating-point tone.wav synth 2 sine 1000 gain -20
    brindle render tone.wav out.wav --no-settle --set trim=12
)" +
           text("    sox out.wav -n trim 0.06 0.01 stats     -> %.2f (RMS lev dB)\n\n",
                trim_after_60_ms(bundle)) +
           R"(For zipper noise and clicks automate the control in a host, over a sine of 700 Hz. ffmpeg can
do so, here with the gain of band 5, which stands at 1 kHz, Q 1, ten waves a second:

    sox -n -r 48000 -b 32 -e floating-point tone.wav synth 4 sine 700 gain -20
    moves="asetnsamples=n=64,asendcmd=c='0-4 [expr] lv2 b5_gain 12*sin(2*PI*10*T)'"
    plugin='lv2=p=urn\\:brindle-audio\\:plugins/lv2/Brindle/mono'
    ffmpeg -i tone.wav -af "$moves,$plugin" -c:a pcm_f32le out.wav
    sox out.wav -n trim 1 2 stats                -> -21.1 (RMS lev dB)
    sox out.wav -n sinc 4000 trim 1 2 stats      -> -82.8

The second is 62 dB below the first, within 2 dB of the table. With
`c='2 lv2 b5_enable 0'` and `mono:c=b5_gain=12` the bell is switched off:
`sox out.wav -n sinc 4000 trim 1.9 0.5 stats` then reads -56 (`Pk lev dB`), below a sine of -20.
With `c='2.0043 lv2 b5_type 4'` and `mono:c=b5_type=3`, low-pass to high-pass, it reads -26;
at moments that meet the tone in other phases, less.

)";
}

}  // namespace brindle
