// SPDX-License-Identifier: ISC
// What the plugin adds to the sound: dither, and the rounding between stages.
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "docs/sound_report/rig.h"

namespace brindle {
namespace {

/// AES17 measures at 997 Hz, which shares no factor with the sample rates.
constexpr double kToneHz = 997.0;
constexpr size_t kSeconds = 8;
double audible(double freq_hz) {
    return freq_hz >= 20.0 && freq_hz <= 20000.0 ? 1.0 : 0.0;
}

size_t frames(double rate_hz) {
    return kSeconds * static_cast<size_t>(rate_hz);
}

Samples settled(Rig& rig, const Samples& in) {
    rig.settle();
    rig.play(in);
    return rig.play(in);
}

std::string floor_rows(Bundle& bundle) {
    const std::pair<const char*, std::vector<Setting>> cases[] = {
        {"everything off", {}}, {"all sixteen stages at work", sixteen_stages()}};
    std::string rows;
    for (const auto& [name, settings] : cases) {
        for (const double rate_hz : kRatesHz) {
            Rig rig(bundle, 1, rate_hz, settings);
            const Samples out = settled(rig, Samples(frames(rate_hz)));
            rows += text("| %s | %g | %.1f | %.1f |\n", name, rate_hz / 1000.0,
                         dbfs(weighted_power(out, rate_hz, audible)),
                         dbfs(weighted_power(out, rate_hz, a_weighting)));
        }
    }
    return rows;
}

/// Power of all but the tone at what comes out for a tone, 20 Hz to 20 kHz, and the whole's.
struct Residual {
    double rest;
    double weighted;  ///< A-weighted
    double whole;
};

Residual residual(const Samples& out, double rate_hz) {
    const Samples rest = without_sine(out, kToneHz, rate_hz);
    return {weighted_power(rest, rate_hz, audible), weighted_power(rest, rate_hz, a_weighting),
            mean_square(out)};
}

Residual played(Bundle& bundle, const std::vector<Setting>& settings, double rate_hz,
                double level_dbfs) {
    Rig rig(bundle, 1, rate_hz, settings);
    const double amplitude = std::pow(10.0, level_dbfs / 20.0);
    return residual(settled(rig, sine(amplitude, kToneHz, rate_hz, frames(rate_hz))), rate_hz);
}

/// Power of the rounding's noise for a tone at this level. Rounding scales with the signal, dither
/// does not: 96 dB further up the dither is gone.
double rounding_power(Bundle& bundle, double rate_hz, double level_dbfs) {
    constexpr double kRaised = 65536.0;
    const double raised_dbfs = level_dbfs + 20.0 * std::log10(kRaised);
    return played(bundle, sixteen_stages(), rate_hz, raised_dbfs).rest / (kRaised * kRaised);
}

std::string distortion_rows(Bundle& bundle) {
    std::string rows;
    for (const double level_dbfs : {-1.0, -20.0, -60.0}) {
        for (const double rate_hz : kRatesHz) {
            const Residual found = played(bundle, sixteen_stages(), rate_hz, level_dbfs);
            rows += text("| %g | %g | %.1f | %.1f | %.1f | %.1f |\n", level_dbfs, rate_hz / 1000.0,
                         ratio_db(found.rest, found.whole), dbfs(found.rest), dbfs(found.weighted),
                         dbfs(rounding_power(bundle, rate_hz, level_dbfs)));
        }
    }
    return rows;
}

std::string level_rows(Bundle& bundle) {
    constexpr double kRateHz = 48000.0;
    std::string rows;
    for (const double level_dbfs : {0.0, -20.0, -40.0, -60.0, -80.0, -100.0}) {
        const Residual found = played(bundle, sixteen_stages(), kRateHz, level_dbfs);
        rows += text("| %g | %.1f | %.1f | %.1f |\n", level_dbfs, dbfs(found.rest),
                     dbfs(found.weighted), dbfs(rounding_power(bundle, kRateHz, level_dbfs)));
    }
    return rows;
}

/// The noise of one filter behind a tone of -1 dBFS.
std::string filter_rows(Bundle& bundle) {
    constexpr double kLevelDbfs = -1.0;
    std::vector<std::pair<std::string, Setting>> cases;
    for (const double freq_hz : {30.0, 100.0, 300.0, 3000.0}) {
        cases.emplace_back(text("bell, +6 dB at %.0f Hz, Q 1", freq_hz),
                           band_setting(BandType::Bell, 6.0, freq_hz, 1.0));
    }
    for (const double freq_hz : {20.0, 80.0}) {
        cases.emplace_back(text("HP 48dB/oct at %.0f Hz", freq_hz),
                           section_setting(SectionType::HighPass48, 0.0, freq_hz, 1.0));
    }
    std::string rows;
    for (const auto& [name, setting] : cases) {
        rows += "| " + name;
        for (const double rate_hz : kRatesHz) {
            const Residual found = played(bundle, {setting}, rate_hz, kLevelDbfs);
            rows += text(" | %.1f | %.1f", dbfs(found.rest), dbfs(found.weighted));
        }
        rows += " |\n";
    }
    return rows;
}

/// A tone in single precision has this much rounding of its own.
double tone_rounding_dbfs() {
    Samples in = sine(std::pow(10.0, -1.0 / 20.0), kToneHz, 48000.0, frames(48000.0));
    for (double& sample : in) sample = double{static_cast<float>(sample)};
    return dbfs(residual(in, 48000.0).rest);
}

}  // namespace

std::string report_noise(Bundle& bundle) {
    return R"(## Noise and distortion

The engine adds a constant dither of at most 1e-6 to its input, which keeps the filters
off denormal numbers, and rounds to 32-bit floating point behind each of its sixteen
stages. Nothing else is added: apart from rounding it is linear and never clips. All
levels are from 20 Hz to 20 kHz. "All sixteen stages" are bells of +6 and -6 dB in pairs
at 60, 250, 2000 and 8000 Hz, a high-pass of 48 dB/oct at 20 Hz and a low-pass at 15 kHz,
so that 1 kHz passes at 0 dB.

### Noise floor, silence at the input

| | rate [kHz] | unweighted [dBFS] | A-weighted [dBFS] |
|---|---|---|---|
)" + floor_rows(bundle) +
           R"(
Digital silence comes out as this dither, also with everything off: the output is never
exactly silent, nor bit by bit its input. In stereo both channels get the same dither, so
it stands in the middle. With the stages at work the low-pass takes some of it away.

### THD+N in the manner of AES17, 997 Hz

The sine is taken out and what is left is measured, all sixteen stages at work. The last
column is the noise of rounding alone, found with the sine raised by 2^16, where the
dither no longer counts.

| sine [dBFS] | rate [kHz] | THD+N [dB of the sine] | THD+N [dBFS] | A-weighted [dBFS] | rounding alone [dBFS] |
|---|---|---|---|---|---|
)" + distortion_rows(bundle) +
           text("\nThe test tone in single precision has %.1f dBFS of rounding of its own.\n",
                tone_rounding_dbfs()) +
           R"(
