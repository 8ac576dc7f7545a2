// SPDX-License-Identifier: ISC
#include "gl/look.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "gl/settings.h"

namespace brindle {
namespace {

constexpr GLColor kDisplayColor{0.05f, 0.055f, 0.06f};
constexpr GLColor kKeyColor{0.215f, 0.22f, 0.225f};
constexpr GLColor kKeyDownColor{0.13f, 0.132f, 0.135f};
constexpr GLColor kLitColor{0.5f, 0.9f, 0.65f};
constexpr GLColor kPopupColor{0.115f, 0.12f, 0.125f};
constexpr GLColor kIdleColor{0.36f, 0.36f, 0.36f};
/// Thickness of outlines in design points: slightly more than one pixel at the design size, where
/// four points are three pixels. A thinner line would fall between pixels in places.
constexpr float kOutline = 1.375f;
constexpr GLColor kEdgeColor = kGrey60;  ///< an edge in the light

void ApplyMixed(const GLColor& color, const GLColor& other, float share, float alpha) {
    glColor4f(color.red + (other.red - color.red) * share,
              color.green + (other.green - color.green) * share,
              color.blue + (other.blue - color.blue) * share, alpha);
}

/// Fills the shape of a part in the current colour, or its rim if another shape hides the rest.
void Fill(const Look& look, float hw, float hh, float rim = kNoRim) {
    DrawRoundRect(look.resources, hw, hh, look.Corner(hh), rim);
}

/// Fills the shape of a part, moved upwards by `dy`.
void FillAt(const Look& look, float dy, float hw, float hh, float rim = kNoRim) {
    const MatrixScope matrix;
    glTranslatef(0.0f, dy, 0.0f);
    Fill(look, hw, hh, rim);
}

void RectAt(float x, float y, float hw, float hh) {
    const MatrixScope matrix;
    glTranslatef(x, y, 0.0f);
    DrawRect(hw, hh);
}

std::string Trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

}  // namespace

Look::Look(GLView& view)
    : resources(view.GetResources()),
      s(view.GetInterfaceScale()),
      boxy(view.IsBoxy()),
      flat(view.IsFlat()),
      enabled(view.enabled),
      hovered(view.GetSelectedView() == &view),
      captured(view.GetCapturedView() == &view),
      contrast(view.GetContrastColor()) {}

float Look::Corner(float hh) const {
    return std::min(hh, (boxy ? 1.0f : 4.0f * kOutline) * s);
}

GLColor Look::Accent(const GLColor& color) const {
    if (captured) return contrast;
    return enabled ? color : kIdleColor;
}

float Look::TextAlpha() const {
    return enabled || captured ? 0.8f : 0.65f;
}

float Luminance(const GLColor& color) {
    // A square is close enough to the curve of screens.
    return 0.2126f * color.red * color.red + 0.7152f * color.green * color.green +
           0.0722f * color.blue * color.blue;
}

const GLColor& InkOn(const GLColor& ground) {
    constexpr float kEqualContrast = 0.18f;
    return Luminance(ground) > kEqualContrast ? kBlack : kWhite;
}

GLColor Lightened(const GLColor& color, float share) {
    return {color.red + (1.0f - color.red) * share, color.green + (1.0f - color.green) * share,
            color.blue + (1.0f - color.blue) * share, color.alpha};
}

void DrawDisplay(const Look& look, float hw, float hh) {
    if (!look.flat) {
        kEdgeColor.ApplyFaded(0.35f);
        FillAt(look, -look.s, hw, hh, look.enabled ? 2.0f * look.s : kNoRim);
    }
    kDisplayColor.ApplyFaded(look.enabled ? 1.0f : 0.55f);
    Fill(look, hw, hh);
    if (look.captured) {
        look.contrast.ApplyFaded(0.16f);
        Fill(look, hw, hh);
    }
    DrawShadow(look.resources, hw, hh, look.Corner(hh), false);
}

void DrawKey(const Look& look, float hw, float hh) {
    const bool lit = look.enabled && !look.flat;
    if (lit) {
        const float rim = 2.0f * look.s;
        shadeColor.ApplyFaded(0.45f);
        FillAt(look, -1.25f * look.s, hw, hh, rim);
        kEdgeColor.ApplyFaded(look.captured ? 0.15f : 0.7f);
        Fill(look, hw, hh, rim);
    }
    const GLColor& face = look.captured ? kKeyDownColor : kKeyColor;
    face.ApplyFaded(look.enabled ? 1.0f : 0.35f);
    // The face leaves the light edge at its top visible.
    const float edge = lit ? 0.5f * look.s : 0.0f;
    FillAt(look, -edge, hw, hh - edge);
    if (look.flat) {
        kEdgeColor.ApplyFaded(look.enabled ? 0.5f : 0.2f);
        DrawOutline(look, hw, hh);
    }
}

void DrawLitKey(const Look& look, float hw, float hh) {
    kLitColor.ApplyFaded(0.18f);
    Fill(look, hw, hh);
    kLitColor.ApplyFaded(0.9f);
    DrawOutline(look, hw, hh);
}

void DrawPopup(const Look& look, float hw, float hh) {
    if (!look.flat) {
        shadeColor.ApplyFaded(0.5f);
        FillAt(look, -2.5f * look.s, hw + look.s, hh + look.s);
    }
    kPopupColor.Apply();
    Fill(look, hw, hh);
    kEdgeColor.ApplyFaded(0.6f);
    DrawOutline(look, hw, hh);
}

void DrawOutline(const Look& look, float hw, float hh) {
    DrawOutline(look, hw, hh, kOutline * look.s);
}

void DrawOutline(const Look& look, float hw, float hh, float thickness) {
    if (!look.boxy) {
        DrawRoundFrame(look.resources, hw, hh, std::min(hh, 4.0f * thickness));
        return;
    }
    const float half = 0.5f * thickness;
    RectAt(0.0f, hh - half, hw, half);
    RectAt(0.0f, half - hh, hw, half);
    RectAt(half - hw, 0.0f, half, hh - 2.0f * half);
    RectAt(hw - half, 0.0f, half, hh - 2.0f * half);
}

void DrawStateOutline(const Look& look, float hw, float hh) {
    if (!look.hovered && !look.captured) return;
    const GLColor& color = look.captured ? look.contrast : kCream;
    color.ApplyFaded(look.captured ? 1.0f : 0.7f);
    DrawOutline(look, hw, hh);
}

void DrawGroove(const Look& look, const GLColor& color, float travel, float zero) {
    const float s = look.s;
    kWhite.ApplyFaded(0.16f);
    DrawRect(travel, s);
    color.ApplyFaded(look.enabled ? 0.75f : 0.35f);
    RectAt(travel * (2.0f * zero - 1.0f), 0.0f, 0.6f * s, 3.0f * s);
}

void DrawFill(const Look& look, const GLColor& color, float travel, const TrackValue& value) {
    const float s = look.s;
    const float at = travel * (2.0f * value.at - 1.0f);
    const float zero = travel * (2.0f * value.zero - 1.0f);
    const GLColor accent = look.Accent(color);
    accent.Apply();
    RectAt((at + zero) * 0.5f, 0.0f, std::abs(at - zero) * 0.5f, 1.75f * s);
    ApplyMixed(accent, kWhite, look.enabled ? 0.55f : 0.1f, 1.0f);
    RectAt(at, 0.0f, 1.2f * s, 3.25f * s);
}

void DrawFittedText(const Look& look, const char* text, int alignment, float size, float room) {
    const std::string shown = Trimmed(text);
    const float width = TextWidth(shown.c_str());
    if (width <= 0.0f) return;
    const MatrixScope matrix;
    const float fitting = std::min(size, room / width);
    glScalef(fitting, fitting, 1.0f);
    DrawText(look.resources, shown.c_str(), alignment);
}

void DrawKeyText(const Look& look, const char* text, float size, float room, const GLColor& color) {
    if (!look.flat) {
        const MatrixScope matrix;
        glTranslatef(0.1f * size, -0.1f * size, 0.0f);
        shadeColor.ApplyFaded(0.6f);
        DrawFittedText(look, text, kAlignCentre, size, room);
    }
    color.ApplyFaded(look.TextAlpha());
    DrawFittedText(look, text, kAlignCentre, size, room);
}

}  // namespace brindle
