// SPDX-License-Identifier: ISC
// What the meters and the analyser show.
#include <lv2/atom/util.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "contract/brindle.h"
#include "contract/urids.h"
#include "docs/sound_report/rig.h"
#include "host/signal_source.h"

namespace brindle {
namespace {

constexpr uint32_t kBlock = 64;
constexpr double kToneDbfs = -20.0;

Samples scaled(Samples samples, double rms_db) {
    const double factor = std::sqrt(std::pow(10.0, rms_db / 10.0) / mean_square(samples));
    for (double& sample : samples) sample *= factor;
    return samples;
}

Samples white_noise(size_t count) {
    std::mt19937 random(1);
    std::normal_distribution<double> draw;
    Samples samples(count);
    for (double& sample : samples) sample = draw(random);
    return samples;
}

Samples pink_noise(size_t count) {
    PinkNoise source;
    std::vector<float> both(2 * count);
    source.read(both.data(), count);
    Samples samples(count);
    for (size_t i = 0; i < count; ++i) samples[i] = double{both[2 * i]};
    return samples;
}

/// The output meter in dB after each block.
Samples meter_readings(Rig& rig, const Samples& in) {
    Samples readings;
    for (size_t at = 0; at + kBlock <= in.size(); at += kBlock) {
        const auto from = in.begin() + static_cast<std::ptrdiff_t>(at);
        rig.play(Samples(from, from + kBlock));
        readings.push_back(10.0 * std::log10(double{rig.get(kMeterOutPort)}));
    }
    return readings;
}

std::string meter_row(Bundle& bundle, const char* name, double rate_hz, const Samples& signal) {
    Rig rig(bundle, 1, rate_hz, kBlock);
    const Samples in = scaled(signal, kToneDbfs);
    Samples readings = meter_readings(rig, in);
    readings.erase(readings.begin(),
                   readings.begin() + static_cast<std::ptrdiff_t>(readings.size() / 4));
    double sum = 0.0;
    for (const double reading : readings) sum += reading;
    const auto [least, greatest] = std::ranges::minmax(readings);
    return text("| %s | %g | %+.2f | %+.2f | %+.2f |\n", name, rate_hz / 1000.0,
                sum / static_cast<double>(readings.size()) - kToneDbfs, least - kToneDbfs,
                greatest - kToneDbfs);
}

std::string meter_rows(Bundle& bundle) {
    constexpr double kSeconds = 20.0;
    std::string rows;
    const auto tone = [&](const char* name, double rate_hz, double freq_hz) {
        const auto count = static_cast<size_t>(kSeconds * rate_hz);
        rows += meter_row(bundle, name, rate_hz, sine(1.0, freq_hz, rate_hz, count));
    };
    for (const double rate_hz : kRatesHz) tone("sine, 997 Hz", rate_hz, 997.0);
    tone("sine, 20 Hz", 48000.0, 20.0);
    tone("sine, 50 Hz", 48000.0, 50.0);
    const auto count = static_cast<size_t>(kSeconds * 48000.0);
    rows += meter_row(bundle, "white noise", 48000.0, white_noise(count));
    rows += meter_row(bundle, "pink noise", 48000.0, pink_noise(count));
    return rows;
}

std::string meter_times(Bundle& bundle) {
    constexpr double kRateHz = 48000.0;
    Rig rig(bundle, 1, kRateHz, kBlock);
    meter_readings(rig, Samples(48000));
    const Samples up = meter_readings(rig, sine(0.1, 997.0, kRateHz, 48000));
    const double end_db = up.back();
    const auto reached =
        std::ranges::find_if(up, [&](double reading) { return reading > end_db - 1.0; });
    const Samples down = meter_readings(rig, Samples(96000));
    const double block_ms = 1000.0 * kBlock / kRateHz;
    return text(
        R"(A meter is within 1 dB of a sine %.0f ms after its start, and falls by %.2f dB a second after
its end.
)",
        static_cast<double>(reached - up.begin()) * block_ms,
        (down[down.size() / 4] - down[down.size() * 3 / 4]));
}

/// A plugin whose analyser runs, and the newest row.
class AnalyserRig {
  public:
    AnalyserRig(Bundle& bundle, double rate_hz)
        : rig_(bundle, 1, rate_hz, kBlock),
          uris_(map_urids(bundle.urids().map_feature(), UridOrder::RequestsFirst)) {
        rig_.on_message([this](uint32_t, const LV2_Atom& atom) { receive(atom); });
        LV2_Atom_Object request{};
        request.atom = {sizeof request.body, uris_.atom_object};
        request.body.otype = uris_.enable_ui;
        rig_.send(kControlPort, request.atom);
    }

