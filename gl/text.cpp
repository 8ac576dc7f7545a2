// SPDX-License-Identifier: ISC
#include "gl/drawing.h"
#include "gl/settings.h"

namespace brindle {
namespace {

/// Index of a character's glyph; `kGlyphCount` or more if it has none.
size_t GlyphIndex(char character) {
    return static_cast<uint8_t>(static_cast<uint8_t>(character) - kFirstGlyph);
}

/// Calls `draw` with the texture of each glyph of a text, the origin at the glyph's place.
template <typename Draw>
void ForEachGlyph(const GLResources* resources, const char* text, int alignment, Draw draw) {
    if (resources == nullptr || text == nullptr || *text == '\0') return;
    const MatrixScope matrix;
    if (alignment == kAlignCentre) {
        glTranslatef(-TextWidth(text) * 0.5f, 0.0f, 0.0f);
    } else if (alignment == kAlignRight) {
        glTranslatef(-TextWidth(text), 0.0f, 0.0f);
    }
    for (; *text != '\0'; ++text) {
        const size_t k = GlyphIndex(*text);
        if (k >= kGlyphCount) return;
        const float halfAdvance = resources->glyphs[k].halfAdvance;
        glTranslatef(halfAdvance, 0.0f, 0.0f);
        draw(resources->glyphs[k].texture);
        glTranslatef(halfAdvance, 0.0f, 0.0f);
    }
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
    if (resources != nullptr && index < kGlyphCount) {
        DrawTexture(resources->glyphs[index].texture, 1.0f, 1.0f);
    }
}

void DrawText(const GLResources* resources, const char* text, int alignment) {
    ForEachGlyph(resources, text, alignment,
                 [](GLuint texture) { DrawTexture(texture, 1.0f, 1.0f); });
}

void DrawTextOutline(const GLResources* resources, const char* text, int alignment,
                     float distance) {
    ForEachGlyph(resources, text, alignment,
                 [distance](GLuint texture) { DrawTextureAround(texture, distance); });
}

void DrawTextShadow(const GLResources* resources, const char* text, int alignment) {
    glTranslatef(0.1f, -0.1f, 0.0f);
    shadeColor.ApplyFaded(0.6f);
    DrawText(resources, text, alignment);
}

}  // namespace brindle
