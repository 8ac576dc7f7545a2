// SPDX-License-Identifier: ISC
/// Port descriptions for hosts: symbols, names, ranges, defaults, units and properties. The Turtle
/// data is generated from these tables; port indices come from brindle.h.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "contract/brindle.h"
#include "contract/types.h"

namespace brindle {

/// A host that finds two bundles loads the one with the higher version. Raise it by 2 whenever
/// ports, types or presets change.
inline constexpr int kMinorVersion = 4;

/// One of the five controls that every band and every section has.
struct ControlRow {
    const char* symbol;      ///< follows the strip's symbol and an underscore
    const char* name;        ///< follows the strip's name
    const char* short_name;  ///< follows the strip's short name
    float minimum;           ///< in the port's unit
    float maximum;
    const char* properties;  ///< Turtle: unit and port properties
    const char* comment;     ///< what the control does
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
    // symbol   name         short   min            max                   properties
    {"enable", "Enable",    "On",    0.0f,          1.0f,                 kToggled,
     "Fades the band in or out. Automate this switch to bypass the band."},
    {"type",   "Type",      "Type",  0.0f,          kLastType<BandType>,  kEnumeration,
     "What the band does. A search is a narrow band-pass to find a frequency by ear."},
    {"gain",   "Gain",      "Gain", -kGainRangeDb,  kGainRangeDb,         kDecibels,
     "Boost or cut of a bell or shelf. The other types do not use it."},
    {"freq",   "Frequency", "Freq",  kLowestHz,     kHighestBandHz,       kHertz,
     "Centre of a bell or notch, corner of the other types."},
    {"q",      "Q",         "Q",     kLowestQ,      kHighestQ,            kLogarithmic,
     "How narrow a bell or notch is. The other types do not use it."},
}};

inline constexpr ControlRows kSectionControls = {{
    {"enable", "Enable",    "On",    0.0f,          1.0f,                   kToggled,
     "Fades the section in or out. Automate this switch to bypass the section."},
    {"type",   "Type",      "Type",  0.0f,          kLastType<SectionType>, kEnumeration,
     "What the section does, and how steeply."},
    {"gain",   "Gain",      "Gain", -kGainRangeDb,  kGainRangeDb,           kDecibels,
     "Boost or cut of a steep shelf. The other types do not use it."},
    {"freq",   "Frequency", "Freq",  kLowestHz,     kHighestSectionHz,      kHertz,
     "Corner of a pass filter or shelf, centre of the wide notch."},
    {"q",      "Q",         "Q",     kLowestQ,      kHighestQ,              kLogarithmic,
     "How narrow the wide notch is. The other types do not use it."},
}};

/// A band or a section: five consecutive ports that a host shows as one group.
struct StripRow {
    const char* label;   ///< on the strip's on/off button and its handle
    const char* symbol;  ///< prefix of the port symbols, without the underscore
    const char* name;
    const char* short_name;
    const char* group;  ///< fragment of the group's URI, and its symbol
    std::array<float, kControlCount> defaults;
};

/// Indexed by strip. The defaults leave the sound unchanged: shelves and bells are at 0 dB,
/// sections are off.
inline constexpr auto kStrips = std::to_array<StripRow>({
    //                                     on    type                                gain [dB], freq [Hz], Q
    {"1", "b1", "Band 1", "B1", "band1", {1.0f, type_value(BandType::LoShelf), 0.0f,   63.0f, 0.71f}},
    {"2", "b2", "Band 2", "B2", "band2", {1.0f, type_value(BandType::Bell),    0.0f,  125.0f, 0.71f}},
    {"3", "b3", "Band 3", "B3", "band3", {1.0f, type_value(BandType::Bell),    0.0f,  250.0f, 0.71f}},
    {"4", "b4", "Band 4", "B4", "band4", {1.0f, type_value(BandType::Bell),    0.0f,  500.0f, 0.71f}},
    {"5", "b5", "Band 5", "B5", "band5", {1.0f, type_value(BandType::Bell),    0.0f, 1000.0f, 0.71f}},
    {"6", "b6", "Band 6", "B6", "band6", {1.0f, type_value(BandType::Bell),    0.0f, 2000.0f, 0.71f}},
    {"7", "b7", "Band 7", "B7", "band7", {1.0f, type_value(BandType::Bell),    0.0f, 4000.0f, 0.71f}},
    {"8", "b8", "Band 8", "B8", "band8", {1.0f, type_value(BandType::HiShelf), 0.0f, 8000.0f, 0.71f}},
    {"A", "seca", "Section A", "SecA", "sectionA",
     {0.0f, type_value(SectionType::HighPass24), 0.0f,    30.0f, 1.0f}},
    {"B", "secb", "Section B", "SecB", "sectionB",
     {0.0f, type_value(SectionType::LowPass24),  0.0f, 15000.0f, 1.0f}},
});
static_assert(kStrips.size() == kStripCount);

