// SPDX-License-Identifier: ISC
// Levels and delays over frequency, against the analogue models.
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "contract/brindle.h"
#include "docs/sound_report/prototype.h"
#include "docs/sound_report/rig.h"
#include "host/measurement.h"
#include "host/output_file.h"
#include "host/plot.h"

namespace brindle {
namespace {

constexpr double kCornersHz[] = {1000.0, 10000.0};
constexpr double kHighestHz = 16000.0;
constexpr double kLeastDb = -40.0;

/// A difference from a model, and where it was found.
struct Worst {
    double error_db = 0.0;
    double at_hz = 0.0;
    Setting setting{};

    void add(double difference_db, double freq_hz, const Setting& where) {
        if (std::abs(difference_db) <= std::abs(error_db)) return;
        *this = {difference_db, freq_hz, where};
    }
};

const TypeRow& type_row(const Setting& setting) {
    const auto type = static_cast<size_t>(setting.type);
    return setting.strip < kBandCount ? kBandTypes[type] : kSectionTypes[type];
}

/// The gains and Qs that a type heeds, at one frequency.
std::vector<Setting> variants(Setting setting, double freq_hz) {
    const TypeRow& row = type_row(setting);
    const std::vector<double> gains_db =
        row.heeds_gain ? std::vector{6.0, 12.0, -12.0} : std::vector{0.0};
    const std::vector<double> qs = row.heeds_q ? std::vector{0.5, 1.0, 4.0} : std::vector{1.0};
    std::vector<Setting> all;
    for (const double gain_db : gains_db) {
        for (const double q : qs) all.push_back({setting.strip, setting.type, gain_db, freq_hz, q});
    }
    return all;
}

std::vector<ResponsePoint> measured(Bundle& bundle, double rate_hz, const Setting& setting) {
    Rig rig(bundle, 1, rate_hz, {setting});
    return measure_response(rig);
}

/// Every eighth point: enough for a picture.
std::vector<ResponsePoint> thinned(const std::vector<ResponsePoint>& points) {
    std::vector<ResponsePoint> some;
    for (size_t i = 0; i < points.size(); i += 8) some.push_back(points[i]);
    return some;
}

std::string kilohertz(double freq_hz) {
    return freq_hz < 1000.0 ? text("%.0f Hz", freq_hz) : text("%.1f kHz", freq_hz / 1000.0);
}

std::string cell(const Worst& worst) {
    const TypeRow& row = type_row(worst.setting);
    std::string where = " at " + kilohertz(worst.at_hz);
    if (row.heeds_gain) where += text(", %+.0f dB", worst.setting.gain_db);
    if (row.heeds_q) where += text(", Q %g", worst.setting.q);
    return text("%+.2f", worst.error_db) + where;
}

Worst worst_error(Bundle& bundle, const Setting& type, double corner_hz, double rate_hz) {
    Worst worst;
    for (const Setting& setting : variants(type, corner_hz)) {
        const Prototype model = prototype(setting, rate_hz);
        for (const ResponsePoint& point : measured(bundle, rate_hz, setting)) {
            const double level_db = gain_db_at(model, point.freq_hz);
            if (point.freq_hz > kHighestHz || level_db < kLeastDb) continue;
            worst.add(point.gain_db - level_db, point.freq_hz, setting);
        }
    }
    return worst;
}

std::string error_table(Bundle& bundle, const std::vector<Setting>& types) {
    std::string result =
        R"(| type | 1 kHz, rate 44.1 kHz | 48 | 96 | 10 kHz, rate 44.1 kHz | 48 | 96 |
|---|---|---|---|---|---|---|
)";
    for (const Setting& type : types) {
        result += std::string("| ") + type_row(type).name;
        for (const double corner_hz : kCornersHz) {
            for (const double rate_hz : kRatesHz) {
                result += " | " + cell(worst_error(bundle, type, corner_hz, rate_hz));
            }
        }
        result += " |\n";
    }
    return result;
}

std::string butterworth_table(Bundle& bundle, const std::vector<Setting>& types) {
    std::string result =
        R"(| type | level at the set frequency [dB] | farthest from Butterworth [dB] |
|---|---|---|
)";
    for (Setting type : types) {
        type.freq_hz = 1000.0;
        Worst worst;
        double corner_db = 0.0;
        for (const ResponsePoint& point : measured(bundle, 48000.0, type)) {
            if (point.freq_hz <= 1000.0) corner_db = point.gain_db;
            const double model_db = butterworth_gain_db(type, point.freq_hz);
            if (model_db >= kLeastDb) worst.add(point.gain_db - model_db, point.freq_hz, type);
        }
        result += text("| %s | %.2f | %s |\n", type_row(type).name, corner_db, cell(worst).c_str());
    }
    return result;
}

