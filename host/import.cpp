// SPDX-License-Identifier: ISC
#include <cminpack.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <exception>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "contract/ports.h"
#include "contract/types.h"
#include "host/bundle.h"
#include "host/command.h"
#include "host/console.h"
#include "host/filter_list.h"
#include "host/measurement.h"
#include "host/output_file.h"
#include "host/plugin.h"
#include "host/state_file.h"
#include "host/user_error.h"

namespace brindle {
namespace {

struct ImportRequest {
    std::string input;
    std::string save;
    bool partial = false;
};

constexpr double kRateHz = 48000.0;
/// Where the settings are compared with the list.
constexpr double kHighestComparedHz = 16000.0;
constexpr double kPointsPerOctave = 24.0;
/// Below, levels count as equal: nobody hears how deep a notch is.
constexpr double kFloorDb = -40.0;

/// A control that is improved, on a scale on which equal steps sound about as large.
struct Variable {
    uint32_t port;
    bool is_logarithmic;
    float minimum;
    float maximum;
};

/// A list's filters on the plugin's controls.
struct Placement {
    ControlValues values;
    std::vector<Variable> variables;
    std::vector<std::string> left_out;  ///< sentences
};

/// What a strip becomes for a listed shape.
struct StripType {
    ListedShape shape;
    float band_type;
    int section;  ///< 0 is A, 1 is B, -1 none
    float section_type;
    bool has_gain, has_q;
};
constexpr StripType kStripTypes[] = {
    {ListedShape::Peak, type_value(BandType::Bell), -1, 0.0f, true, true},
    {ListedShape::LowShelf, type_value(BandType::LoShelf), 0, type_value(SectionType::LoShelf12),
     true, false},
    {ListedShape::HighShelf, type_value(BandType::HiShelf), 1, type_value(SectionType::HiShelf12),
     true, false},
    {ListedShape::HighPass, type_value(BandType::HighPass12), 0,
     type_value(SectionType::HighPass12), false, false},
    {ListedShape::LowPass, type_value(BandType::LowPass12), 1, type_value(SectionType::LowPass12),
     false, false},
    {ListedShape::Notch, type_value(BandType::Notch), -1, 0.0f, false, true},
};

const StripType& type_of(const ListedFilter& filter) {
    return *std::ranges::find(kStripTypes, filter.shape, &StripType::shape);
}

/// The plugin's shelves have their gain from the frequency outwards, listed ones half of it there.
double strip_freq_hz(const ListedFilter& filter) {
    const double ratio = std::pow(10.0, std::abs(filter.gain_db) / 80.0);
    if (filter.shape == ListedShape::LowShelf) return filter.freq_hz / ratio;
    if (filter.shape == ListedShape::HighShelf) return filter.freq_hz * ratio;
    return filter.freq_hz;
}

/// Puts filters on strips; what does not fit is held at the nearest value and told.
class Placer {
  public:
    explicit Placer(const FilterList& list) {
        result_.left_out = list.unknown;
        for (int strip = 0; strip < kStripCount; ++strip) set(strip_port(strip) + kEnable, 0.0f);
        for (const ListedFilter* filter : by_weight(list)) {
            if (const std::optional<int> strip = free_strip(*filter)) {
                place(*filter, *strip);
            } else {
                result_.left_out.push_back(filter->line + " (no band is left)");
            }
        }
        set_held(kTrimPort, list.preamp_db, -kTrimRangeDb, kTrimRangeDb, "the preamp");
        result_.variables.push_back({kTrimPort, false, -kTrimRangeDb, kTrimRangeDb});
    }

    Placement result() && { return std::move(result_); }

  private:
    /// The filters that matter most first, so that the others are left out; each group as listed.
    static std::vector<const ListedFilter*> by_weight(const FilterList& list) {
        std::vector<const ListedFilter*> filters;
        for (const ListedFilter& filter : list.filters) filters.push_back(&filter);
        const auto weight = [](const ListedFilter* filter) {
            return type_of(*filter).has_gain ? std::abs(filter->gain_db) / filter->q : 1e9;
        };
        if (filters.size() > kStripCount) std::ranges::stable_sort(filters, std::greater(), weight);
        return filters;
    }