    /// Rows that end while the signal plays, each with the sample at which it was received.
    struct Row {
        size_t at;
        std::array<float, kPlotBins> levels_db;
    };
    std::vector<Row> play(const Samples& in) {
        rows_.clear();
        for (size_t at = 0; at + kBlock <= in.size(); at += kBlock) {
            position_ = at;
            const auto from = in.begin() + static_cast<std::ptrdiff_t>(at);
            rig_.play(Samples(from, from + kBlock));
        }
        return rows_;
    }

  private:
    void receive(const LV2_Atom& atom) {
        if (atom.type != uris_.atom_object) return;
        const LV2_Atom* id = nullptr;
        const LV2_Atom* row = nullptr;
        lv2_atom_object_get(reinterpret_cast<const LV2_Atom_Object*>(&atom), uris_.plot_id, &id,
                            uris_.plot_array, &row, 0);
        if (id == nullptr || row == nullptr) return;
        const int32_t number = reinterpret_cast<const LV2_Atom_Int*>(id)->body;
        if (number == newest_) return;
        newest_ = number;
        const auto* levels =
            reinterpret_cast<const float*>(reinterpret_cast<const LV2_Atom_Vector*>(row) + 1);
        Row received{position_, {}};
        std::copy_n(levels, kPlotBins, received.levels_db.begin());
        rows_.push_back(received);
    }

