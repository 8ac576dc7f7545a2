// SPDX-License-Identifier: ISC
/// What hosts are told about the ports: symbols, names, ranges, defaults, units and properties.
/// The Turtle data is generated from these tables; indices follow from the layout in brindle.h.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "lv2/brindle.h"

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

using ControlRows = std::array<ControlRow, kControlCount>;

// clang-format off
inline constexpr ControlRows kBandControls = {{
    // symbol   name          min     max     properties
    {"enable", "Enable",      0.0f,     1.0f, kToggled},
    {"type",   "Type",        0.0f,    12.0f, kEnumeration},
    {"gain",   "Gain",      -18.0f,    18.0f, kDecibels},
    {"freq",   "Frequency",  20.0f, 20000.0f, kHertz},
    {"q",      "Q",           0.1f,   100.0f, kLogarithmic},
}};

inline constexpr ControlRows kSectionControls = {{
    {"enable", "Enable",      0.0f,     1.0f, kToggled},
    {"type",   "Type",        0.0f,    17.0f, kEnumeration},
    {"gain",   "Gain",      -18.0f,    18.0f, kDecibels},
    {"freq",   "Frequency",  20.0f, 15000.0f, kHertz},
    {"q",      "Q",           0.1f,   100.0f, kLogarithmic},
}};

/// A band or a section: five consecutive ports that a host shows as one group.
struct StripRow {
    const char* symbol;
    const char* name;
    const char* group;  ///< fragment of the group's URI, and its symbol
    std::array<float, kControlCount> defaults;
};

/// Together the defaults leave the sound unchanged: every shelf and bell stands at 0 dB, the
/// sections are off.
inline constexpr std::array<StripRow, kBandCount> kBandStrips = {{
    //                          on    type  gain [dB]  freq [Hz]  Q
    {"b1", "Band 1", "band1", {1.0f,  5.0f,  0.0f,      63.0f,    0.71f}},
    {"b2", "Band 2", "band2", {1.0f,  9.0f,  0.0f,     125.0f,    0.71f}},
    {"b3", "Band 3", "band3", {1.0f,  9.0f,  0.0f,     250.0f,    0.71f}},
    {"b4", "Band 4", "band4", {1.0f,  9.0f,  0.0f,     500.0f,    0.71f}},
    {"b5", "Band 5", "band5", {1.0f,  9.0f,  0.0f,    1000.0f,    0.71f}},
    {"b6", "Band 6", "band6", {1.0f,  9.0f,  0.0f,    2000.0f,    0.71f}},
    {"b7", "Band 7", "band7", {1.0f,  9.0f,  0.0f,    4000.0f,    0.71f}},
    {"b8", "Band 8", "band8", {1.0f,  6.0f,  0.0f,    8000.0f,    0.71f}},
}};

inline constexpr std::array<StripRow, kSectionCount> kSectionStrips = {{
    {"seca", "Section A", "sectionA", {0.0f,  2.0f, 0.0f,    30.0f, 1.0f}},
    {"secb", "Section B", "sectionB", {0.0f,  6.0f, 0.0f, 15000.0f, 1.0f}},
}};

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
