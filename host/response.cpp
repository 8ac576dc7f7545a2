// SPDX-License-Identifier: ISC
#include "host/response.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <numbers>

#include "host/interrupt.h"
#include "host/output_file.h"
#include "host/progress.h"
#include "host/user_error.h"

namespace brindle {
namespace {

constexpr double kLowestHz = 20.0;
constexpr double kHighestHz = 20000.0;
constexpr double kPointsPerOctave = 192.0;
/// The excitation's first sample: so far above full scale that the plugin's dither (1e-6) does not
/// show, since the engine is linear.
constexpr float kStart = 65536.0f;
/// Silence is reported as this.
constexpr double kFloorDb = -300.0;

/// Ratio of one sample of the excitation to the one before.
double decay(double rate_hz) {
    return std::exp(-2.0 * std::numbers::pi * kLowestHz / rate_hz);
}

/// What comes out for a decaying exponential, until a chunk holds no more than 1e-16 of its energy.
/// An impulse would do but for the engine's rounding of each stage's output to single precision:
/// the rounding of one great sample makes a narrow filter at 20 Hz ring by a further 5 %. The
/// exponential holds as much more at low frequencies as such filters are slower.
std::vector<float> excite(Plugin& plugin) {
    constexpr size_t kChunk = 4096;
    constexpr double kLongestSeconds = 60.0;
    const auto channels = static_cast<size_t>(plugin.channels());
    const auto longest = static_cast<size_t>(kLongestSeconds * plugin.rate());
    const double ratio = decay(plugin.rate());
    std::vector<float> chunk(kChunk * channels);
    std::vector<float> result;
    double sample = kStart;
    double energy = 0.0;
    double chunk_energy = 0.0;
    do {
        throw_if_interrupted();
        for (size_t i = 0; i < kChunk; ++i, sample *= ratio) {
            for (size_t k = 0; k < channels; ++k) {
                chunk[i * channels + k] = static_cast<float>(sample);
            }
        }
        plugin.process(chunk.data(), chunk.data(), kChunk);
        chunk_energy = 0.0;
        for (size_t i = 0; i < kChunk; ++i) {
            const float answer = chunk[i * channels];
            result.push_back(answer);
            chunk_energy += double{answer} * double{answer};
        }
        energy += chunk_energy;
    } while (chunk_energy > 1e-16 * energy && result.size() < longest);
    return result;
}

std::vector<ResponsePoint> frequency_grid(double rate_hz) {
    std::vector<ResponsePoint> grid;
    const double top_hz = std::min(kHighestHz * 1.0001, 0.4999 * rate_hz);
    for (int i = 0;; ++i) {
        const double freq_hz = kLowestHz * std::exp2(i / kPointsPerOctave);
        if (freq_hz > top_hz) return grid;
        grid.push_back({freq_hz, kFloorDb});
    }
}

/// Frequencies that are evaluated side by side, so that their chains of sums overlap.
constexpr size_t kLanes = 8;

/// The gains at `count` points from `first` on: the z-transform of the plugin's answer at e^(jw),
/// by Horner's rule from the last sample to the first, over that of the excitation, kStart / (1 -
/// ratio e^(-jw)).
void evaluate(const std::vector<float>& samples, double rate_hz, ResponsePoint* first,
              size_t count) {
    std::array<double, kLanes> cosine{};
    std::array<double, kLanes> sine{};
    std::array<double, kLanes> re{};
    std::array<double, kLanes> im{};
    const double ratio = decay(rate_hz);
    for (size_t k = 0; k < count; ++k) {
        const double w = 2.0 * std::numbers::pi * first[k].freq_hz / rate_hz;
        cosine[k] = std::cos(w);
        sine[k] = -std::sin(w);
    }
    for (size_t i = samples.size(); i-- > 0;) {
        for (size_t k = 0; k < kLanes; ++k) {
            const double next = re[k] * cosine[k] - im[k] * sine[k] + double{samples[i]};
            im[k] = re[k] * sine[k] + im[k] * cosine[k];
            re[k] = next;
        }
    }
    for (size_t k = 0; k < count; ++k) {
        const double excitation =
            double{kStart} / std::hypot(1.0 - ratio * cosine[k], ratio * sine[k]);
        const double magnitude = std::hypot(re[k], im[k]) / excitation;
        if (magnitude > 0.0) first[k].gain_db = std::max(kFloorDb, 20.0 * std::log10(magnitude));
    }
}

std::string table(const std::vector<ResponsePoint>& points) {
    std::string text = "frequency_hz,gain_db\n";
    for (const ResponsePoint& point : points) {
        std::array<char, 64> line{};
        std::snprintf(line.data(), line.size(), "%.4f,%.4f\n", point.freq_hz, point.gain_db);
        text += line.data();
    }
    return text;
}

PlotText plot_text(const Bundle& bundle, const ResponseRequest& request) {
    PlotText text = {"Brindle Console EQ",
                     "Measured at " + std::to_string(request.rate_hz) + " Hz"};
    const Settings& settings = request.settings;
    if (!settings.preset.empty()) text.title += " \u2013 " + bundle.preset_label(settings.preset);
    if (!settings.state.empty()) text.note += ", " + settings.state;
    for (const std::string& assignment : settings.assignments) text.note += ", " + assignment;
    return text;
}

using Writer = void (*)(OutputFile&, const std::vector<ResponsePoint>&, const PlotText&);

void write_table(OutputFile& output, const std::vector<ResponsePoint>& points, const PlotText&) {
    const std::string text = table(points);
    output.write(text.data(), text.size());
}

Writer writer_for(const std::string& path) {
    constexpr std::pair<const char*, Writer> kWriters[] = {
        {".csv", write_table}, {".png", plot_png}, {".svg", plot_svg}};
    const std::string extension = std::filesystem::path(path).extension();
    for (const auto& [name, writer] : kWriters) {
        if (strcasecmp(name, extension.c_str()) == 0) return writer;
    }
    throw UserError("cannot write " + path + ": its name has to end in .csv, .png or .svg.");
}

}  // namespace

std::vector<ResponsePoint> measure_response(Plugin& plugin) {
    plugin.settle();
    const std::vector<float> samples = excite(plugin);
    std::vector<ResponsePoint> points = frequency_grid(plugin.rate());
    Progress progress("Measuring", static_cast<int64_t>(points.size()));
    for (size_t i = 0; i < points.size(); i += kLanes) {
        throw_if_interrupted();
        evaluate(samples, plugin.rate(), &points[i], std::min(kLanes, points.size() - i));
        progress.advance_to(static_cast<int64_t>(i));
    }
    return points;
}

void response(Bundle& bundle, const ResponseRequest& request) {
    const ControlValues values = request.settings.resolve(bundle);
    const Writer write = writer_for(request.output);
    OutputFile output(request.output);
    Plugin plugin(bundle, 1, request.rate_hz, 1024);
    plugin.set(values);
    const std::vector<ResponsePoint> points = measure_response(plugin);
    write(output, points, plot_text(bundle, request));
    output.commit();
    std::printf("Wrote %s.\n", request.output.c_str());
}

}  // namespace brindle
