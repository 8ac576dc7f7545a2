// SPDX-License-Identifier: ISC
#include "graph/graph_drawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

#include "contract/ports.h"
#include "gl/GLPoint.h"
#include "gl/drawing.h"
#include "gl/gl.h"
#include "gl/primitives.h"
#include "graph/scales.h"

namespace brindle {
namespace {

/// The horizontal grid lines and their labels.
struct Level {
    float db;
    const char* label;
};
constexpr Level kLevels[] = {{18, "18"}, {15, "15"},  {12, "12"},  {9, "9"},
                             {6, "6"},   {3, "3"},    {-3, "3"},   {-6, "6"},
                             {-9, "9"},  {-12, "12"}, {-15, "15"}, {-18, "18"}};

/// The frequency scale's lines and their labels.
struct Frequency {
    float hz;
    const char* label;
};
/// The lines between them have no label.
constexpr float kMinorFrequencies[] = {30,  40,  60,  70,   80,   90,   300,  400,  600,
                                       700, 800, 900, 3000, 4000, 6000, 7000, 8000, 9000};
constexpr Frequency kFrequencies[] = {{20, "20"},     {50, "50"},    {100, "100"}, {200, "200"},
                                      {500, "500"},   {1000, "1k"},  {2000, "2k"}, {5000, "5k"},
                                      {10000, "10k"}, {20000, "20k"}};

constexpr GLColor kClearBlack{0.0f, 0.0f, 0.0f, 0.0f};

/// Emits a rectangle between glBegin(GL_QUADS) and glEnd.
void EmitRect(float left, float bottom, float right, float top) {
    glVertex2f(left, top);
    glVertex2f(right, top);
    glVertex2f(right, bottom);
    glVertex2f(left, bottom);
}
void EmitKey(float x, float y, float hw, float hh) {
    EmitRect(x - hw, y - hh, x + hw, y + hh);
}

/// Emit a rectangle that fades from one edge to the opposite one.
void EmitFadeX(float from, float to, float hh) {
    kBlack.Apply();
    glVertex2f(from, hh);
    glVertex2f(from, -hh);
    kClearBlack.Apply();
    glVertex2f(to, -hh);
    glVertex2f(to, hh);
}
void EmitFadeY(const GLColor& color, float from, float to, float hw) {
    color.Apply();
    glVertex2f(-hw, from);
    glVertex2f(hw, from);
    color.ApplyFaded(0.0f);
    glVertex2f(hw, to);
    glVertex2f(-hw, to);
}

bool IsBlackKey(int semitonesAboveDSharp) {
    constexpr std::array kBlack = {true,  false, false, true,  false, true,
                                   false, true,  false, false, true,  false};
    return kBlack[static_cast<size_t>(semitonesAboveDSharp % 12)];
}

void EmitWhiteKeys(const GraphLook& look) {
    constexpr float kKeysOfOctave = 1.7142857f;  // twelve semitones for seven keys
    constexpr int kKeys = 70;
    const float pitch = 7.685f * look.m * kKeysOfOctave;
    const float y = -68.0f * look.m - look.hh;
    const float hw = 3.0f * kKeysOfOctave * look.m;
    const float hh = 10.0f * look.m;
    const float border = 1.5f * look.m;
    for (int key = 0; key < kKeys; ++key) {
        const float x = pitch / 2.0f - 5.0f * look.m - look.hw + static_cast<float>(key) * pitch;
        look.foreground.ApplyDimmed(0.65f);
        EmitKey(x, y, hw, hh);
        look.foreground.ApplyDimmed(0.5f);
        EmitKey(x, y, hw - border, hh - border);
    }
}

void EmitBlackKeys(const GraphLook& look) {
    constexpr int kSemitones = 120;
    const float pitch = 7.685f * look.m;
    const float y = -63.0f * look.m - look.hh;
    const float hw = 3.5f * look.m;
    const float hh = 5.0f * look.m;
    const float border = 1.5f * look.m;
    for (int u = 0; u < kSemitones; ++u) {
        if (!IsBlackKey(u)) continue;
        const float x = hw / 2.0f - 5.0f * look.m - look.hw + static_cast<float>(u) * pitch;
        look.foreground.ApplyDimmed(0.15f);
        EmitKey(x, y, hw, hh);
        look.background.Apply();
        EmitKey(x, y, hw - border, hh - border);
    }
}

/// Draws a strip between two heights at each point, given as shares of the curve's height there.
void DrawFillStrip(std::span<const float> heights, float x0, float dx, float lowerShare,
                   float lowerBrightness, float upperShare, float upperBrightness) {
    const OpaqueScope opaque;
    const PlainPrimitives strip(GL_QUAD_STRIP);
    float x = x0;
    for (const float y : heights) {
        kSage.ApplyDimmed(lowerBrightness);
        glVertex2f(x, lowerShare * y);
        kSage.ApplyDimmed(upperBrightness);
        glVertex2f(x, upperShare * y);
        x += dx;
    }
}

/// Emits a piece of a line between glBegin(GL_LINES) and glEnd, extended beyond its start and end:
/// otherwise the smoothed ends of neighbouring pieces leave a seam.
void EmitPiece(GLPoint from, GLPoint to, float beyondStart, float beyondEnd) {
    const float length = std::hypot(to.x - from.x, to.y - from.y);
    const GLPoint along = {(to.x - from.x) / length, (to.y - from.y) / length};
    glVertex2f(from.x - along.x * beyondStart, from.y - along.y * beyondStart);
    glVertex2f(to.x + along.x * beyondEnd, to.y + along.y * beyondEnd);
}

float PlaceOf(float hz, const GraphLook& look) {
    return (2.0f * PositionOfBandHz(hz) - 1.0f) * look.hw;
}

/// Draws the frequency scale's lines.
void DrawFrequencyLines(const GraphLook& look, const GLColor& color, float alpha,
                        float minorAlpha) {
    const PlainPrimitives quads(GL_QUADS);
    const auto emit = [&look](float hz) {
        const float x = PlaceOf(hz, look);
        EmitRect(std::max(x - look.m, -look.hw), -look.hh, std::min(x + look.m, look.hw), look.hh);
    };
    color.ApplyFaded(alpha);
    for (const Frequency& frequency : kFrequencies) emit(frequency.hz);
    color.ApplyFaded(minorAlpha);
    for (const float hz : kMinorFrequencies) emit(hz);
}

/// Clips drawing to heights between -hh and hh during a scope.
struct VerticalClip {
    explicit VerticalClip(float hh) {
        const double below[] = {0.0, 1.0, 0.0, static_cast<double>(hh)};
        const double above[] = {0.0, -1.0, 0.0, static_cast<double>(hh)};
        glClipPlane(GL_CLIP_PLANE0, below);
        glClipPlane(GL_CLIP_PLANE1, above);
        glEnable(GL_CLIP_PLANE0);
        glEnable(GL_CLIP_PLANE1);
    }
    ~VerticalClip() {
        glDisable(GL_CLIP_PLANE0);
        glDisable(GL_CLIP_PLANE1);
    }
    VerticalClip(const VerticalClip&) = delete;
    VerticalClip& operator=(const VerticalClip&) = delete;
};

/// A texture of opacities during a scope. It changes with every frame, so none has to be freed
/// later.
class OpacityTexture {
  public:
    OpacityTexture(const uint8_t* texels, int width, int height) {
        glGenTextures(1, &name_);
        glBindTexture(GL_TEXTURE_2D, name_);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_ALPHA, width, height, 0, GL_ALPHA, GL_UNSIGNED_BYTE,
                     texels);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    }
    ~OpacityTexture() { glDeleteTextures(1, &name_); }
    OpacityTexture(const OpacityTexture&) = delete;
    OpacityTexture& operator=(const OpacityTexture&) = delete;

