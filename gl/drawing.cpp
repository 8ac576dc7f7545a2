// SPDX-License-Identifier: ISC
#include "gl/drawing.h"

#include <algorithm>
#include <span>

#include "gl/primitives.h"
#include "gl/settings.h"

namespace brindle {
namespace {

/// A corner of a rectangle: its direction from the middle, and its part of the texture.
struct Corner {
    float x;
    float y;
    GLRect texture;
};
constexpr Corner kUpperLeft = {-1.0f, 1.0f, {0.0f, 0.5f, 0.5f, 1.0f}};
constexpr Corner kUpperRight = {1.0f, 1.0f, {0.5f, 0.5f, 1.0f, 1.0f}};
constexpr Corner kLowerRight = {1.0f, -1.0f, {0.5f, 0.0f, 1.0f, 0.5f}};
constexpr Corner kLowerLeft = {-1.0f, -1.0f, {0.0f, 0.0f, 0.5f, 0.5f}};
constexpr Corner kCorners[] = {kUpperLeft, kUpperRight, kLowerRight, kLowerLeft};

/// The opaque middle of the disc. Small straight parts are drawn with it, in the corners' draw
/// call.
constexpr GLRect kMiddleOfTexture = {0.5f, 0.5f, 0.5f, 0.5f};

GLColor Faded(const GLColor& color, float alpha) {
    GLColor faded = color;
    faded.ScaleAlpha(alpha);
    return faded;
}

/// The square with side `r` in a corner of a rectangle.
GLRect CornerArea(const Corner& corner, float hw, float hh, float r) {
    const float left = corner.x < 0.0f ? -hw : hw - r;
    const float bottom = corner.y < 0.0f ? -hh : hh - r;
    return {left, bottom, left + r, bottom + r};
}

/// An inner edge of a sunken shape: shade at the upper edge, light at the lower.
struct InnerEdge {
    GLRect corners[2];
    GLRect middle;
    const Corner& left;
    const Corner& right;
    Fade fade;
};
InnerEdge MakeInnerEdge(float hw, float hh, float r, bool upper, const GLColor& edge) {
    const Corner& left = upper ? kUpperLeft : kLowerLeft;
    const Corner& right = upper ? kUpperRight : kLowerRight;
    const GLColor inside = Faded(edge, 0.0f);
    const float bottom = upper ? hh - r : -hh;
    return {{CornerArea(left, hw, hh, r), CornerArea(right, hw, hh, r)},
            {-hw + r, bottom, hw - r, bottom + r},
            left,
            right,
            upper ? Fade{edge, inside} : Fade{inside, edge}};
}

}  // namespace

void DrawTexture(GLuint texture, float hw, float hh) {
    const TexturedQuads quads(texture);
    EmitQuad({-hw, -hh, hw, hh});
}

void DrawImage(GLResources* resources, uint32_t number) {
    if (resources != nullptr) DrawTexture(resources->Image(number), 1.0f, 1.0f);
}

void DrawRect(float hw, float hh) {
    const PlainPrimitives quads;
    EmitQuad({-hw, -hh, hw, hh});
}

void DrawDisc(const GLResources* resources, float hw, float hh) {
    if (resources != nullptr) DrawTexture(resources->mipTexture160, hw, hh);
}

void DrawBar(const GLResources* resources, float hw, float hh) {
    if (resources == nullptr) return;
    {
        const TexturedQuads quads(resources->mipTexture150);
        EmitQuad({-hw, -hh, hh - hw, hh}, {0.0f, 0.0f, 0.5f, 1.0f});
        EmitQuad({hw - hh, -hh, hw, hh}, {0.5f, 0.0f, 1.0f, 1.0f});
    }
    const PlainPrimitives quads;
    EmitQuad({hh - hw, -hh, hw - hh, hh});
}

void DrawRoundRect(const GLResources* resources, float hw, float hh, float r, float rim) {
    DrawFramedBox(resources, 0, hw, hh, r, rim);
}

void DrawFramedBox(const GLResources* resources, int style, float hw, float hh, float r,
                   float rim) {
    if (resources == nullptr) return;
    const auto isOpen = [style](const Corner& corner) {
        return (style == 1 && corner.y > 0.0f) || (style == 2 && corner.y < 0.0f) ||
               (style == 3 && corner.x < 0.0f) || (style == 4 && corner.x > 0.0f);
    };
    const float top = style == 1 ? hh - r : hh;
    const float bottom = style == 2 ? r - hh : -hh;
    const float side = std::min(r, rim);
    const bool isRim = 2.0f * rim < top - bottom;
    const auto emitStraightParts = [&](const GLRect& texture) {
        if (!isRim) EmitQuad({-hw + r, bottom, hw - r, top}, texture);
        if (isRim && style != 1) EmitQuad({-hw + r, top - rim, hw - r, top}, texture);
        if (isRim && style != 2) EmitQuad({-hw + r, bottom, hw - r, bottom + rim}, texture);
        if (style != 3) EmitQuad({-hw, -hh + r, -hw + side, hh - r}, texture);
        if (style != 4) EmitQuad({hw - side, -hh + r, hw, hh - r}, texture);
    };
    {
        const TexturedQuads quads(resources->mipTexture150);
        for (const Corner& corner : kCorners) {
            if (!isOpen(corner)) EmitQuad(CornerArea(corner, hw, hh, r), corner.texture);
        }
        if (isRim) emitStraightParts(kMiddleOfTexture);
    }
    if (isRim) return;
    const OpaqueScope opaque;
    const PlainPrimitives quads;
    emitStraightParts(kWholeTexture);
}

void DrawRoundFrame(const GLResources* resources, float hw, float hh, float r) {
    if (resources == nullptr) return;
    {
        const TexturedQuads quads(resources->mipTexture318);
        for (const Corner& corner : kCorners) {
            EmitQuad(CornerArea(corner, hw, hh, r), corner.texture);
        }
    }
    const float thickness = r * 0.25f;
    const PlainPrimitives quads;
    EmitQuad({-hw + r, hh - thickness, hw - r, hh});
    EmitQuad({-hw + r, -hh, hw - r, -hh + thickness});
    EmitQuad({-hw, -hh + r, -hw + thickness, hh - r});
    EmitQuad({hw - thickness, -hh + r, hw, hh - r});
}

void DrawWell(const GLResources* resources, float hw, float hh, float r, const GLColor& color) {
    if (resources == nullptr) return;
    const float d = resources->interfaceScale;
    glTranslatef(d, -d, 0.0f);
    shadeColor.ApplyFaded(0.2f);
    DrawRoundRect(resources, hw, hh, r);
    glTranslatef(-2.0f * d, 2.0f * d, 0.0f);
    lightColor.ApplyFaded(0.2f);
    DrawRoundRect(resources, hw, hh, r);
    glTranslatef(d, -d, 0.0f);
    color.Apply();
    DrawRoundRect(resources, hw, hh, r);
}

void DrawShadow(const GLResources* resources, float hw, float hh, float r, bool lower) {
    if (resources == nullptr || themeFlat) return;
    const float d = 2.0f * resources->interfaceScale;
    const InnerEdge edges[] = {
        MakeInnerEdge(hw - d, hh - d, r, true, Faded(shadeColor, 0.4f)),
        MakeInnerEdge(hw - d, hh - d, r, false, Faded(lightColor, 0.3f)),
    };
    const std::span drawn(edges, lower ? 2 : 1);
    const TexturedQuads quads(resources->mipTexture150);
    for (const InnerEdge& edge : drawn) {
        EmitQuad(edge.corners[0], edge.left.texture, &edge.fade);
        EmitQuad(edge.corners[1], edge.right.texture, &edge.fade);
        EmitQuad(edge.middle, kMiddleOfTexture, &edge.fade);
    }
}

void DrawGloss(const GLResources* resources, float hw, float hh) {
    if (resources == nullptr || themeFlat) return;
    const Fade fade = {Faded(shadeColor, 0.5f), Faded(shadeColor, 0.0f)};
    const TexturedQuads quads(resources->mipTexture160);
    EmitQuad({-0.8f * hw, 0.1f * hh, 0.8f * hw, 0.8f * hh}, kWholeTexture, &fade);
}

}  // namespace brindle
