// SPDX-License-Identifier: ISC
/// What hosts are told about the ports: symbols, names, ranges, defaults, units and properties.
/// The Turtle data is generated from these tables; indices follow from the layout in brindle.h.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "contract/brindle.h"
#include "contract/types.h"

namespace brindle {

/// One of the five controls that every band and every section has.
struct ControlRow {
    const char* symbol;  ///< follows the strip's symbol and an underscore
    const char* name;    ///< follows the strip's name
    float minimum;       ///< in the port's unit, as are the two below
    float maximum;
    const char* properties;  ///< Turtle: unit and port properties
};

inline constexpr const char* kToggled = "lv2:portProperty lv2:toggled, lv2:integer";
inline constexpr const char* kEnumeration = "lv2:portProperty lv2:enumeration, lv2:integer";
/// 361 steps of 0.1 dB.
inline constexpr const char* kDecibels = "units:unit units:db ; pprops:rangeSteps 361";
inline constexpr const char* kHertz = "units:unit units:hz ; lv2:portProperty pprops:logarithmic";
inline constexpr const char* kLogarithmic = "lv2:portProperty pprops:logarithmic";

/// The ranges that the editor's scales share, in dB and Hz.
inline constexpr float kGainRangeDb = 18.0f;
inline constexpr float kLowestHz = 20.0f;
inline constexpr float kHighestBandHz = 20000.0f;
inline constexpr float kHighestSectionHz = 15000.0f;
inline constexpr float kLowestQ = 0.1f;
inline constexpr float kHighestQ = 100.0f;
inline constexpr float kTrimRangeDb = 20.0f;

/// The highest value of a type port.
template <typename Type>
inline constexpr float kLastType = static_cast<float>(kTypeCount<Type> - 1);

using ControlRows = std::array<ControlRow, kControlCount>;

// clang-format off
inline constexpr ControlRows kBandControls = {{
    // symbol   name         min            max                   properties
    {"enable", "Enable",     0.0f,          1.0f,                 kToggled},
    {"type",   "Type",       0.0f,          kLastType<BandType>,  kEnumeration},
    {"gain",   "Gain",      -kGainRangeDb,  kGainRangeDb,         kDecibels},
    {"freq",   "Frequency",  kLowestHz,     kHighestBandHz,       kHertz},
    {"q",      "Q",          kLowestQ,      kHighestQ,            kLogarithmic},
}};

inline constexpr ControlRows kSectionControls = {{
    {"enable", "Enable",     0.0f,          1.0f,                   kToggled},
    {"type",   "Type",       0.0f,          kLastType<SectionType>, kEnumeration},
    {"gain",   "Gain",      -kGainRangeDb,  kGainRangeDb,           kDecibels},
    {"freq",   "Frequency",  kLowestHz,     kHighestSectionHz,      kHertz},
    {"q",      "Q",          kLowestQ,      kHighestQ,              kLogarithmic},
}};

/// A band or a section: five consecutive ports that a host shows as one group.
struct StripRow {
    const char* label;   ///< on its key and its handle
    const char* symbol;  ///< before an underscore and a control's symbol
    const char* name;
    const char* group;   ///< fragment of the group's URI, and its symbol
    std::array<float, kControlCount> defaults;
};

/// By strip. Together the defaults leave the sound unchanged: every shelf and bell stands at 0 dB,
/// the sections are off.
inline constexpr auto kStrips = std::to_array<StripRow>({
    //                               on    type                                gain [dB], freq [Hz], Q
    {"1", "b1", "Band 1", "band1", {1.0f, type_value(BandType::LoShelf), 0.0f,   63.0f, 0.71f}},
    {"2", "b2", "Band 2", "band2", {1.0f, type_value(BandType::Bell),    0.0f,  125.0f, 0.71f}},
    {"3", "b3", "Band 3", "band3", {1.0f, type_value(BandType::Bell),    0.0f,  250.0f, 0.71f}},
    {"4", "b4", "Band 4", "band4", {1.0f, type_value(BandType::Bell),    0.0f,  500.0f, 0.71f}},
    {"5", "b5", "Band 5", "band5", {1.0f, type_value(BandType::Bell),    0.0f, 1000.0f, 0.71f}},
    {"6", "b6", "Band 6", "band6", {1.0f, type_value(BandType::Bell),    0.0f, 2000.0f, 0.71f}},
    {"7", "b7", "Band 7", "band7", {1.0f, type_value(BandType::Bell),    0.0f, 4000.0f, 0.71f}},
    {"8", "b8", "Band 8", "band8", {1.0f, type_value(BandType::HiShelf), 0.0f, 8000.0f, 0.71f}},
    {"A", "seca", "Section A", "sectionA",
     {0.0f, type_value(SectionType::HighPass24), 0.0f,    30.0f, 1.0f}},
    {"B", "secb", "Section B", "sectionB",
     {0.0f, type_value(SectionType::LowPass24),  0.0f, 15000.0f, 1.0f}},
});
static_assert(kStrips.size() == kStripCount);

constexpr bool is_band(int strip) {
    return strip < kBandCount;
}
constexpr const StripRow& strip_row(int strip) {
    return kStrips[static_cast<size_t>(strip)];
}
constexpr const ControlRows& strip_controls(int strip) {
    return is_band(strip) ? kBandControls : kSectionControls;
}
/// The rows of the types that a strip can have.
constexpr std::span<const TypeRow> strip_types(int strip) {
    return is_band(strip) ? std::span<const TypeRow>(kBandTypes) : kSectionTypes;
}
/// The row of the type that the value of a strip's type port stands for.
constexpr const TypeRow& strip_type(int strip, float value,
                                    TypeReading reading = TypeReading::Sound) {
    return is_band(strip) ? kBandTypes[type_index(decode_type<BandType>(value, reading))]
                          : kSectionTypes[type_index(decode_type<SectionType>(value, reading))];
}

/// A control port outside the strips. Only inputs have a default.
struct SingleControlRow {
    uint32_t index;
    const char* direction;  ///< Turtle class
    const char* symbol;
    const char* name;
    const char* range;  ///< Turtle: default (inputs only), minimum, maximum, properties
};

inline constexpr std::array<SingleControlRow, 3> kSingleControls = {{
    {kTrimPort,     "lv2:InputPort",  "trim",      "Trim",
     "lv2:default 0 ; lv2:minimum -20 ; lv2:maximum 20 ; units:unit units:db ; pprops:rangeSteps 401"},
    {kMeterInPort,  "lv2:OutputPort", "meter_in",  "Input Level",  "lv2:minimum 0 ; lv2:maximum 1"},
    {kMeterOutPort, "lv2:OutputPort", "meter_out", "Output Level", "lv2:minimum 0 ; lv2:maximum 1"},
}};

struct AudioPortRow {
    const char* direction;  ///< Turtle class
    const char* symbol;
    const char* name;
    const char* group;        ///< fragment of the group's URI
    const char* designation;  ///< Turtle: which channel of the group
};

/// From kFirstAudioPort on.
inline constexpr std::array<AudioPortRow, kMonoPortCount - kFirstAudioPort> kMonoAudioPorts = {{
    {"lv2:InputPort",  "in",    "Input",        "monoIn",    "pg:center"},
    {"lv2:OutputPort", "out",   "Output",       "monoOut",   "pg:center"},
}};
inline constexpr std::array<AudioPortRow, kStereoPortCount - kFirstAudioPort> kStereoAudioPorts = {{
    {"lv2:InputPort",  "in_l",  "Left Input",   "stereoIn",  "pg:left"},
    {"lv2:OutputPort", "out_l", "Left Output",  "stereoOut", "pg:left"},
    {"lv2:InputPort",  "in_r",  "Right Input",  "stereoIn",  "pg:right"},
    {"lv2:OutputPort", "out_r", "Right Output", "stereoOut", "pg:right"},
}};
// clang-format on

}  // namespace brindle