constexpr const StripRow& strip_row(int strip) {
    return kStrips[static_cast<size_t>(strip)];
}
constexpr const ControlRows& strip_controls(int strip) {
    return is_band(strip) ? kBandControls : kSectionControls;
}
/// The types that a strip can have.
constexpr std::span<const TypeRow> strip_types(int strip) {
    return is_band(strip) ? std::span<const TypeRow>(kBandTypes) : kSectionTypes;
}
/// The type that a value of the strip's type port selects.
constexpr const TypeRow& strip_type(int strip, float value,
                                    TypeReading reading = TypeReading::Sound) {
    return is_band(strip) ? kBandTypes[type_index(decode_type<BandType>(value, reading))]
                          : kSectionTypes[type_index(decode_type<SectionType>(value, reading))];
}

/// A control port that belongs to no strip.
struct SingleControlRow {
    uint32_t index;
    bool is_input;
    const char* symbol;
    const char* name;
    const char* short_name;
    float minimum;           ///< in the port's unit
    float maximum;
    float normal;            ///< the default of an input
    const char* properties;  ///< Turtle: group, unit and port properties
    const char* comment;     ///< what the control does
};

/// 401 steps of 0.1 dB.
inline constexpr const char* kTrimDecibels = "units:unit units:db ; pprops:rangeSteps 401";
inline constexpr const char* kMeterGroup = "pg:group <" BRINDLE_URI "#meters>";

inline constexpr std::array<SingleControlRow, 3> kSingleControls = {{
    {kTrimPort,     true,  "trim",      "Trim",         "Trim",   -kTrimRangeDb, kTrimRangeDb, 0.0f,
     kTrimDecibels, "Level before sections and bands."},
    {kMeterInPort,  false, "meter_in",  "Input Level",  "In Lvl",  0.0f,         1.0f,         0.0f,
     kMeterGroup,   "Mean power before the trim, 1 at full scale. It falls by 10 dB a second."},
    {kMeterOutPort, false, "meter_out", "Output Level", "Out Lvl", 0.0f,         1.0f,         0.0f,
     kMeterGroup,   "Mean power at the output, 1 at full scale. It falls by 10 dB a second."},
}};

struct MessagePortRow {
    uint32_t index;
    bool is_input;
    const char* symbol;
    const char* name;
    const char* properties;  ///< Turtle
    const char* comment;
};

/// Hosts derive the notify port's buffer and the queue to the editor from its minimum size. An
/// analyser row takes 1080 bytes; a smaller queue loses rows.
inline constexpr std::array<MessagePortRow, 2> kMessagePorts = {{
    {kControlPort, true,  "control", "Control", "lv2:designation lv2:control",
     "Requests of the editor."},
    {kNotifyPort,  false, "notify",  "Notify",  "lv2:designation lv2:control ; rsz:minimumSize 8192",
     "The analyser's spectrum for the editor."},
}};

struct AudioPortRow {
    bool is_input;
    const char* symbol;
    const char* name;
    const char* short_name;
    const char* group;        ///< fragment of the group's URI
    const char* designation;  ///< Turtle: which channel of the group
    const char* comment;
};

/// Indices start at kFirstAudioPort.
inline constexpr std::array<AudioPortRow, kMonoPortCount - kFirstAudioPort> kMonoAudioPorts = {{
    {true,  "in",    "Input",        "In",    "monoIn",    "pg:center", "The sound to equalise."},
    {false, "out",   "Output",       "Out",   "monoOut",   "pg:center", "The equalised sound."},
}};
inline constexpr std::array<AudioPortRow, kStereoPortCount - kFirstAudioPort> kStereoAudioPorts = {{
    {true,  "in_l",  "Left Input",   "In L",  "stereoIn",  "pg:left",  "The sound to equalise, left."},
    {false, "out_l", "Left Output",  "Out L", "stereoOut", "pg:left",  "The equalised sound, left."},
    {true,  "in_r",  "Right Input",  "In R",  "stereoIn",  "pg:right", "The sound to equalise, right."},
    {false, "out_r", "Right Output", "Out R", "stereoOut", "pg:right", "The equalised sound, right."},
}};
// clang-format on

}  // namespace brindle
