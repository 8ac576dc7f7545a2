// SPDX-License-Identifier: ISC
/// The parts of the graph's picture, each drawn around the graph's centre in its parent's units.
/// Texturing is on before and after each of them. UI thread, with the editor's GL context current.
#pragma once

#include <cstddef>
#include <span>

#include "gl/GLColor.h"
#include "graph/spectrum_history.h"

namespace brindle {

class GLResources;

/// What all parts are drawn with.
struct GraphLook {
    float hw;  ///< half width and height of the area that the curve is drawn in
    float hh;
    float m;  ///< page units of one design pixel
    GLColor foreground;
    GLColor background;
};

/// The pitch reference under the graph: the black key at position u = 0 to 119 stands where the
/// axis has the note u semitones above D#0 (19.45 Hz); white keys fill the same width evenly.
void DrawKeyboard(const GraphLook& look);

/// Lines at each 3 dB, without the zero line.
void DrawLevelLines(const GraphLook& look);
/// Their numbers without sign, on both sides.
void DrawLevelLabels(const GLResources* resources, const GraphLook& look);

/// The frequency scale: lines in steps of 1, 2, 5 behind the curve and their numbers in Hz above
/// the graph.
void DrawFrequencyScale(const GLResources* resources, const GraphLook& look);

/// The curve through `heights`, spread evenly over the width, and the area between it and the
/// middle, both clipped just inside the upper and lower edge.
void DrawResponse(std::span<const float> heights, const GraphLook& look);

/// Darkens the graph towards its four edges.
void DrawEdgeShading(const GraphLook& look);

/// The last rows of the analyser between graph and keyboard, the newest at the bottom: opaque at
/// 0 dB, invisible from -40 dB downwards.
void DrawSpectrum(const SpectrumHistory& history, const GraphLook& look);

/// A circle line around the origin in the current colour.
void DrawRing(float radius, float thickness);

/// A triangle in the current colour that points down, its three sides `size` long and its centre,
/// the same distance from all of them, at the origin.
void DrawMarker(float size);

}  // namespace brindle
