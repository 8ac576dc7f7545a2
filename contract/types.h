// SPDX-License-Identifier: ISC
/// The filter types of bands and sections: names, properties and menu positions.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace brindle {

/// Filter type of a band, which is one second-order stage. The numbers are the type port's values.
enum class BandType : int32_t {
    Flat,
    LowPass6,
    HighPass6,
    LowPass12,
    HighPass12,
    LoShelf,
    HiShelf,
    LoShelf2,
    HiShelf2,
    Bell,
    Search,
    SymLoShelf,
    Notch,
    Count,  ///< no type
};

/// Filter type of a section, which is a cascade of up to four stages.
enum class SectionType : int32_t {
    Flat,
    HighPass12,
    HighPass24,
    HighPass36,
    HighPass48,
    LowPass12,
    LowPass24,
    LowPass36,
    LowPass48,
    HiShelf12,
    HiShelf24,
    HiShelf36,
    HiShelf48,
    LoShelf12,
    LoShelf24,
    LoShelf36,
    LoShelf48,
    WideNotch,
    Count,  ///< no type
};

/// Names, properties and menu positions of a type.
struct TypeRow {
    const char* name;        ///< in menus and in the Turtle data
    const char* short_name;  ///< on narrow displays
    bool heeds_gain;         ///< the gain has an effect
    bool heeds_q;            ///< the Q has an effect
    bool has_centre;         ///< a search turns it into a band-pass at its frequency
    /// Position in the menus, counted from the bottom, 0 if a menu lacks the type: first in the
    /// menu of the bands or of section A, then in that of section B.
    std::array<uint8_t, 2> menu_place;
};

// clang-format off
/// Indexed by BandType.
inline constexpr auto kBandTypes = std::to_array<TypeRow>({
    // name          short     gain   Q      centre  menu
    {"Flat",        "Flat",    false, false, false, {0}},
    {"LP 6dB/oct",  "LP 6",    false, false, false, {1}},
    {"HP 6dB/oct",  "HP 6",    false, false, false, {2}},
    {"LP 12dB/oct", "LP 12",   false, false, false, {3}},
    {"HP 12dB/oct", "HP 12",   false, false, false, {4}},
    {"Lo Shelf",    "Lo Sh",   true,  false, false, {5}},
    {"Hi Shelf",    "Hi Sh",   true,  false, false, {6}},
    {"Lsh2",        "Lsh2",    true,  false, false, {0}},
    {"Hsh2",        "Hsh2",    true,  false, false, {0}},
    {"Bell",        "Bell",    true,  true,  true,  {7}},
    {"Search",      "Search",  true,  true,  true,  {0}},
    {"SymLsh",      "SymLsh",  true,  false, false, {0}},
    {"Notch",       "Notch",   false, true,  true,  {8}},
});

/// Indexed by SectionType.
inline constexpr auto kSectionTypes = std::to_array<TypeRow>({
    // name                short      gain   Q      centre  menus of A, B
    {"Flat",              "Flat",     false, false, false, {0, 0}},
    {"HP 12dB/oct",       "HP 12",    false, false, false, {2, 0}},
    {"HP 24dB/oct",       "HP 24",    false, false, false, {3, 0}},
    {"HP 36dB/oct",       "HP 36",    false, false, false, {4, 0}},
    {"HP 48dB/oct",       "HP 48",    false, false, false, {5, 0}},
    {"LP 12dB/oct",       "LP 12",    false, false, false, {0, 2}},
    {"LP 24dB/oct",       "LP 24",    false, false, false, {0, 3}},
    {"LP 36dB/oct",       "LP 36",    false, false, false, {0, 4}},
    {"LP 48dB/oct",       "LP 48",    false, false, false, {0, 5}},
    {"Hi Shelf 12dB/oct", "Hi Sh 12", true,  false, false, {0, 6}},
    {"Hi Shelf 24dB/oct", "Hi Sh 24", true,  false, false, {0, 7}},
    {"Hi Shelf 36dB/oct", "Hi Sh 36", true,  false, false, {0, 8}},
    {"Hi Shelf 48dB/oct", "Hi Sh 48", true,  false, false, {0, 9}},
    {"Lo Shelf 12dB/oct", "Lo Sh 12", true,  false, false, {6, 0}},
    {"Lo Shelf 24dB/oct", "Lo Sh 24", true,  false, false, {7, 0}},
    {"Lo Shelf 36dB/oct", "Lo Sh 36", true,  false, false, {8, 0}},
    {"Lo Shelf 48dB/oct", "Lo Sh 48", true,  false, false, {9, 0}},
    {"Wide Notch",        "Wd Notch", false, true,  false, {1, 1}},
});
// clang-format on

/// Number of types: the size of every table indexed by type.
template <typename Type>
inline constexpr auto kTypeCount = static_cast<size_t>(Type::Count);

static_assert(kBandTypes.size() == kTypeCount<BandType>);
static_assert(kSectionTypes.size() == kTypeCount<SectionType>);

/// Index of a type's row in a table.
template <typename Type>
constexpr size_t type_index(Type type) {
    return static_cast<size_t>(type);
}

/// The type port's value for a type.
template <typename Type>
constexpr float type_value(Type type) {
    return static_cast<float>(static_cast<int32_t>(type));
}

/// How a type port's value is converted to a type.
enum class TypeReading {
    Sound,  ///< truncated after adding 0.1; a value outside the types is Flat
    Label,  ///< truncated after adding 0.01; a value beyond the types is the nearest type
};

/// The type that a type port's value selects. NaN selects Flat.
template <typename Type>
constexpr Type decode_type(float value, TypeReading reading = TypeReading::Sound) noexcept {
    const bool label = reading == TypeReading::Label;
    const double code = value + (label ? 0.01 : 0.1);
    constexpr auto kEnd = static_cast<double>(Type::Count);
    if (!(code >= 1.0)) return Type::Flat;
    if (code < kEnd) return static_cast<Type>(static_cast<int32_t>(code));
    return label ? static_cast<Type>(static_cast<int32_t>(Type::Count) - 1) : Type::Flat;
}

}  // namespace brindle
