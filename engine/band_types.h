// SPDX-License-Identifier: ISC
/// The filter types of bands and sections with their labels: the vocabulary of engine and editor.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace brindle {

/// What one band, that is one second-order stage, does. The codes are those of the type ports.
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
};
inline constexpr size_t kBandTypeCount = 13;

/// What a section, that is a cascade of up to four stages, does.
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
};
inline constexpr size_t kSectionTypeCount = 18;

/// A type's name in menus and in the Turtle data, and the one for narrow displays.
struct TypeLabel {
    const char* name;
    const char* short_name;
};

/// Indexed by BandType.
inline constexpr std::array<TypeLabel, kBandTypeCount> kBandTypeLabels = {{
    {"Flat", "Flat"},
    {"LP 6dB/oct", "LP 6"},
    {"HP 6dB/oct", "HP 6"},
    {"LP 12dB/oct", "LP 12"},
    {"HP 12dB/oct", "HP 12"},
    {"Lo Shelf", "Lo Sh"},
    {"Hi Shelf", "Hi Sh"},
    {"Lsh2", "Lsh2"},
    {"Hsh2", "Hsh2"},
    {"Bell", "Bell"},
    {"Search", "Search"},
    {"SymLsh", "SymLsh"},
    {"Notch", "Notch"},
}};

/// Indexed by SectionType.
inline constexpr std::array<TypeLabel, kSectionTypeCount> kSectionTypeLabels = {{
    {"Flat", "Flat"},
    {"HP 12dB/oct", "HP 12"},
    {"HP 24dB/oct", "HP 24"},
    {"HP 36dB/oct", "HP 36"},
    {"HP 48dB/oct", "HP 48"},
    {"LP 12dB/oct", "LP 12"},
    {"LP 24dB/oct", "LP 24"},
    {"LP 36dB/oct", "LP 36"},
    {"LP 48dB/oct", "LP 48"},
    {"Hi Shelf 12dB/oct", "Hi Sh 12"},
    {"Hi Shelf 24dB/oct", "Hi Sh 24"},
    {"Hi Shelf 36dB/oct", "Hi Sh 36"},
    {"Hi Shelf 48dB/oct", "Hi Sh 48"},
    {"Lo Shelf 12dB/oct", "Lo Sh 12"},
    {"Lo Shelf 24dB/oct", "Lo Sh 24"},
    {"Lo Shelf 36dB/oct", "Lo Sh 36"},
    {"Lo Shelf 48dB/oct", "Lo Sh 48"},
    {"Wide Notch", "Wd Notch"},
}};

static_assert(static_cast<size_t>(BandType::Notch) + 1 == kBandTypeCount);
static_assert(static_cast<size_t>(SectionType::WideNotch) + 1 == kSectionTypeCount);

}  // namespace brindle
