// SPDX-License-Identifier: ISC
/// URIs and the port layout, shared by engine, editor, host program and Turtle data.
#pragma once

#include <cstdint>

#define BRINDLE_URI "urn:brindle-audio:plugins/lv2/Brindle"

namespace brindle {

inline constexpr const char* kProductName = "Brindle Console EQ";
/// Size of the editor's window when it opens; the panel is designed for this size.
inline constexpr int kEditorWidthPx = 1000;
inline constexpr int kEditorHeightPx = 600;

inline constexpr const char* kBaseUri = BRINDLE_URI;
inline constexpr const char* kMonoUri = BRINDLE_URI "/mono";
inline constexpr const char* kStereoUri = BRINDLE_URI "/stereo";
inline constexpr const char* kEditorUri = BRINDLE_URI "/gui";

/// The editor's requests: atom objects without properties on the control port.
inline constexpr const char* kEnableUiUri = BRINDLE_URI "#enableui";
inline constexpr const char* kDisableUiUri = BRINDLE_URI "#disableui";
/// The engine's analyser message on the notify port, and the keys of its properties.
inline constexpr const char* kMessageUri = BRINDLE_URI "#brindle";
inline constexpr const char* kSampleRateUri = BRINDLE_URI "#samplerate";
inline constexpr const char* kPlotIdUri = BRINDLE_URI "#plot_id";
inline constexpr const char* kPlotArrayUri = BRINDLE_URI "#plot_array";

/// Looks that a host requests from plugin editors (options of type Bool).
inline constexpr const char* kStyleBoxyUri = "http://ardour.org/lv2/theme/#styleBoxy";
inline constexpr const char* kStyleFlatUri = "http://ardour.org/lv2/theme/#styleFlat";

/// Analyser: bins in a row (20 Hz to 20480 Hz, 24 per octave) and rows in the ring buffer.
inline constexpr int kPlotBins = 241;
inline constexpr int kPlotRows = 128;

inline constexpr int kBandCount = 8;
inline constexpr int kSectionCount = 2;

/// The five controls of a band or section, as offsets from its first port.
enum Control : uint32_t { kEnable, kType, kGain, kFrequency, kQ, kControlCount };

inline constexpr uint32_t kControlPort = 0;   ///< atom sequence in: the editor's requests
inline constexpr uint32_t kNotifyPort = 1;    ///< atom sequence out: analyser rows
inline constexpr uint32_t kTrimPort = 52;     ///< dB
inline constexpr uint32_t kMeterInPort = 53;  ///< held mean-square power, linear
inline constexpr uint32_t kMeterOutPort = 54;
inline constexpr uint32_t kFirstAudioPort = 55;
inline constexpr uint32_t kMonoPortCount = 57;  ///< 55 in, 56 out
inline constexpr uint32_t kStereoPortCount =
    59;  ///< 55 left in, 56 left out, 57 right in, 58 right out

/// A strip is a band or a section: 0 to 7 are bands 1 to 8, 8 and 9 are sections A and B.
inline constexpr int kStripCount = kBandCount + kSectionCount;
constexpr bool is_band(int strip) {
    return strip < kBandCount;
}

/// First port (enable) of a strip; its other ports follow in the order of `Control`.
constexpr uint32_t strip_port(int strip) {
    return 2u + kControlCount * static_cast<uint32_t>(strip);
}
/// First port of band 0 to 7.
constexpr uint32_t band_port(int band) {
    return strip_port(band);
}
/// First port of section 0 (A) or 1 (B).
constexpr uint32_t section_port(int section) {
    return strip_port(kBandCount + section);
}

}  // namespace brindle
