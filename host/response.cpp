// SPDX-License-Identifier: ISC
#include <strings.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>
#include <vector>

#include "contract/brindle.h"
#include "host/bundle.h"
#include "host/command.h"
#include "host/console.h"
#include "host/drawn_curve.h"
#include "host/measurement.h"
#include "host/output_file.h"
#include "host/plot.h"
#include "host/user_error.h"

namespace brindle {
namespace {

struct ResponseRequest {
    std::string output;
    Settings settings;
    int rate_hz = 48000;
    bool json = false;   ///< on a stream
    bool phase = false;  ///< a plot gets a panel with phase and group delay
    bool drawn = false;  ///< table and plot get the curve that the editor draws
};

/// What a writer may tell.
struct Result {
    std::vector<ResponsePoint> points;
    std::optional<DrawnCurve> drawn;
    bool phase;  ///< the plot shows it
    std::string title;
    std::string note;
};

void write_text(OutputFile& output, const std::string& text) {
    output.write(text.data(), text.size());
}

void write_table(OutputFile& output, const Result& result) {
    std::string text = "frequency_hz,gain_db,phase_deg,group_delay_ms";
    text += result.drawn ? ",drawn_db\n" : "\n";
    for (const ResponsePoint& point : result.points) {
        text += formatted("%.4f,%.4f,%.3f,%.5f", point.freq_hz, point.gain_db, point.phase_deg,
                          point.delay_ms);
        if (result.drawn) text += formatted(",%.4f", result.drawn->level_db(point.freq_hz));
        text += '\n';
    }
    write_text(output, text);
}

/// What programs that compare responses read: a line for each frequency, comments after "#".
void write_plain(OutputFile& output, const Result& result) {
    std::string text = "# " + result.title + '\n' + "# " + result.note + "\n# Hz dB degrees\n";
    for (const ResponsePoint& point : result.points) {
        text += formatted("%.4f %.4f %.3f\n", point.freq_hz, point.gain_db, point.phase_deg);
    }
    write_text(output, text);
}

void write_json(OutputFile& output, const Result& result) {
    nlohmann::ordered_json points;
    for (const ResponsePoint& point : result.points) {
        nlohmann::ordered_json row = {{"frequency_hz", point.freq_hz},
                                      {"gain_db", point.gain_db},
                                      {"phase_deg", point.phase_deg},
                                      {"group_delay_ms", point.delay_ms}};
        if (result.drawn) row["drawn_db"] = result.drawn->level_db(point.freq_hz);
        points.push_back(std::move(row));
    }
    write_text(output, points.dump(1) + '\n');
}

Plot plot_of(const Result& result) {
    PlotCurve measured = {result.drawn ? "measured" : "", PlotInk::Orange, {}, true};
    PlotCurve drawn = {"drawn by the editor", PlotInk::Blue, {}};
    for (const ResponsePoint& point : result.points) {
        measured.points.push_back({point.freq_hz, point.gain_db});
        if (result.drawn) {
            drawn.points.push_back({point.freq_hz, result.drawn->level_db(point.freq_hz)});
        }
    }
    std::vector<PlotCurve> curves = {std::move(measured)};
    if (result.drawn) curves.push_back(std::move(drawn));
    Plot plot = {result.title, result.note, {{gain_scale(std::move(curves)), {}}}};
    if (result.phase) plot.panels.push_back(phase_panel(result.points));
    return plot;
}

void write_png(OutputFile& output, const Result& result) {
    plot_png(output, plot_of(result));
}

void write_svg(OutputFile& output, const Result& result) {
    plot_svg(output, plot_of(result));
}

using Writer = void (*)(OutputFile&, const Result&);

Writer writer_for(const std::string& path, bool as_json) {
    if (OutputFile::is_stream(path)) return as_json ? write_json : write_table;
    constexpr std::pair<const char*, Writer> kWriters[] = {{".csv", write_table},
                                                           {".txt", write_plain},
                                                           {".json", write_json},
                                                           {".png", write_png},
                                                           {".svg", write_svg}};
    const std::string extension = std::filesystem::path(path).extension();
    for (const auto& [name, writer] : kWriters) {
        if (strcasecmp(name, extension.c_str()) == 0) return writer;
    }
    throw UserError("cannot write " + path +
                    ": its name has to end in .csv, .txt, .json, .png or .svg.");
}

std::string title_of(const Bundle& bundle, const Settings& settings) {
    const std::string name = kProductName;
    return settings.preset.empty() ? name
                                   : name + " \u2013 " + bundle.preset_label(settings.preset);
}

std::string note_of(const ResponseRequest& request) {
    std::string note = "Measured at " + std::to_string(request.rate_hz) + " Hz";
    if (!request.settings.state.empty()) note += ", " + request.settings.state;
    for (const std::string& assignment : request.settings.assignments) note += ", " + assignment;
    return note;
}

/// The largest difference within the graph's frame, in words. The trim, which the graph leaves out,
/// is taken off the measured level.
std::string largest_difference(const Result& result, double trim_db) {
    double largest_db = 0.0;
    double at_hz = 0.0;
    for (const ResponsePoint& point : result.points) {
        if (!result.drawn->shows(point.freq_hz)) continue;
        const double difference_db =
            result.drawn->level_db(point.freq_hz) - (point.gain_db - trim_db);
        if (std::abs(difference_db) < std::abs(largest_db)) continue;
        largest_db = difference_db;
        at_hz = point.freq_hz;
    }
    return formatted("drawn less measured: at most %+.2f dB, at %.0f Hz", largest_db, at_hz);
}

void response(const ProgramOptions& options, const ResponseRequest& request) {
    Bundle bundle(options.bundle);
    const ControlValues values = request.settings.resolve(bundle);
    const Writer write = writer_for(request.output, request.json);
    OutputFile output(request.output, options.existing());
    Plugin plugin(bundle, 1, request.rate_hz, 1024);
    plugin.set(values);
    Result result = {measure_response(plugin),
                     {},
                     request.phase,
                     title_of(bundle, request.settings),
                     note_of(request)};
    std::string summary;
    if (request.drawn) {
        result.drawn.emplace(plugin);
        summary = largest_difference(result, double{plugin.get(kTrimPort)});
        result.note += "; " + summary;
        summary = " (" + summary + ')';
    }
    write(output, result);
    output.commit();
    if (request.output == OutputFile::kStream) return;
    say("Wrote %s%s.\n", request.output.c_str(), summary.c_str());
}

}  // namespace

void add_response(CLI::App& program, const ProgramOptions& options) {
    CLI::App* command =
        program.add_subcommand("response", "Measure the response, as table or plot");
    const auto request = std::make_shared<ResponseRequest>();
    command
        ->add_option("OUT", request->output,
                     "File to write: .csv, .txt, .json, .png or .svg, or - for standard output")
        ->required();
    add_settings(*command, request->settings);
    command->add_flag("--json", request->json, "Write JSON instead of a table to a stream");
    command->add_flag("--phase", request->phase, "Plot phase and group delay too");
    command->add_flag("--drawn", request->drawn, "Add the curve that the editor draws");
    command->add_option("--rate", request->rate_hz, "Sample rate [Hz]")
        ->check(CLI::Range(8000, 768000))
        ->capture_default_str();
    command->callback([request, &options] { response(options, *request); });
}

}  // namespace brindle
