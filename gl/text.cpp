// SPDX-License-Identifier: ISC
#include <optional>

#include "gl/GLPoint.h"
#include "gl/drawing.h"
#include "gl/primitives.h"
#include "gl/settings.h"

namespace brindle {
namespace {

/// Index of a character's glyph; `kGlyphCount` or more if it has none.
size_t GlyphIndex(char character) {
    return static_cast<uint8_t>(static_cast<uint8_t>(character) - kFirstGlyph);
}

/// Calls `emit` for each glyph of a text with the glyph and the place of its middle, between
/// glBegin and glEnd. Glyphs that share a texture are drawn at once.
template <typename Emit>
void EmitGlyphs(const GLResources* resources, const char* text, int alignment, Emit emit) {
    if (resources == nullptr || text == nullptr) return;
    const float width = TextWidth(text);
    float x = alignment == kAlignCentre ? -0.5f * width : alignment == kAlignRight ? -width : 0.0f;
    std::optional<TexturedQuads> quads;
    GLuint bound = 0;
    for (; *text != '\0'; ++text) {
        const size_t k = GlyphIndex(*text);
        if (k >= kGlyphCount) return;
        const GLResources::Glyph& glyph = resources->glyphs[k];
        if (!quads || glyph.texture != bound) quads.emplace(bound = glyph.texture);
        emit(glyph, x + glyph.halfAdvance);
        x += glyph.advance;
    }
}

GLRect GlyphSquare(float x, float y) {
    return {x - 1.0f, y - 1.0f, x + 1.0f, y + 1.0f};
}

}  // namespace

float TextWidth(const char* text) {
    constexpr int kLongest = 32767;
    if (text == nullptr) return 0.0f;
    float width = 0.0f;
    for (int i = 0; i < kLongest && text[i] != '\0'; ++i) {
        const size_t k = GlyphIndex(text[i]);
        if (k < kGlyphCount) width += kGlyphAdvances[k];
    }
    return width;
}

void DrawGlyph(const GLResources* resources, size_t index) {
    if (resources == nullptr || index >= kGlyphCount) return;
    const TexturedQuads quads(resources->glyphs[index].texture);
    EmitQuad(GlyphSquare(0.0f, 0.0f), resources->glyphs[index].picture);
}

void DrawText(const GLResources* resources, const char* text, int alignment) {
    EmitGlyphs(resources, text, alignment, [](const GLResources::Glyph& glyph, float x) {
        EmitQuad(GlyphSquare(x, 0.0f), glyph.picture);
    });
}

void DrawTextOutline(const GLResources* resources, const char* text, int alignment,
                     float distance) {
    constexpr float kDiagonal = 0.7f;
    static constexpr GLPoint kPlaces[] = {
        {1.0f, 0.0f},  {kDiagonal, kDiagonal},   {0.0f, 1.0f},  {-kDiagonal, kDiagonal},
        {-1.0f, 0.0f}, {-kDiagonal, -kDiagonal}, {0.0f, -1.0f}, {kDiagonal, -kDiagonal}};
    EmitGlyphs(resources, text, alignment, [distance](const GLResources::Glyph& glyph, float x) {
        for (const GLPoint& place : kPlaces) {
            EmitQuad(GlyphSquare(x + distance * place.x, distance * place.y), glyph.picture);
        }
    });
}

void DrawTextShadow(const GLResources* resources, const char* text, int alignment) {
    glTranslatef(0.1f, -0.1f, 0.0f);
    shadeColor.ApplyFaded(0.6f);
    DrawText(resources, text, alignment);
}

}  // namespace brindle