  private:
    GLuint name_ = 0;
};

/// Emits the image, from the centre of its first column to that of its last, between two heights
/// with their rows. Row 0 is the newest row's lower edge.
void EmitSpectrum(float hw, float bottom, float firstRow, float top, float lastRow) {
    constexpr float kFirst = 0.5f / kPlotBins;
    constexpr float kLast = 1.0f - kFirst;
    const float x = hw * (1.0f - 2.0f * kFirst);
    glTexCoord2f(kFirst, lastRow / kRowsDrawn);
    glVertex2f(-x, top);
    glTexCoord2f(kLast, lastRow / kRowsDrawn);
    glVertex2f(x, top);
    glTexCoord2f(kLast, firstRow / kRowsDrawn);
    glVertex2f(x, bottom);
    glTexCoord2f(kFirst, firstRow / kRowsDrawn);
    glVertex2f(-x, bottom);
}

void DrawSpectrumRows(const SpectrumImage& image, const GraphLook& look) {
    if (std::ranges::count(image, 0) == static_cast<std::ptrdiff_t>(image.size())) return;
    const float rise = 0.92f * look.m;
    const float newest = -56.0f * look.m - look.hh;
    const OpacityTexture texture(image.data(), kPlotBins, kRowsDrawn);
    look.foreground.Apply();
    glBegin(GL_QUADS);
    EmitSpectrum(look.hw, newest - look.m, 0.5f, newest, 0.5f);  // the newest row is taller
    EmitSpectrum(look.hw, newest, 0.5f, newest + rise * (kRowsDrawn - 0.5f), kRowsDrawn);
    glEnd();
}

}  // namespace

void DrawKeyboard(const GraphLook& look) {
    const PlainPrimitives quads(GL_QUADS);
    EmitWhiteKeys(look);
    EmitBlackKeys(look);
}

void DrawLevelLines(const GraphLook& look) {
    look.foreground.ApplyFaded(0.4f);
    const PlainPrimitives quads(GL_QUADS);
    for (const Level& level : kLevels) {
        const float y = level.db * look.hh / kGainRangeDb;
        EmitRect(-look.hw, y - 2.0f * look.m, look.hw, y);
    }
}

