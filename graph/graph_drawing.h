// SPDX-License-Identifier: ISC
/// Draws the parts of the graph, each around the graph's centre in its parent's units. Texturing is
/// on before and after each routine. UI thread, with the editor's GL context current.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "gl/GLColor.h"
#include "graph/spectrum_history.h"

namespace brindle {

class GLResources;

/// Sizes and colours that all parts share.
struct GraphLook {
    float hw;  ///< half width and height of the curve's area
    float hh;
    float m;  ///< page units of one design pixel
    GLColor foreground;
    GLColor background;
};

/// The pitch reference below the graph: the black key at position u (0 to 119) is where the axis
/// has the note u semitones above D#0 (19.45 Hz); white keys divide the same width evenly.
void DrawKeyboard(const GraphLook& look);

/// Lines every 3 dB, except at 0 dB.
void DrawLevelLines(const GraphLook& look);
/// The numbers of these lines, without sign, on both sides.
void DrawLevelLabels(const GLResources* resources, const GraphLook& look);

/// The frequency scale behind the curve: strong lines in steps of 1, 2, 5 with their numbers in Hz
/// above the graph, and faint lines between them.
void DrawFrequencyScale(const GLResources* resources, const GraphLook& look);

/// The curve through `heights`, three or more evenly spaced over the width, and the filled area
/// between curve and zero line with the frequency scale's lines on it, all clipped just inside the
/// upper and lower edge.
void DrawResponse(std::span<const float> heights, const GraphLook& look);

/// Darkens the graph towards its four edges.
void DrawEdgeShading(const GraphLook& look);

/// The newest analyser rows as 8-bit opacities, newest first.
constexpr int kRowsDrawn = 48;
using SpectrumImage = std::array<uint8_t, size_t{kRowsDrawn} * kPlotBins>;
SpectrumImage MakeSpectrumImage(const SpectrumHistory& history);
/// Draws these rows between graph and keyboard, the newest at the bottom: opaque at 0 dB,
/// invisible at -40 dB and below.
void DrawSpectrum(const SpectrumImage& image, const GraphLook& look);

/// A circle around the origin in the current colour.
void DrawRing(float radius, float thickness);

/// A downward equilateral triangle in the current colour, with sides of `size`, centred on the
/// origin.
void DrawMarker(float size);

}  // namespace brindle