### Noise against level, 997 Hz, 48 kHz

| sine [dBFS] | noise [dBFS] | A-weighted [dBFS] | rounding alone [dBFS] |
|---|---|---|---|
)" + level_rows(bundle) +
           R"(
This is not flattering, and lies in the design. A stage rounds its output to single
precision before it goes back into its own recursion. The lower a filter's frequency
against the sample rate, the more its recursion amplifies that rounding, near the
filter's own frequency: a faint rumble that comes and goes with the signal. The ear
hears little of it (A-weighted), and filters above some 300 Hz have hardly any, but very
low filters at high sample rates stand out: the rounding of a 16-bit file is at -98 dBFS.
One filter alone, sine of -1 dBFS, noise in dBFS:

| filter | 44.1 kHz | A-weighted | 48 kHz | A-weighted | 96 kHz | A-weighted |
|---|---|---|---|---|---|---|
)" + filter_rows(bundle) +
           R"(
### How to check it

    sox -n -r 48000 -b 32 -e floating-point tone.wav synth 12 sine 997 gain -1
    brindle render tone.wav out.wav --set b1_type=Bell --set b1_freq=30 --set b1_gain=6 --set b1_q=1
    sox out.wav -n sinc -t 2 20 sinc -20000 bandreject 997 2q trim 3 8 gain 60 stats

`RMS lev dB` counts from a full scale square and behind 60 dB of gain, so it reads 57.0 dB
more than the first row of the last table at 48 kHz, give or take a decibel (three for a high-pass at
20 Hz, whose noise lies on the edge of the band). Other tones and filters likewise; `synth 12 sine 997 vol 0` in the first line makes silence, and without
`bandreject` the last measures the noise floor.

)";
}

}  // namespace brindle