    void set(uint32_t port, float value) { result_.values.emplace_back(port, value); }

    void set_held(uint32_t port, double value, float minimum, float maximum,
                  const std::string& what) {
        const double held = std::clamp<double>(value, minimum, maximum);
        set(port, static_cast<float>(held));
        if (held == value) return;
        result_.left_out.push_back(formatted("%s (%g is held at %g)", what.c_str(), value, held));
    }

    /// Sections first for what they can do: only bands can be bells.
    std::optional<int> free_strip(const ListedFilter& filter) {
        const int section = type_of(filter).section;
        if (section >= 0 && !taken_.contains(kBandCount + section)) return kBandCount + section;
        for (int band = 0; band < kBandCount; ++band) {
            if (!taken_.contains(band)) return band;
        }
        return std::nullopt;
    }

    void place(const ListedFilter& filter, int strip) {
        const StripType& type = type_of(filter);
        const bool is_band = strip < kBandCount;
        const uint32_t port = strip_port(strip);
        const float highest_hz = is_band ? kHighestBandHz : kHighestSectionHz;
        taken_.insert(strip);
        set(port + kEnable, 1.0f);
        set(port + kType, is_band ? type.band_type : type.section_type);
        set_held(port + kFrequency, strip_freq_hz(filter), kLowestHz, highest_hz, filter.line);
        result_.variables.push_back({port + kFrequency, true, kLowestHz, highest_hz});
        if (type.has_gain) {
            set_held(port + kGain, filter.gain_db, -kGainRangeDb, kGainRangeDb, filter.line);
            result_.variables.push_back({port + kGain, false, -kGainRangeDb, kGainRangeDb});
        }
        if (type.has_q) {
            set_held(port + kQ, filter.q, kLowestQ, kHighestQ, filter.line);
            result_.variables.push_back({port + kQ, true, kLowestQ, kHighestQ});
        }
    }

    Placement result_;
    std::set<int> taken_;
};

/// Largest and root-mean-square deviation, in dB.
struct Deviation {
    double largest_db = 0.0;
    double at_hz = 0.0;
    double rms_db = 0.0;
};

/// Brings the measured response of the plugin near to a list's.
class Improver {
  public:
    Improver(Bundle& bundle, const FilterList& list, Placement& placement)
        : list_(list), placement_(placement), plugin_(bundle, 1, kRateHz, 1024) {
        plugin_.set(placement.values);
    }

    Deviation deviation() {
        Deviation result;
        const std::vector<double> differences = measure();
        for (size_t i = 0; i < differences.size(); ++i) {
            result.rms_db +=
                differences[i] * differences[i] / static_cast<double>(differences.size());
            if (std::abs(differences[i]) <= result.largest_db) continue;
            result.largest_db = std::abs(differences[i]);
            result.at_hz = freqs_hz_[i];
        }
        result.rms_db = std::sqrt(result.rms_db);
        return result;
    }

    /// Levenberg and Marquardt's method; the variables' slopes are measured too.
    void improve() {
        std::vector<double> x;
        for (const Variable& variable : placement_.variables) {
            const double value = plugin_.get(variable.port);
            x.push_back(variable.is_logarithmic ? std::log(value) : value);
        }
        std::vector<double> differences = measure();
        const int points = static_cast<int>(differences.size());
        const int count = static_cast<int>(x.size());
        constexpr double kTolerance = 1e-3;
        constexpr double kStepSquared = 1e-5;  // of a variable, far above the measurement's noise
        constexpr int kMostMeasurements = 300;
        const size_t n = x.size();
        std::vector<double> scale(n), jacobian(n * differences.size()), qtf(n), a(n), b(n), c(n);
        std::vector<double> d(differences.size());
        std::vector<int> pivots(n);
        int calls = 0;
        lmdif(residuals, this, points, count, x.data(), differences.data(), kTolerance, kTolerance,
              0.0, kMostMeasurements, kStepSquared, scale.data(), 1, 1.0, 0, &calls,
              jacobian.data(), points, pivots.data(), qtf.data(), a.data(), b.data(), c.data(),
              d.data());
        if (failure_) std::rethrow_exception(failure_);
        set(x.data());
        for (const Variable& variable : placement_.variables) {
            placement_.values.emplace_back(variable.port, plugin_.get(variable.port));
        }
    }