/// The gain that a low shelf reaches for a constant input.
std::string shelf_rows(Bundle& bundle) {
    std::string rows;
    for (const double rate_hz : kRatesHz) {
        rows += text("| %g", rate_hz / 1000.0);
        for (const double freq_hz : {20.0, 30.0, 100.0, 5000.0, 10000.0, 15000.0, 20000.0}) {
            Rig rig(bundle, 1, rate_hz, {band_setting(BandType::LoShelf, 12.0, freq_hz, 1.0)});
            rig.settle();
            const double out = rig.play(Samples(static_cast<size_t>(rate_hz), 0.1)).back();
            rows += text(" | %.2f", 20.0 * std::log10(out / 0.1));
        }
        rows += " |\n";
    }
    return rows;
}

/// Level of a steady sine behind the plugin over that before it.
double tone_gain_db(Bundle& bundle, const Setting& setting, double freq_hz) {
    Rig rig(bundle, 1, 48000.0, {setting});
    rig.settle();
    const Samples in = sine(0.1, freq_hz, 48000.0, 48000);
    rig.play(in);
    return ratio_db(mean_square(rig.play(in)), mean_square(in));
}

void save_plot(const std::string& path, const Plot& plot) {
    OutputFile file(path, OutputFile::kReplace);
    plot_svg(file, plot);
    file.commit();
}

void plot_bell(Bundle& bundle, const std::string& path, double corner_hz) {
    constexpr double kRateHz = 48000.0;
    const Setting setting = band_setting(BandType::Bell, 12.0, corner_hz, 1.0);
    const Prototype model = prototype(setting, kRateHz);
    PlotCurve plugin = {"Brindle", PlotInk::Orange, {}, true};
    PlotCurve analogue = {"analogue", PlotInk::Blue, {}};
    PlotCurve bilinear = {"ordinary bilinear", PlotInk::Green, {}};
    for (const ResponsePoint& point : thinned(measured(bundle, kRateHz, setting))) {
        plugin.points.push_back({point.freq_hz, point.gain_db});
        analogue.points.push_back({point.freq_hz, gain_db_at(model, point.freq_hz)});
        bilinear.points.push_back(
            {point.freq_hz, bilinear_gain_db(model, point.freq_hz, corner_hz, kRateHz)});
    }
    PlotScale scale = gain_scale({plugin, analogue, bilinear});
    scale.low = -scale.step;
    scale.high = 3.0 * scale.step;
    save_plot(path, {text("A bell of +12 dB at %.0f kHz, Q 1", corner_hz / 1000.0),
                     "At a sample rate of 48 kHz",
                     {{scale, {}}}});
}

struct DelayCase {
    const char* name;
    const char* picture;
    Setting setting;
};

std::string delay_row(Bundle& bundle, const std::string& folder, const DelayCase& each) {
    constexpr double kRateHz = 48000.0;
    constexpr double kAudibleDb = -20.0;
    const Prototype model = prototype(each.setting, kRateHz);
    const std::vector<ResponsePoint> points = measured(bundle, kRateHz, each.setting);
    PlotCurve curve = {"", PlotInk::Orange, {}, true};
    ResponsePoint longest{};
    ResponsePoint corner{};
    double farthest_ms = 0.0;
    for (const ResponsePoint& point : points) {
        if (point.freq_hz <= each.setting.freq_hz * 1.0001) corner = point;
        if (point.gain_db < kAudibleDb) continue;
        if (std::abs(point.delay_ms) > std::abs(longest.delay_ms)) longest = point;
        const double difference_ms = point.delay_ms - delay_ms_at(model, point.freq_hz);
        if (std::abs(difference_ms) > std::abs(farthest_ms)) farthest_ms = difference_ms;
    }
    const std::vector<ResponsePoint> some = thinned(points);
    for (const ResponsePoint& point : some) curve.points.push_back({point.freq_hz, point.gain_db});
    save_plot(folder + each.picture,
              {each.name, "Measured at 48000 Hz", {{gain_scale({curve}), {}}, phase_panel(some)}});
    return text("| [%s](sound/%s) | %+.1f | %.3f | %.3f at %s | %+.4f |\n", each.name, each.picture,
                corner.phase_deg, corner.delay_ms, longest.delay_ms,
                kilohertz(longest.freq_hz).c_str(), farthest_ms);
}

}  // namespace

std::string report_magnitude(Bundle& bundle, const std::string& folder) {
    std::vector<Setting> bands;
    std::vector<Setting> sections;
    std::vector<Setting> passes;
    for (size_t type = 1; type < kTypeCount<BandType>; ++type) {
        bands.push_back(band_setting(static_cast<BandType>(type), 0.0, 0.0, 1.0));
    }
    for (size_t type = 1; type < kTypeCount<SectionType>; ++type) {
        const auto section = static_cast<SectionType>(type);
        sections.push_back(section_setting(section, 0.0, 0.0, 1.0));
        if (section < SectionType::HiShelf12) passes.push_back(sections.back());
    }
    plot_bell(bundle, folder + "bell-10k.svg", 10000.0);
    plot_bell(bundle, folder + "bell-15k.svg", 15000.0);
    const Setting bell10 = band_setting(BandType::Bell, 12.0, 10000.0, 1.0);
    const Setting bell15 = band_setting(BandType::Bell, 12.0, 15000.0, 1.0);
    return R"(## Level over frequency

Each type is compared with the analogue filter that it is modelled on, up to 16 kHz and
where that filter lets more than -40 dB pass; gains of +6, +12 and -12 dB, Q 0.5, 1 and 4,
where a type heeds them. A cell has the largest difference in dB (the plugin less the
model), where it lies, and at which gain and Q.

### Bands

)" + error_table(bundle, bands) +
           "\n### Sections\n\n" + error_table(bundle, sections) +
           R"(