void DrawLevelLabels(const GLResources* resources, const GraphLook& look) {
    const float glyph = 8.0f * look.m;
    const float gap = 6.0f * look.m;
    const auto draw = [&](const Level& level, float x, int alignment) {
        const MatrixScope matrix;
        glTranslatef(x, level.db * look.hh / kGainRangeDb, 0.0f);
        glScalef(glyph, glyph, 1.0f);
        DrawText(resources, level.label, alignment);
    };
    look.foreground.ApplyFaded(0.6f);
    for (const Level& level : kLevels) {
        draw(level, -look.hw - gap, kAlignRight);
        draw(level, look.hw + gap, kAlignLeft);
    }
}

void DrawFrequencyScale(const GLResources* resources, const GraphLook& look) {
    DrawFrequencyLines(look, look.foreground, 0.25f, 0.1f);
    look.foreground.ApplyFaded(0.75f);
    for (const Frequency& frequency : kFrequencies) {
        const MatrixScope matrix;
        // Above the edge shading, which would cover parts of the first and the last number.
        glTranslatef(PlaceOf(frequency.hz, look), look.hh + 21.0f * look.m, 0.0f);
        glScalef(7.0f * look.m, 7.0f * look.m, 1.0f);
        DrawText(resources, frequency.label, kAlignCentre);
    }
}

void DrawResponse(std::span<const float> heights, const GraphLook& look) {
    const VerticalClip clip(look.hh - look.m);
    const float dx = 2.0f * look.hw / static_cast<float>(heights.size());
    const float x0 = dx / 2.0f - look.hw;
    kSage.Apply();  // opaque, so that the fill is drawn without blending
    // Brightest at 0.7 of the height, darker towards the zero line and the curve.
    DrawFillStrip(heights, x0, dx, 0.0f, 0.3f, 0.7f, 1.5f);
    DrawFillStrip(heights, x0, dx, 0.7f, 1.5f, 1.0f, 0.3f);
    DrawFrequencyLines(look, kBlack, 0.2f, 0.1f);

    glLineWidth(6.0f);
    look.foreground.Apply();
    {
        const PlainPrimitives line(GL_LINES);
        // The line ends one point before the filled area.
        const size_t last = heights.size() - 3;
        for (size_t i = 0; i <= last; ++i) {
            const float x = x0 + static_cast<float>(i) * dx;
            EmitPiece({x, heights[i]}, {x + dx, heights[i + 1]}, i > 0 ? look.m : 0.0f,
                      i < last ? look.m : 0.0f);
        }
    }
    glLineWidth(1.0f);
}

void DrawEdgeShading(const GraphLook& look) {
    const float hh = look.hh + 0.05f;
    const float edge = look.hh + 0.01f;
    const PlainPrimitives quads(GL_QUADS);
    EmitFadeX(-look.hw, -look.hw + 0.02f, hh);
    EmitFadeX(look.hw, look.hw - 0.02f, hh);
    EmitFadeY(kBlack, edge, edge / 2.0f, look.hw);
    EmitFadeY(kBlack, -edge, -edge / 2.0f, look.hw);
}

SpectrumImage MakeSpectrumImage(const SpectrumHistory& history) {
    SpectrumImage image;
    auto texel = image.begin();
    for (int age = 0; age < kRowsDrawn; ++age) {
        const int row = (history.newest - age + kPlotRows) % kPlotRows;
        texel = std::ranges::copy(history.opacities[static_cast<size_t>(row)], texel).out;
    }
    return image;
}

void DrawSpectrum(const SpectrumImage& image, const GraphLook& look) {
    DrawSpectrumRows(image, look);
    const PlainPrimitives quads(GL_QUADS);
    EmitFadeY(look.background, -look.hh - 12.0f * look.m, -look.hh - 22.0f * look.m, look.hw);
}

void DrawRing(float radius, float thickness) {
    constexpr int kCorners = 48;
    const PlainPrimitives strip(GL_QUAD_STRIP);
    for (int i = 0; i <= kCorners; ++i) {
        const float angle = 2.0f * std::numbers::pi_v<float> * static_cast<float>(i) / kCorners;
        const float cosine = std::cos(angle);
        const float sine = std::sin(angle);
        glVertex2f((radius - thickness) * cosine, (radius - thickness) * sine);
        glVertex2f(radius * cosine, radius * sine);
    }
}

void DrawMarker(float size) {
    constexpr float kInnerRadius = 0.28867513f;  // of a triangle with side 1
    const float hw = size / 2.0f;
    const float top = size * kInnerRadius;
    // The smoothed outline softens the triangle's edges.
    for (const GLenum mode : {GLenum{GL_TRIANGLES}, GLenum{GL_LINE_LOOP}}) {
        const PlainPrimitives triangle(mode);
        glVertex2f(-hw, top);
        glVertex2f(hw, top);
        glVertex2f(0.0f, -2.0f * top);
    }
}

}  // namespace brindle
