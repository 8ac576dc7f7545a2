// SPDX-License-Identifier: ISC
// Writes docs/drawn-response.md: how far the graph's curves are from what the built plugin does.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <span>
#include <string>
#include <vector>

#include "contract/types.h"
#include "graph/curves/type_curves.h"
#include "tests/support/plugin_host.h"

namespace brindle {
namespace {

constexpr double kRateHz = 48000.0;
constexpr double kHighestHz = 10000.0;
constexpr double kPictureDb = 18.0;
constexpr size_t kImpulseLength = 32768;
constexpr size_t kPointStep = 4;
constexpr float kLowCornersHz[] = {125.0f, 400.0f, 1000.0f};
constexpr float kHighCornersHz[] = {2500.0f, 8000.0f};

constexpr const char* kIntroduction =
    "# The drawn curve against the engine\n"
    "\n"
    "The graph draws analogue prototypes; the engine runs digital filters. This table, made by\n"
    "`cmake --build build --target response_table`, holds the largest difference between them\n"
    "in dB: the drawn level less the built plugin's, measured by an impulse at 48 kHz, at every\n"
    "fourth point of the graph below 10 kHz where the drawn level is within ±18 dB.\n"
    "\"Up to 1 kHz\" has the filter at 125, 400 and 1000 Hz, \"above\" at 2.5 and 8 kHz; gains "
    "are\n"
    "±6, ±12 and ±18 dB and Q is 0.5, 1 and 3 where a type has them.\n"
    "\n"
    "`brindle response curve.svg --drawn --set ...` shows both for any setting.\n"
    "\n";

struct Setting {
    float gain_db;
    float freq_hz;
    float q;
};

/// The largest difference so far, and where it was found.
struct Worst {
    double difference_db = 0.0;
    double at_hz = 0.0;
    Setting setting{};
};

/// One row: a band's or a section's type and what its curve depends on.
struct Row {
    int type;
    bool isBand;
    bool hasGain;
    bool hasQ;
};

Curve Drawn(const Row& row, const Setting& set, const FrequencyGrid& grid) {
    Curve curve = {};
    const CurveSettings settings = {set.gain_db, set.freq_hz, set.q};
    if (row.isBand) {
        AddBandCurve(grid, curve, static_cast<BandType>(row.type), settings);
    } else {
        AddSectionCurve(grid, curve, static_cast<SectionType>(row.type), settings);
    }
    return curve;
}

std::vector<double> Measured(const Row& row, const Setting& set) {
    test::PluginHost host(1, kRateHz);
    host.set_strip(row.isBand ? 0 : kBandCount, row.type, set.gain_db, set.freq_hz, set.q);
    return host.impulse_response(kImpulseLength);
}

void Compare(const Row& row, const Setting& set, const FrequencyGrid& grid, Worst& worst) {
    const Curve drawn = Drawn(row, set, grid);
    const std::vector<double> response = Measured(row, set);
    for (size_t i = 0; i < static_cast<size_t>(grid.count); i += kPointStep) {
        const auto hz = static_cast<double>(grid.hz[i]);
        const auto level_db = static_cast<double>(drawn[i]);
        if (hz > kHighestHz || std::abs(level_db) > kPictureDb) continue;
        const double difference = level_db - test::gain_db(response, hz, kRateHz);
        if (std::abs(difference) > std::abs(worst.difference_db)) worst = {difference, hz, set};
    }
}

Worst Largest(const Row& row, std::span<const float> corners_hz, const FrequencyGrid& grid) {
    constexpr float kGainsDb[] = {6.0f, 12.0f, 18.0f, -6.0f, -12.0f, -18.0f};
    constexpr float kQs[] = {1.0f, 3.0f, 0.5f};
    Worst worst;
    for (const float freq_hz : corners_hz) {
        for (const float gain_db : std::span(kGainsDb).first(row.hasGain ? 6 : 1)) {
            for (const float q : std::span(kQs).first(row.hasQ ? 3 : 1)) {
                Compare(row, {gain_db, freq_hz, q}, grid, worst);
            }
        }
    }
    return worst;
}

std::string Cell(const Row& row, const Worst& worst) {
    char text[128];
    int n = std::snprintf(text, sizeof text, "%+.2f at %.0f Hz (%.0f Hz", worst.difference_db,
                          worst.at_hz, static_cast<double>(worst.setting.freq_hz));
    std::string cell(text, static_cast<size_t>(n));
    if (row.hasGain) {
        n = std::snprintf(text, sizeof text, ", %+.0f dB",
                          static_cast<double>(worst.setting.gain_db));
        cell.append(text, static_cast<size_t>(n));
    }
    if (row.hasQ) {
        n = std::snprintf(text, sizeof text, ", Q %.1f", static_cast<double>(worst.setting.q));
        cell.append(text, static_cast<size_t>(n));
    }
    return cell + ")";
}

void WriteTable(std::FILE* file, const char* heading, std::span<const Row> rows, const char* notes,
                const FrequencyGrid& grid) {
    std::fprintf(file, "## %s\n\n| type | filter up to 1 kHz | filter above |\n|---|---|---|\n",
                 heading);
    for (const Row& row : rows) {
        const auto code = static_cast<size_t>(row.type);
        std::fprintf(file, "| %s %s | %s | %s |\n", row.isBand ? "Band" : "Section",
                     row.isBand ? kBandTypes[code].name : kSectionTypes[code].name,
                     Cell(row, Largest(row, kLowCornersHz, grid)).c_str(),
                     Cell(row, Largest(row, kHighCornersHz, grid)).c_str());
    }
    std::fprintf(file, "\n%s", notes);
}

constexpr Row kAgreeing[] = {
    {1, true, false, false},  {2, true, false, false},  {3, true, false, false},
    {4, true, false, false},  {5, true, true, false},   {6, true, true, false},
    {9, true, true, true},    {10, true, true, true},   {12, true, false, true},
    {1, false, false, false}, {5, false, false, false}, {9, false, true, false},
    {10, false, true, false}, {11, false, true, false}, {12, false, true, false},
    {13, false, true, false}, {14, false, true, false}, {15, false, true, false},
    {16, false, true, false}};

constexpr const char* kAgreeingNotes =
    "- Bells are drawn wider on purpose, the more the higher their gain: Q gives the width 3 dB\n"
    "  below the peak in the graph, and the width at half the gain (in dB) in the engine.\n"
    "- Search: the engine's band-pass grows narrower with its gain, the drawn one keeps its "
    "width.\n"
    "- Below 100 Hz, which the table leaves out, the engine holds high shelves at 100 Hz.\n"
    "- With the filter near the top, bilinear designs (high-pass 6 dB/oct, shelves, notch) are\n"
    "  squeezed against 24 kHz; the graph knows no sample rate.\n";
constexpr const char* kDeviatingNotes =
    "- Lsh2, Hsh2 and SymLsh are drawn flat.\n"
    "- Steep filters are drawn at the set frequency as Butterworth filters; the engine's equal "
    "stages\n"
    "  with shifted frequencies have a softer corner.\n"
    "- A wide notch is drawn as one notch, the engine spreads four.\n";

/// Steep filters without the engine's frequency factors, one notch for four, types drawn flat.
constexpr Row kDeviating[] = {{7, true, true, false},   {8, true, true, false},
                              {11, true, true, false},  {2, false, false, false},
                              {3, false, false, false}, {4, false, false, false},
                              {6, false, false, false}, {7, false, false, false},
                              {8, false, false, false}, {17, false, false, true}};

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
    using namespace brindle;
    std::FILE* file = argc == 2 ? std::fopen(argv[1], "w") : nullptr;
    if (file == nullptr) {
        std::fprintf(stderr, "usage: response_table FILE\n");
        return 1;
    }
    FrequencyGrid grid;
    SetFrequencyGrid(grid, 800, 20.0f, 20000.0f);
    std::fputs(kIntroduction, file);
    WriteTable(file, "Types that are meant to agree", kAgreeing, kAgreeingNotes, grid);
    std::fputs("\n", file);
    WriteTable(file, "Types that are drawn in a simpler way", kDeviating, kDeviatingNotes, grid);
    return std::fclose(file) == 0 ? 0 : 1;
}