Bell, LP 6, LP 12, HP 12 and Search are matched designs: they meet the model at the
bottom or the top and at their centre, and come close to it between; Search is a
simplified form, less close. Near half the sample rate they are not exact: see the plots.
Shelves, HP 6 and notch are bilinear transforms, squeezed against half the sample rate
as in most equalisers; with the filter at 10 kHz that shows, least at 96 kHz.

Shelves are besides kept away from the ends of the range, which costs gain there: what a
Lo Shelf of +12 dB reaches at 0 Hz, in dB, by the frequency that it is set to:

| rate [kHz] | 20 Hz | 30 Hz | 100 Hz | 5 kHz | 10 kHz | 15 kHz | 20 kHz |
|---|---|---|---|---|---|---|---|
)" + shelf_rows(bundle) +
           R"(
![Bell at 10 kHz](sound/bell-10k.svg)

![Bell at 15 kHz](sound/bell-15k.svg)

### Steep passes against Butterworth filters

A steep pass is a chain of equal stages whose frequency is shifted, so that its corner
lies near the set one. It is softer there than a Butterworth filter, which the editor
draws (at 1 kHz, 48 kHz; down to -40 dB):

)" + butterworth_table(bundle, passes) +
           R"(
### How to check it

A sine and `sox`; the levels to be found (`RMS lev dB`, which counts from a full scale
square) are those after the arrow:

    sox -n -r 48000 -b 32 -e floating-point tone.wav synth 6 sine 10000 gain -20
    brindle render tone.wav out.wav --set b5_freq=10000 --set b5_gain=12 --set b5_q=1
    sox out.wav -n trim 2 3 stats)" +
           text("     -> %.2f\n\n", -23.0103 + tone_gain_db(bundle, bell10, 10000.0)) +
           R"(With the bell and the tone at other places:

| bell +12 dB, Q 1, at | tone at 5 kHz | 10 kHz | 15 kHz | 20 kHz |
|---|---|---|---|---|
)" +
           [&] {
               std::string rows;
               for (const Setting& bell : {bell10, bell15}) {
                   rows += text("| %.0f kHz", bell.freq_hz / 1000.0);
                   for (const double freq_hz : {5000.0, 10000.0, 15000.0, 20000.0}) {
                       rows += text(" | %.2f", -23.0103 + tone_gain_db(bundle, bell, freq_hz));
                   }
                   rows += " |\n";
               }
               return rows;
           }() +
           R"(
Ardour's plugin analysis (in the window of *Edit with generic controls*) and a sweep of REW plot
such curves of the running plugin; compare them with `brindle response curve.txt`, which REW
imports, or `curve.svg`. Ardour shows the bell at 10 kHz with some 4 dB and 39 degrees at 5 kHz,
7 dB and -20 degrees at 15 kHz.

)";
}

std::string report_delay(Bundle& bundle, const std::string& folder) {
    const DelayCase cases[] = {{"Bell +12 dB at 1 kHz, Q 1", "delay-bell.svg",
                                band_setting(BandType::Bell, 12.0, 1000.0, 1.0)},
                               {"Bell -12 dB at 1 kHz, Q 1", "delay-bell-cut.svg",
                                band_setting(BandType::Bell, -12.0, 1000.0, 1.0)},
                               {"Bell +12 dB at 1 kHz, Q 4", "delay-bell-narrow.svg",
                                band_setting(BandType::Bell, 12.0, 1000.0, 4.0)},
                               {"HP 48dB/oct at 80 Hz", "delay-high-pass.svg",
                                section_setting(SectionType::HighPass48, 0.0, 80.0, 1.0)},
                               {"LP 48dB/oct at 10 kHz", "delay-low-pass.svg",
                                section_setting(SectionType::LowPass48, 0.0, 10000.0, 1.0)}};
    std::string result =
        R"(## Phase and group delay

The plugin has no latency; its filters turn the phase as analogue ones do. At 48 kHz, where
the level is above -20 dB:

| filter (plot) | phase at its frequency [degrees] | group delay there [ms] | greatest [ms] | farthest from the model [ms] |
|---|---|---|---|---|
)";
    for (const DelayCase& each : cases) result += delay_row(bundle, folder, each);
    return result +
           R"(
![High-pass of 48 dB/oct](sound/delay-high-pass.svg)

Steep filters at low frequencies delay what is near their corner by some milliseconds, as all
filters of that slope do that have no linear phase. The matched low-passes are up to a sample
a stage ahead of their models, whose levels they match, not their phase.

To check it: `brindle response curve.txt --set ...` writes hertz, decibels and degrees, to be
compared with a sweep of REW through a host, with REW's timing reference on.

)";
}

}  // namespace brindle
