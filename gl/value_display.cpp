// SPDX-License-Identifier: ISC
#include "gl/value_display.h"

#include <algorithm>
#include <cmath>

namespace brindle {
namespace {

constexpr float kTextHeight = 0.24f;    // the text's centre, in half heights
constexpr float kTextMargins = 3.5f;    // design points, both sides together
constexpr float kTrackHeight = -0.62f;  // the track's centre, in half heights
constexpr float kTrackMargin = 5.0f;    // design points at each end

constexpr int kLamps = 25;
constexpr float kLampRing = 0.88f;  // radii, in units of the knob's radius
constexpr float kFaceRadius = 0.74f;
constexpr float kMarkCentre = 0.56f;

float Radius(const ControlFace& face) {
    return std::min(face.hw, face.hh);
}

void DrawLamp(const Look& look, float angle, float radius, float size) {
    const MatrixScope matrix;
    glRotatef(angle, 0.0f, 0.0f, 1.0f);
    glTranslatef(0.0f, radius, 0.0f);
    DrawDisc(look.resources, size, size);
}

}  // namespace

float ValueTravel(const Look& look, const ControlFace& face) {
    return face.hw - kTrackMargin * look.s;
}

void DrawValueDisplayBack(const Look& look, const ControlFace& face) {
    DrawDisplay(look, face.hw, face.hh);
    const MatrixScope matrix;
    glTranslatef(0.0f, kTrackHeight * face.hh, 0.0f);
    DrawGroove(look, face.textColor, ValueTravel(look, face), face.zero);
}

void DrawValueDisplay(const Look& look, const ControlFace& face) {
    {
        const MatrixScope matrix;
        glTranslatef(0.0f, kTrackHeight * face.hh, 0.0f);
        DrawFill(look, face.color, ValueTravel(look, face), {face.at, face.zero});
    }
    glTranslatef(0.0f, kTextHeight * face.hh, 0.0f);
    face.textColor.ApplyFaded(look.TextAlpha());
    DrawFittedText(look, face.text, kAlignCentre, face.textSize,
                   2.0f * face.hw - kTextMargins * look.s);
}

float KnobAngle(float normalised) {
    return 135.0f - 270.0f * normalised;
}

void DrawRoundKnobBack(const Look& look, const ControlFace& face) {
    const float radius = Radius(face);
    const float lamp = std::max(0.055f * radius, look.s);
    kWhite.ApplyFaded(look.enabled ? 0.16f : 0.08f);
    for (int i = 0; i < kLamps; ++i) {
        const float share = static_cast<float>(i) / (kLamps - 1);
        DrawLamp(look, KnobAngle(share), kLampRing * radius, lamp);
    }
    if (!look.flat) {
        const MatrixScope matrix;
        glTranslatef(0.0f, -2.5f * look.s, 0.0f);
        face.textColor.ApplyDimmed(0.06f);
        DrawDisc(look.resources, kFaceRadius * radius, kFaceRadius * radius);
    }
    (look.enabled ? face.color : kGrey).ApplyDimmed(look.captured ? 0.22f : 0.32f);
    if (look.flat) {
        DrawDisc(look.resources, kFaceRadius * radius, kFaceRadius * radius);
    } else {
        DrawTexture(look.resources != nullptr ? look.resources->mipTexture250 : 0,
                    kFaceRadius * radius, kFaceRadius * radius);
    }
    DrawGloss(look.resources, kFaceRadius * radius, kFaceRadius * radius);
}

void DrawRoundKnob(const Look& look, const ControlFace& face) {
    const float radius = Radius(face);
    const GLColor accent = look.Accent(face.color);
    const float lamp = std::max(0.065f * radius, look.s);
    const float from = std::min(face.at, face.zero);
    const float to = std::max(face.at, face.zero);
    accent.Apply();
    for (int i = 0; i < kLamps; ++i) {
        const float share = static_cast<float>(i) / (kLamps - 1);
        constexpr float kReach = 0.5f / (kLamps - 1);
        if (share > from - kReach && share < to + kReach) {
            DrawLamp(look, KnobAngle(share), kLampRing * radius, lamp);
        }
    }
    {
        const MatrixScope matrix;
        glRotatef(KnobAngle(face.at), 0.0f, 0.0f, 1.0f);
        glTranslatef(0.0f, kMarkCentre * radius, 0.0f);
        Lightened(accent, look.enabled ? 0.5f : 0.0f).Apply();
        DrawRect(std::max(0.035f * radius, look.s), 0.13f * radius);
    }
    face.textColor.ApplyFaded(look.TextAlpha());
    DrawFittedText(look, face.text, kAlignCentre, face.textSize, 1.1f * radius);
}

void DrawRoundKnobState(const Look& look, const ControlFace& face) {
    if (look.resources == nullptr || !(look.hovered || look.captured)) return;
    const float radius = 1.2f * Radius(face);
    (look.captured ? look.contrast : kCream).ApplyFaded(look.captured ? 0.22f : 0.16f);
    DrawTexture(look.resources->defaultImage, radius, radius);
}

}  // namespace brindle
