// SPDX-License-Identifier: ISC
#include "host/filter_list.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <iterator>
#include <locale>
#include <numbers>
#include <optional>
#include <regex>
#include <sstream>

namespace brindle {
namespace {

constexpr double kButterworthQ = 1.0 / std::numbers::sqrt2;

/// What a list calls its shapes, and the Q of those that may come without.
struct ShapeName {
    const char* name;
    ListedShape shape;
    double q;
};
constexpr ShapeName kShapeNames[] = {
    {"PK", ListedShape::Peak, 0.0},
    {"PEQ", ListedShape::Peak, 0.0},
    {"MODAL", ListedShape::Peak, 0.0},
    {"LS", ListedShape::LowShelf, kButterworthQ},
    {"LSC", ListedShape::LowShelf, kButterworthQ},
    {"LSQ", ListedShape::LowShelf, kButterworthQ},
    {"HS", ListedShape::HighShelf, kButterworthQ},
    {"HSC", ListedShape::HighShelf, kButterworthQ},
    {"HSQ", ListedShape::HighShelf, kButterworthQ},
    {"HP", ListedShape::HighPass, kButterworthQ},
    {"HPQ", ListedShape::HighPass, kButterworthQ},
    {"LP", ListedShape::LowPass, kButterworthQ},
    {"LPQ", ListedShape::LowPass, kButterworthQ},
    {"NO", ListedShape::Notch, 30.0},
};

bool has_gain(ListedShape shape) {
    return shape == ListedShape::Peak || shape == ListedShape::LowShelf ||
           shape == ListedShape::HighShelf;
}

/// The number after a word, with a decimal point or comma.
std::optional<double> number_after(const std::string& text, const std::string& word) {
    const std::regex pattern("\\b" + word + "\\s+([-+]?[0-9]+(?:[.,][0-9]+)?)(\\s*k)?",
                             std::regex::icase);
    std::smatch found;
    if (!std::regex_search(text, found, pattern)) return std::nullopt;
    std::string digits = found[1];
    std::replace(digits.begin(), digits.end(), ',', '.');
    std::istringstream stream(digits);
    stream.imbue(std::locale::classic());
    double number = 0.0;
    stream >> number;
    return found[2].matched ? 1000.0 * number : number;
}

std::optional<ListedFilter> filter_in(const std::string& line, const std::string& name,
                                      const std::string& values) {
    const auto* shape = std::ranges::find_if(
        kShapeNames, [&name](const ShapeName& each) { return each.name == name; });
    const std::optional<double> freq_hz = number_after(values, "Fc");
    const std::optional<double> gain_db = number_after(values, "Gain");
    std::optional<double> q = number_after(values, "Q");
    if (const std::optional<double> octaves = number_after(values, "BW Oct"); octaves && !q) {
        q = std::exp2(*octaves / 2.0) / (std::exp2(*octaves) - 1.0);
    }
    if (shape == std::end(kShapeNames) || !freq_hz || *freq_hz <= 0.0) return std::nullopt;
    if (!q && shape->q > 0.0) q = shape->q;
    if (!q || *q <= 0.0 || (has_gain(shape->shape) && !gain_db)) return std::nullopt;
    return ListedFilter{line, shape->shape, *freq_hz, gain_db.value_or(0.0), *q};
}

/// The transfer function at s = j freq / centre.
std::complex<double> response(const ListedFilter& filter, double freq_hz) {
    const std::complex<double> s(0.0, freq_hz / filter.freq_hz);
    const double a = std::pow(10.0, filter.gain_db / 40.0);
    const double root = std::sqrt(a) / filter.q;
    switch (filter.shape) {
        case ListedShape::Peak:
            return (s * s + s * (a / filter.q) + 1.0) / (s * s + s / (a * filter.q) + 1.0);
        case ListedShape::LowShelf:
            return a * (s * s + s * root + a) / (a * s * s + s * root + 1.0);
        case ListedShape::HighShelf:
            return a * (a * s * s + s * root + 1.0) / (s * s + s * root + a);
        case ListedShape::HighPass:
            return s * s / (s * s + s / filter.q + 1.0);
        case ListedShape::LowPass:
            return 1.0 / (s * s + s / filter.q + 1.0);
        case ListedShape::Notch:
            return (s * s + 1.0) / (s * s + s / filter.q + 1.0);
    }
    return 1.0;
}

}  // namespace

double FilterList::level_db(double freq_hz) const {
    double level = preamp_db;
    for (const ListedFilter& filter : filters) {
        level += 20.0 * std::log10(std::abs(response(filter, freq_hz)) + 1e-15);
    }
    return level;
}

FilterList read_filter_list(std::istream& text) {
    const std::regex filter_line("\\s*Filter\\s*[0-9]*\\s*:\\s*ON\\s+([A-Z]+)\\b(.*)",
                                 std::regex::icase);
    const std::regex other_sound(
        "\\s*(GraphicEQ|Convolution|Include|Copy|Delay|Channel|Filter\\s*[0-9]*\\s*:\\s*ON).*",
        std::regex::icase);
    FilterList list;
    for (std::string line; std::getline(text, line);) {
        line.erase(line.find_last_not_of(" \t\r") + 1);
        std::smatch found;
        if (std::regex_match(line, std::regex("\\s*Preamp\\s*:.*", std::regex::icase))) {
            list.preamp_db += number_after(line, "Preamp\\s*:").value_or(0.0);
            continue;
        }
        const bool is_filter = std::regex_match(line, found, filter_line);
        if (is_filter && found[1] == "None") continue;
        const std::string name = found[1];
        const auto filter = is_filter ? filter_in(line, name, found[2]) : std::nullopt;
        if (filter) {
            list.filters.push_back(*filter);
        } else if (std::regex_match(line, other_sound)) {
            list.unknown.push_back(line);
        }
    }
    return list;
}

}  // namespace brindle