    Rig rig_;
    EqUris uris_;
    size_t position_ = 0;
    int32_t newest_ = -1;
    std::vector<Row> rows_;
};

double bin_hz(double bin) {
    return 20.0 * std::exp2(bin / 24.0);
}

Samples sum_of(Samples samples, const Samples& others) {
    for (size_t i = 0; i < samples.size(); ++i) samples[i] += others[i];
    return samples;
}

std::string resolution_rows(Bundle& bundle) {
    std::string rows;
    for (const double rate_hz : kRatesHz) {
        for (const size_t bin : {size_t{56}, size_t{135}, size_t{215}}) {
            const double freq_hz = bin_hz(static_cast<double>(bin));
            AnalyserRig rig(bundle, rate_hz);
            const auto levels =
                rig.play(sine(0.5, freq_hz, rate_hz, static_cast<size_t>(4.0 * rate_hz)))
                    .back()
                    .levels_db;
            rows += text("| %g | %.0f Hz", rate_hz / 1000.0, freq_hz);
            for (const size_t away : {size_t{1}, size_t{2}, size_t{4}, size_t{8}, size_t{24}}) {
                rows += text(" | %.1f", static_cast<double>(levels[bin + away] - levels[bin]));
            }
            rows += " |\n";
        }
    }
    return rows;
}

constexpr size_t kReferenceBin = 135;

/// How much lower the bin between two tones is that stand two bins apart.
double dip_db(Bundle& bundle) {
    constexpr double kRateHz = 48000.0;
    AnalyserRig rig(bundle, kRateHz);
    const auto rows = rig.play(sum_of(sine(0.3, bin_hz(kReferenceBin), kRateHz, 8 * 48000),
                                      sine(0.3, bin_hz(kReferenceBin + 2), kRateHz, 8 * 48000)));
    double between = 0.0;
    double beside = 0.0;
    for (size_t i = rows.size() / 2; i < rows.size(); ++i) {
        const auto power = [&](size_t bin) {
            return std::pow(10.0, static_cast<double>(rows[i].levels_db[bin]) / 10.0);
        };
        between += power(kReferenceBin + 1);
        beside += power(kReferenceBin);
    }
    return ratio_db(beside, between);
}

/// How far a tone is from where it should be in a row, beside a tone of 0.5 in bin 135.
double level_error_db(Bundle& bundle, double rate_hz, double bin, double below_db) {
    AnalyserRig rig(bundle, rate_hz);
    const auto count = static_cast<size_t>(4.0 * rate_hz);
    const Samples in =
        sum_of(sine(0.5, bin_hz(kReferenceBin), rate_hz, count),
               sine(0.5 * std::pow(10.0, below_db / 20.0), bin_hz(bin), rate_hz, count));
    const auto levels = rig.play(in).back().levels_db;
    const auto at = static_cast<size_t>(bin);
    const double level = static_cast<double>(std::max(levels[at], levels[at + 1]));
    return level - static_cast<double>(levels[kReferenceBin]) - below_db;
}

std::string accuracy_rows(Bundle& bundle) {
    std::string rows;
    for (const double below_db : {-1.0, -20.0, -40.0, -60.0}) {
        rows += text("| %g", below_db);
        for (const double rate_hz : kRatesHz) {
            double worst_db = 0.0;
            for (const double bin : {24.0, 80.0, 187.0, 220.0, 236.0}) {
                const double error_db = level_error_db(bundle, rate_hz, bin, below_db);
                if (std::abs(error_db) > std::abs(worst_db)) worst_db = error_db;
            }
            rows += text(" | %+.2f", worst_db);
        }
        rows += text(" | %+.2f |\n", level_error_db(bundle, 48000.0, 187.5, below_db));
    }
    return rows;
}

std::string time_rows(Bundle& bundle) {
    std::string rows;
    for (const double bin : {24.0, 80.0, 187.0, 220.0}) {
        constexpr double kRateHz = 48000.0;
        constexpr size_t kLong = 4 * 48000;
        AnalyserRig rig(bundle, kRateHz);
        const Samples reference = sine(0.5, bin_hz(kReferenceBin), kRateHz, kLong);
        const Samples both = sum_of(reference, sine(0.4, bin_hz(bin), kRateHz, kLong));
        const auto level = [&](const AnalyserRig::Row& row) {
            return static_cast<double>(row.levels_db[static_cast<size_t>(bin)] -
                                       row.levels_db[kReferenceBin]);
        };
        const auto first = [&](const std::vector<AnalyserRig::Row>& some, auto condition) {
            const auto found = std::ranges::find_if(
                some, [&](const AnalyserRig::Row& row) { return condition(level(row)); });
            return found == some.end() ? -1.0 : 1000.0 * static_cast<double>(found->at) / kRateHz;
        };
        rig.play(reference);
        const auto up = rig.play(both);
        const double end_db = level(up.back());
        const auto down = rig.play(reference);
        rows += text("| %.0f Hz | %.0f | %.0f | %.0f |\n", bin_hz(bin),
                     first(up, [&](double at_db) { return at_db > end_db - 3.0; }),
                     first(up, [&](double at_db) { return at_db > end_db - 1.0; }),
                     first(down, [&](double at_db) { return at_db < end_db - 20.0; }));
    }
    return rows;
}

std::string row_intervals(Bundle& bundle) {
    std::string intervals;
    for (const double rate_hz : kRatesHz) {
        AnalyserRig rig(bundle, rate_hz);
        const auto rows = rig.play(Samples(65536));
        const double samples =
            static_cast<double>(rows.back().at - rows[1].at) / static_cast<double>(rows.size() - 2);
        intervals += text("%s%.1f ms at %g kHz", intervals.empty() ? "" : ", ",
                          1000.0 * samples / rate_hz, rate_hz / 1000.0);
    }
    return intervals;
}

/// Levels of the bins of a decade, averaged over the rows of noise.
double mean_level_db(const std::vector<AnalyserRig::Row>& rows, size_t first_bin) {
    double power = 0.0;
    for (size_t i = rows.size() / 4; i < rows.size(); ++i) {
        for (size_t bin = first_bin; bin < first_bin + 48; ++bin) {
            power += std::pow(10.0, static_cast<double>(rows[i].levels_db[bin]) / 10.0);
        }
    }
    return 10.0 * std::log10(std::max(power, 1e-30));
}

std::string noise_slope(Bundle& bundle) {
    AnalyserRig rig(bundle, 48000.0);
    const auto rows = rig.play(scaled(white_noise(size_t{30} * 48000), kToneDbfs));
    return text(
        R"(Bins of equal ratio show pink noise level and
white noise rising by 3 dB an octave: over four octaves %+.1f dB were measured for 12.0.
)",
        mean_level_db(rows, 192) - mean_level_db(rows, 96));
}

}  // namespace