    [[nodiscard]] const Plugin& plugin() const { return plugin_; }

  private:
    static int residuals(void* self, int count, int, const double* x, double* differences, int) {
        auto& improver = *static_cast<Improver*>(self);
        try {
            improver.set(x);
            const std::vector<double> measured = improver.measure();
            std::copy_n(measured.begin(), count, differences);
            return 0;
        } catch (...) {  // an interruption, which must not pass through the library
            improver.failure_ = std::current_exception();
            return -1;
        }
    }

    void set(const double* x) {
        for (const Variable& variable : placement_.variables) {
            const double value = variable.is_logarithmic ? std::exp(*x) : *x;
            plugin_.set(variable.port, static_cast<float>(std::clamp<double>(
                                           value, variable.minimum, variable.maximum)));
            ++x;
        }
    }

    std::vector<double> measure() {
        std::vector<double> differences;
        freqs_hz_.clear();
        for (const ResponsePoint& point : measure_response(plugin_, kPointsPerOctave)) {
            if (point.freq_hz > kHighestComparedHz) break;
            freqs_hz_.push_back(point.freq_hz);
            differences.push_back(std::max(point.gain_db, kFloorDb) -
                                  std::max(list_.level_db(point.freq_hz), kFloorDb));
        }
        return differences;
    }

    const FilterList& list_;
    Placement& placement_;
    Plugin plugin_;
    std::vector<double> freqs_hz_;
    std::exception_ptr failure_;
};

FilterList read_list(const std::string& path) {
    std::ifstream file;
    if (path != OutputFile::kStream) {
        file.open(path);
        if (!file) throw file_error("read", path, errno);
    }
    FilterList list = read_filter_list(path == OutputFile::kStream ? std::cin : file);
    if (list.filters.empty() && list.unknown.empty() && list.preamp_db == 0.0) {
        throw UserError("cannot read " + path +
                        ": it holds no line such as \"Filter 1: ON PK Fc "
                        "105 Hz Gain 2.5 dB Q 0.70\".");
    }
    return list;
}

void import(const ProgramOptions& options, const ImportRequest& request) {
    Bundle bundle(options.bundle);
    const FilterList list = read_list(request.input);
    Placement placement = Placer(list).result();
    for (const std::string& each : placement.left_out) warn("left out: %s", each.c_str());
    if (!placement.left_out.empty() && !request.partial) {
        throw UserError("the plugin cannot do all of " + request.input +
                        "; --partial takes what it can.");
    }
    OutputFile output(request.save, options.existing());
    Improver improver(bundle, list, placement);
    const Deviation before = improver.deviation();
    improver.improve();
    const Deviation after = improver.deviation();
    save_state(bundle, improver.plugin(), output);
    if (request.save == OutputFile::kStream) return;
    const size_t count = list.filters.size();
    say("Wrote %s (%zu filter%s; from 20 Hz to 16 kHz at most %.2f dB off, at %.0f Hz, "
        "%.2f dB RMS; before improving %.2f dB and %.2f dB).\n",
        request.save.c_str(), count, count == 1 ? "" : "s", after.largest_db, after.at_hz,
        after.rms_db, before.largest_db, before.rms_db);
}

}  // namespace

void add_import(CLI::App& program, const ProgramOptions& options) {
    CLI::App* command = program.add_subcommand(
        "import", "Turn a list of filters of a correction program into settings");
    const auto request = std::make_shared<ImportRequest>();
    command->add_option("FILE", request->input, "List of filters, or - for standard input")
        ->required();
    command->add_option("--save", request->save, "LV2 state to write, for --load")->required();
    command->add_flag("--partial", request->partial, "Write it even if something is left out");
    command->callback([request, &options] { import(options, *request); });
}

}  // namespace brindle
