// SPDX-License-Identifier: ISC
#include "gl/GLView_Toggle.h"

#include "gl/look.h"
#include "gl/settings.h"

namespace brindle {
namespace {

/// Size of a lit lamp's halo picture in half extents, and the share of the picture beyond which it
/// is transparent.
constexpr GLPoint kGlow = {1.12f, 1.5f};
constexpr float kGlowRim = 0.98f;

/// Brightens the lamp towards its middle.
void DrawGlow(const Look& look, const GLColor& color, float hw, float hh) {
    constexpr GLPoint kDiscs[] = {{0.8f, 0.8f}, {0.7f, 0.6f}, {0.6f, 0.5f}, {0.5f, 0.4f}};
    color.ApplyFaded(0.4f);
    for (const GLPoint& disc : kDiscs) DrawDisc(look.resources, disc.x * hw, disc.y * hh);
    Lightened(color, 0.75f).ApplyFaded(0.85f);
    DrawDisc(look.resources, 0.8f * hw, 0.75f * hh);
}

/// Draws what the face lies on: lit while the lamp is on.
void DrawGround(const Look& look, const GLColor& color, bool on, float hw, float hh) {
    color.ApplyDimmed(on ? 0.8f : 0.0f);
    DrawRoundRect(look.resources, 0.9f * hw, 0.9f * hh, look.Corner(0.9f * hh));
}

/// The text is white while the lamp is on and grey while it is off. The dark outline separates it
/// from a lit face, the highlight makes up for the gloss.
void DrawLampText(const Look& look, const char* text, float size, bool on) {
    const MatrixScope matrix;
    glScalef(size, size, 1.0f);
    shadeColor.ApplyFaded(on ? 0.6f : 0.25f);
    DrawTextOutline(look.resources, text, kAlignCentre, 0.22f);
    kWhite.ApplyFaded(0.95f);
    DrawText(look.resources, text, kAlignCentre);
    (on ? kWhite : kBlack).ApplyFaded(on ? 0.7f : 0.4f);
    DrawText(look.resources, text, kAlignCentre);
}

}  // namespace

GLView_Toggle::GLView_Toggle() {
    color = kGreen;
    labelSize = 10.0f;
    pointerShape = PointerShape::Hand;
}

bool GLView_Toggle::IsOn() {
    return GetParameter(port) != 0.0f;
}

void GLView_Toggle::SetText(const char* newText) {
    text = newText != nullptr ? newText : "";
    Redraw(Layer::Main);
}

void GLView_Toggle::ParameterChanged(uint32_t index) {
    if (index == port) Redraw(Layer::Back);
    GLView::ParameterChanged(index);
}

GLRect GLView_Toggle::DrawnArea() {
    const GLPoint reach = {kGlowRim * kGlow.x * hw, kGlowRim * kGlow.y * hh};
    return GLView::DrawnArea().JoinedWith({x - reach.x, y - reach.y, x + reach.x, y + reach.y});
}

void GLView_Toggle::MouseDown(GLPoint /*point*/, GLPoint /*pagePoint*/) {
    const float value = IsOn() ? 0.0f : 1.0f;
    gesture.Begin();
    writer.Write(port, value);
    SetCaptured(true);
}

void GLView_Toggle::MouseUp(GLPoint /*point*/) {
    SetCaptured(false);
}

void GLView_Toggle::SetCaptured(bool on) {
    GLView::SetCaptured(on);
    if (!on) gesture.End();
}

void GLView_Toggle::DrawBack() {
    const Look look(*this);
    Enter();
    if (IsOn() && look.enabled && !look.flat) {
        color.ApplyFaded(0.4f);
        DrawTexture(look.resources != nullptr ? look.resources->defaultImage : 0, kGlow.x * hw,
                    kGlow.y * hh);
    }
    DrawKey(look, hw, hh);
    DrawGround(look, look.enabled ? color : kGrey, IsOn(), hw, hh);
    DrawChildrenBack();
}

void GLView_Toggle::Draw() {
    const Look look(*this);
    const bool on = IsOn();
    Enter();
    {
        const MatrixScope matrix;
        if (look.captured) glScalef((hw - look.s) / hw, (hh - look.s) / hh, 1.0f);
        GLColor face = look.enabled ? color : kGrey;
        if (on) DrawGlow(look, face, hw, hh);
        face.ScaleAlpha(0.3f);
        DrawWell(look.resources, 0.9f * hw, 0.9f * hh, look.Corner(0.9f * hh), face);
        if (!text.empty()) DrawLampText(look, text.c_str(), look.s * labelSize, on);
        // The gloss is made for round faces; on a wide face it is as flat as the face.
        glScalef(1.0f, hh / hw, 1.0f);
        DrawGloss(look.resources, hw, hw);
    }
    DrawChildren();
}

}  // namespace brindle