std::string report_meters(Bundle& bundle) {
    return R"(## Meters

A meter shows the mean power over some 40 ms, its peaks held and falling by 10 dB a second.
For signals of -20 dB RMS (from a full scale square), what it shows less the true RMS value,
on the average, at the least and at the most, in dB:

| signal | rate [kHz] | average | least | most |
|---|---|---|---|---|
)" + meter_rows(bundle) +
           R"(
A steady level reads 0.1 dB low, because the held value falls before it is shown. Low sines
and noise ripple within the 40 ms; pink noise reads high on the average, because its peaks
are held. )" +
           meter_times(bundle) +
           R"(
The numbers count from a full scale square, so that a sine at full scale is at -3 dB. `sox
in.wav -n stats` tells the true value as `RMS lev dB`; hosts show the meters' ports as numbers
beside the controls, as power: 0.01 for -20 dB, so 0.0098 for the first three signals.

)";
}

std::string report_analyser(Bundle& bundle) {
    return R"(## Analyser

241 bins, 24 an octave, from 20 Hz to 20.5 kHz, each a pair of second-order low-passes
behind an oscillator. A row of them is an average over
)" + row_intervals(bundle) +
           R"(.

### Resolution

A steady sine in the middle of a bin; the bins above it, in dB:

| rate [kHz] | sine | next bin (1/24 octave) | 2nd | 4th | 8th | 24th (an octave) |
|---|---|---|---|---|---|---|
)" + resolution_rows(bundle) +
           R"(
Two tones of one level a semitone (two bins) apart have a dip of )" +
           text("%.1f", dip_db(bundle)) +
           R"( dB between them. The skirts
fall slowly, by some 12 dB for each doubling of the distance, so that what is within a third
of an octave of a tone and 40 dB below it is hidden.

### Levels

Each row is scaled to its loudest bin, so levels are relative. A tone beside one of -6 dBFS at
987 Hz, so many dB below it, in the middle of its bin at 40 Hz, 202 Hz, 4.4, 11.5 and 18.3 kHz:
the largest error in dB; in the last column between two bins, at 4.5 kHz:

| tone [dB] | 44.1 kHz | 48 | 96 | between bins, 48 |
|---|---|---|---|---|
)" + accuracy_rows(bundle) +
           R"(
A tone between two bins loses 0.9 dB in both; 60 dB below another it stands on that one's
skirts. )" +
           noise_slope(bundle) +
           R"(
### Time

A tone of -8 dBFS beside that at 987 Hz is switched on and off, at 48 kHz; milliseconds until
the end of the first row that shows it:

| tone | within 3 dB | within 1 dB | fallen by 20 dB |
|---|---|---|---|
)" + time_rows(bundle) +
           R"(
Low bins are narrow and take their time, high ones are as quick as the rows come.

### How to check it

    sox -n -r 48000 -c 2 tones.wav synth 20 sine 987 sine 1046 remix - gain -6
    brindle open tones.wav

shows two lines in the strip above the keyboard, a semitone apart, and with `sine 1016`
(half a semitone) one.
)";
}

}  // namespace brindle
