// SPDX-License-Identifier: ISC
#include "graph/GLView_ParametricEQGrabber.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string>

#include "contract/ports.h"
#include "gl/GLAnimator.h"
#include "gl/drawing.h"
#include "graph/scales.h"
#include "graph/strip_colors.h"

namespace brindle {
namespace {

constexpr uint32_t kFineModifiers = 3;  // Shift, Ctrl
constexpr float kSearchGainDb = 10.0f;
/// How far outside its disc a handle can be hit, in page units.
constexpr float kReach = 0.01f;
/// The strip of markers below the graph, and the part of it that starts a search, in design pixels.
constexpr float kStripTop = -34.0f;
constexpr float kStripBottom = -54.0f;
constexpr float kSearchTop = -36.0f;
constexpr float kSearchBottom = -48.0f;
constexpr float kMarkerMiddle = -44.0f;
constexpr float kMarkerSize = 18.0f;
/// From the middle of the marker's height (0.866 of its size) up to its centre.
constexpr float kMarkerRise = kMarkerSize * (0.5773503f - 0.4330127f);
constexpr const char* kHandleHelp = "drag: frequency and gain, wheel: Q, hold the marker: solo";
constexpr const char* kMarkerHelp = "hold: solo, drag: frequency, wheel: Q";
constexpr const char* kGripHelp = "drag: frequency and gain without solo, wheel: Q";

/// The enable ports of sections and bands, in the order in which a search writes them.
constexpr std::array<uint32_t, GLView_ParametricEQGrabber::kHandleCount> kEnablePorts = {
    section_port(0), section_port(1), band_port(0), band_port(1), band_port(2),
    band_port(3),    band_port(4),    band_port(5), band_port(6), band_port(7)};

/// A band's type code as hosts round it; a code outside the types is left as it is.
float TypeCode(float value) {
    const float code = value + 0.1f;
    return code >= 0.0f && code < kLastType<BandType> + 1.0f ? std::trunc(code) : value;
}

/// The type of a band during a search: types with a centre are heard best as a band-pass.
float SearchedAs(float code) {
    const auto type = decode_type<BandType>(code);
    return kBandTypes[type_index(type)].has_centre ? type_value(BandType::Search) : code;
}

/// As in "1.24 kHz (D#6), +6.5 dB, Q 0.70".
std::string FormatHandle(float freq_hz, float gain_db, float q) {
    const bool isKilo = freq_hz >= 999.5f;
    const float number = isKilo ? freq_hz / 1000.0f : freq_hz;
    const int decimals = number < 9.995f ? 2 : number < 99.95f ? 1 : 0;
    const std::string note = NoteName(freq_hz);
    if (std::abs(gain_db) < 0.05f) gain_db = 0.0f;  // not "-0.0"
    char text[96];
    std::snprintf(text, sizeof text, "%.*f %s%s%s%s, %+.1f dB, Q %.2f", decimals,
                  static_cast<double>(number), isKilo ? "kHz" : "Hz", note.empty() ? "" : " (",
                  note.c_str(), note.empty() ? "" : ")", static_cast<double>(gain_db),
                  static_cast<double>(q));
    return text;
}

/// A position limited to 0 to 1, and whether it was inside. NaN counts as below 0.
struct Reached {
    float position;
    bool inside;
};
Reached Limit(float position) {
    if (!(position >= 0.0f)) return {0.0f, false};
    if (position > 1.0f) return {1.0f, false};
    return {position, true};
}

}  // namespace

GLView_ParametricEQGrabber::GLView_ParametricEQGrabber(GLView_ParametricEQ& parentGraph,
                                                       int handleIndex)
    : GLView_Slider(false, -kGainRangeDb, kGainRangeDb),
      index(std::clamp(handleIndex, 0, kHandleCount - 1)),
      firstPort(strip_port(index)),
      graph_(parentGraph) {
    port = firstPort + kFrequency;
    GLView_Slider::SetLabel(strip_row(index).label);
    GLView_Slider::SetInfoTitle(strip_row(index).name);
    GLView_Slider::SetInfoText(kHandleHelp);
    pointerShape = PointerShape::FourWays;
}

void GLView_ParametricEQGrabber::SetWriter(const HostWriter& hostWriter) {
    writer = hostWriter;
}

void GLView_ParametricEQGrabber::SetTouch(const LV2UI_Touch* touch) {
    GLView_Slider::SetTouch(touch, firstPort + kFrequency);
    gainGesture_.Bind(touch, firstPort + kGain);
}

bool GLView_ParametricEQGrabber::IsOn() {
    return Value(kEnable) != 0.0f;
}

void GLView_ParametricEQGrabber::WriteInRange(Control control, float value) {
    const ControlRow& range = strip_controls(index)[control];
    writer.Write(firstPort + control, std::clamp(value, range.minimum, range.maximum));
}

GLPoint GLView_ParametricEQGrabber::Place() {
    const float fn = Limit(PositionOfBandHz(Value(kFrequency))).position;
    const auto heights = graph_.Heights();
    const auto last = static_cast<float>(heights.size()) - 1.0f;
    const auto i = static_cast<size_t>(std::clamp(fn * (last + 1.0f), 1.0f, last));
    return {2.0f * graph_.hw * fn - graph_.hw, std::max(heights[i], -graph_.hh)};
}

void GLView_ParametricEQGrabber::ParameterChanged(uint32_t changedPort) {
    if (changedPort == firstPort + kFrequency) ReanchorX();
    if (changedPort == firstPort + kGain) ReanchorY();
    if (showsValues_ && changedPort - firstPort < kControlCount) ShowValues();
}

void GLView_ParametricEQGrabber::ShowValues() {
    showsValues_ = true;
    const std::string values = FormatHandle(Value(kFrequency), Value(kGain), Value(kQ));
    SetInfoTitle((std::string(strip_row(index).name) + ":").c_str());
    SetInfoText(values.c_str());
}

bool GLView_ParametricEQGrabber::IsOnStrip(GLPoint point, float bottom, float top) {
    const float m = GetPixelSize();
    return point.y > bottom * m - graph_.hh && point.y < top * m - graph_.hh;
}

void GLView_ParametricEQGrabber::ShowInfoAt(GLPoint point) {
    const bool onMarker = IsOnStrip(point, kSearchBottom, kSearchTop);
    const bool onGrip = !onMarker && IsOnStrip(point, kStripBottom, kStripTop);
    const char* help = onMarker ? kMarkerHelp : onGrip ? kGripHelp : kHandleHelp;
    // Once it was held or turned, it shows its values until the pointer goes elsewhere.
    if (GetSelectedView() != this || help != help_) {
        help_ = help;
        showsValues_ = false;
        pointerShape = onMarker ? PointerShape::Sideways : PointerShape::FourWays;
        SetInfoTitle(strip_row(index).name);
        SetInfoText(help);
    }
    GLView_Slider::ShowInfoAt(point);
}

bool GLView_ParametricEQGrabber::HitTest(GLPoint point) {
    if (!visible || !IsOn()) return false;
    const float reach = hw + kReach;
    const GLPoint place = Place();
    const bool onHandle = std::hypot(point.x - place.x, point.y - place.y) < reach;
    const bool onMarker =
        IsOnStrip(point, kStripBottom, kStripTop) && std::abs(point.x - place.x) < reach;
    if (!onHandle && !onMarker) return false;
    graph_.SelectHandle(index);
    return true;
}

void GLView_ParametricEQGrabber::MouseDown(GLPoint point, GLPoint pagePoint) {
    const bool onMarker = IsOnStrip(point, kSearchBottom, kSearchTop);
    // A second mouse button must not save the bands that a search muted as the user's settings.
    if (onMarker && GetCapturedView() == nullptr) BeginSearch();
    GLView_Slider::MouseDown(point, pagePoint);
    // Hosts record the values of touched controls. A search moves only the frequency by hand.
    if (!IsSearching()) gainGesture_.Begin();
    ShowValues();
}

void GLView_ParametricEQGrabber::MouseUp(GLPoint point) {
    EndSearch();
    gainGesture_.End();
    GLView_Slider::MouseUp(point);
}

void GLView_ParametricEQGrabber::SetCaptured(bool on) {
    if (!on) {
        EndSearch();
        gainGesture_.End();
    }
    GLView_Slider::SetCaptured(on);
}

void GLView_ParametricEQGrabber::Close() {
    EndSearch();
    GLView_Slider::Close();
}

float GLView_ParametricEQGrabber::DragSpeed() {
    float speed = sensitivity;
    if (IsSearching()) speed *= 0.25f;
    if ((GetModifiers() & kFineModifiers) != 0) speed *= 0.1f;
    return speed;
}

void GLView_ParametricEQGrabber::MouseDragTo(GLPoint pagePoint) {
    if (!(GetPageWidth() > 0.0f && GetPageHeight() > 0.0f)) return;
    const float speed = DragSpeed();
    DragFrequency(pagePoint.x, speed);
    if (!IsSearching()) DragGain(pagePoint.y, speed);
}

void GLView_ParametricEQGrabber::DragFrequency(float pagePointX, float speed) {
    const float step = speed * (pagePointX - dragStart.x) * 0.3f * (1200.0f / GetPageWidth());
    const Reached reached = Limit(step + PositionOfBandHz(Value(kFrequency)));
    if (reached.inside) dragLast.x = pagePointX;
    WriteInRange(kFrequency, BandHzAt(reached.position));
}

void GLView_ParametricEQGrabber::DragGain(float pagePointY, float speed) {
    const float step = 800.0f / GetPageHeight() * speed * (pagePointY - dragStart.y);
    const Reached reached = Limit(PositionOfGainDb(Value(kGain)) - step);
    if (reached.inside) dragLast.y = pagePointY;
    WriteInRange(kGain, GainDbAt(reached.position));
}

void GLView_ParametricEQGrabber::Scroll(float delta) {
    const float step = (GetModifiers() & kFineModifiers) != 0 ? 0.005f : 0.05f;
    WriteInRange(kQ, QAt(Limit(PositionOfQ(Value(kQ)) + step * delta).position));
    ShowValues();
}

void GLView_ParametricEQGrabber::BeginSearch() {
    foundType_ = TypeCode(Value(kType));
    search_gain_db_ = Value(kGain);
    if (IsBand()) {
        writer.Write(firstPort + kType, SearchedAs(*foundType_));
        writer.Write(firstPort + kGain, kSearchGainDb);
    }
    for (size_t i = 0; i < kEnablePorts.size(); ++i) {
        if (kEnablePorts[i] == firstPort + kEnable) continue;
        searchEnables_[i] = GetParameter(kEnablePorts[i]) != 0.0f;
        writer.Write(kEnablePorts[i], 0.0f);
    }
}

void GLView_ParametricEQGrabber::EndSearch() {
    if (!IsSearching()) return;
    if (IsBand()) {
        writer.Write(firstPort + kType, *foundType_);
        // Hosts may report any gain, but are only sent values within the port's range.
        WriteInRange(kGain, search_gain_db_);
    }
    for (size_t i = 0; i < kEnablePorts.size(); ++i) {
        if (kEnablePorts[i] == firstPort + kEnable) continue;
        writer.Write(kEnablePorts[i], searchEnables_[i] ? 1.0f : 0.0f);
    }
    foundType_.reset();
}

void GLView_ParametricEQGrabber::Draw() {
    if (!IsOn()) return;
    const GraphLook look = graph_.Look();
    const GLPoint place = Place();
    glTranslatef(place.x, place.y, 0.0f);
    HandleColor(index).Apply();
    DrawDisc(GetResources(), hw + look.m, hw + look.m);
    look.background.Apply();
    DrawDisc(GetResources(), hw - 2.0f * look.m, hw - 2.0f * look.m);
    DrawLabel(look);
}

void GLView_ParametricEQGrabber::DrawLabel(const GraphLook& look) {
    look.foreground.Apply();
    glScalef(8.0f * look.m, 8.0f * look.m, 1.0f);
    DrawText(GetResources(), label, kAlignCentre);
}

GLRect GLView_ParametricEQGrabber::DrawnArea() {
    const float reach = hw + 2.0f * GetPixelSize();
    const GLPoint place = Place();
    return {place.x - reach, place.y - reach, place.x + reach, place.y + reach};
}

void GLView_ParametricEQGrabber::DrawFront() {
    if (!IsOn()) return;
    const GraphLook look = graph_.Look();
    const GLPoint place = Place();
    if (graph_.selectedHandle == index) DrawSelection(look, place);

    DrawMarkerAt(place.x, look);
}

void GLView_ParametricEQGrabber::DrawMarkerAt(float placeX, const GraphLook& look) {
    constexpr float kInnerSize = 12.0f;
    const MatrixScope matrix;
    glTranslatef(placeX, (kMarkerMiddle + kMarkerRise) * look.m - graph_.hh, 0.0f);
    HandleColor(index).Apply();
    DrawMarker(kMarkerSize * look.m);
    look.background.Apply();
    DrawMarker(kInnerSize * look.m);
    DrawGrip(look);
}

void GLView_ParametricEQGrabber::DrawGrip(const GraphLook& look) {
    // Beside the marker's tip, in the middle of the strip that drags without a search.
    constexpr float kBelowMarker =
        0.5f * (kStripBottom + kSearchBottom) - kMarkerMiddle - kMarkerRise;
    HandleColor(index).Apply();
    for (const float side : {-9.0f, -6.0f, 6.0f, 9.0f}) {
        const MatrixScope matrix;
        glTranslatef(side * look.m, kBelowMarker * look.m, 0.0f);
        DrawRect(0.5f * look.m, 2.0f * look.m);
    }
}

void GLView_ParametricEQGrabber::DrawSelection(const GraphLook& look, GLPoint place) {
    constexpr float kPulsePeriodMs = 1000.0f;
    {
        const MatrixScope matrix;
        glTranslatef(place.x, place.y, 0.0f);
        look.foreground.ApplyFaded(0.2f + 0.2f * Pulse(kPulsePeriodMs));
        // The outer ring extends beyond the rim, which has the handle's colour.
        DrawRing(hh + 2.0f * look.m, 2.0f * look.m);
        DrawRing(hh - 4.0f * look.m, look.m);
        DrawLabel(look);  // on top of the inner ring
    }
    {
        const float top = place.y - hw - look.m;  // leaves the label visible
        const float bottom = -graph_.hh - 36.0f * look.m;
        const MatrixScope matrix;
        glTranslatef(place.x, (top + bottom) / 2.0f, 0.0f);
        HandleColor(index).ApplyFaded(0.7f);
        DrawRect(look.m / 2.0f, (top - bottom) / 2.0f);
    }
    DrawReadout(look, place.x);
    Redraw(Layer::Front);  // the rings pulse
}

void GLView_ParametricEQGrabber::DrawReadout(const GraphLook& look, float placeX) {
    constexpr float kLineStep = 1.7f;
    const float freq_hz = Value(kFrequency);
    char number[48];
    std::snprintf(number, sizeof number, "%3.0f", static_cast<double>(freq_hz));

    const MatrixScope matrix;
    glTranslatef(placeX, -88.0f * look.m - graph_.hh, 0.0f);
    glScalef(7.0f * look.m, 7.0f * look.m, 1.0f);
    look.foreground.Apply();
    DrawText(GetResources(), NoteName(freq_hz).c_str(), kAlignCentre);
    glTranslatef(0.0f, -kLineStep, 0.0f);
    DrawText(GetResources(), number, kAlignCentre);
}

}  // namespace brindle
