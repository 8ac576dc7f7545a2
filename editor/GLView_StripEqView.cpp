// SPDX-License-Identifier: ISC
#include "editor/GLView_StripEqView.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

#include "contract/ports.h"
#include "contract/presets.h"
#include "editor/GLView_BandDecorator.h"
#include "editor/panel_layout.h"
#include "gl/GLView_Caption.h"
#include "gl/GLView_DecoratorBox.h"
#include "gl/drawing.h"
#include "gl/look.h"
#include "graph/GLView_ParametricEQGrabber.h"

namespace brindle {
namespace {

constexpr float kDragSensitivity = 0.003f;

GLView_Caption* MakeCaption(const char* text, float labelSize, int alignment) {
    auto* caption = new GLView_Caption;
    caption->SetLabel(text);
    caption->SetLabelSize(labelSize);
    caption->alignment = alignment;
    return caption;
}

}  // namespace

GLView_StripEqView::GLView_StripEqView(HostWriter host, LV2_URID_Map* map, const LV2UI_Touch* touch)
    : GLView_BaseView(kEditorWidthPx, kEditorHeightPx), connection_(host, map) {
    SetName(kProductName);
    AddFlatAll();
    AddGraph(touch);
    AddStrips(touch);
    AddTrim(touch);
    inputMeter_ = AddMeter(layout::kMeterInLeft);
    outputMeter_ = AddMeter(layout::kMeterOutLeft);
    AddPresets();
}

GLView_StripEqView::~GLView_StripEqView() {
    // The widgets write through the connection and look at the graph, also while they go.
    GLView_StripEqView::DeleteChildren();
}

void GLView_StripEqView::Place(GLView* view, float left, float middle, float width, float height) {
    const float s = GetInterfaceScale();
    view->SetSize(width * s, height * s);
    view->SetPosition(viewLeft + (left + 0.5f * width) * s, viewBottom + middle * s);
    AddChild(view);
}

void GLView_StripEqView::AddFlatAll() {
    constexpr std::array<uint32_t, 11> kSwitches = {42, 47, 2, 7, 12, 17, 22, 27, 32, 37, 52};
    const float s = GetInterfaceScale();
    flatAll_ = new GLView_PresetButton;
    flatAll_->SetWriter(connection_.GetWriter());
    flatAll_->SetLabel("flat");
    flatAll_->SetInfoTitle("Flat");
    flatAll_->SetInfoText("All bands and sections off, no trim");
    for (const uint32_t port : kSwitches) flatAll_->SetPresetValue(port, 0.0f);
    flatAll_->SetSize(layout::kFlatAllSize * s, layout::kFlatAllSize * s);
    flatAll_->SetPosition(viewRight - layout::kFlatAllFromRight * s,
                          viewTop - layout::kHeaderBelowTop * s);
    AddChild(flatAll_);
}

void GLView_StripEqView::AddGraph(const LV2UI_Touch* touch) {
    const float s = GetInterfaceScale();
    graph_ = new GLView_ParametricEQ;
    graph_->SetSize(viewRight - viewLeft - 2.0f * layout::kGraphMarginPixels * GetPixelSize(),
                    layout::kGraphHeight * s);
    graph_->SetPosition(0.0f, viewTop - (layout::kGraphTop + 0.5f * layout::kGraphHeight) * s);
    AddChild(graph_);
    for (int i = 0; i < kStripCount; ++i) {
        auto* handle = new GLView_ParametricEQGrabber(*graph_, i);
        handle->SetWriter(connection_.GetWriter());
        handle->SetTouch(touch);
        handle->SetUnit("dB");
        handle->SetSensitivity(kDragSensitivity);
        handle->SetSize(layout::kHandleSize * s, layout::kHandleSize * s);
        graph_->AddChild(handle);
    }
}

void GLView_StripEqView::AddStrips(const LV2UI_Touch* touch) {
    for (int i = 0; i < kStripCount; ++i) {
        auto* strip = new GLView_BandDecorator(*graph_, i);
        Place(strip, layout::StripLeft(i), 0.5f * (layout::kStripBottom + layout::kStripTop),
              layout::kStripWidth, layout::kStripTop - layout::kStripBottom);
        strip->AddWidgets(connection_.GetWriter(), touch);
        strips_[static_cast<size_t>(i)] = strip;
    }
}

void GLView_StripEqView::AddTrim(const LV2UI_Touch* touch) {
    Place(new GLView_DecoratorBox, layout::kOutputLeft,
          0.5f * (layout::kStripBottom + layout::kStripTop), layout::kOutputWidth,
          layout::kStripTop - layout::kStripBottom);
    trim_ = new GLView_TrimSlider(true, -kTrimRangeDb, kTrimRangeDb);
    trim_->SetPort(connection_.GetWriter(), kTrimPort);
    trim_->SetTouch(touch, kTrimPort);
    trim_->SetLabel("Output Trim: ");
    trim_->SetUnit("dB");
    trim_->SetTextSize(8.0f);
    trim_->SetColor(kCream);
    trim_->SetSensitivity(kDragSensitivity);
    trim_->SetResetValue(0.0f);
    trim_->SetInfoTitle("Output Trim");
    Place(trim_, layout::kTrimLeft, layout::kTrimAbove, layout::kTrimWidth, layout::kTrimHeight);
    Place(MakeCaption("Trim:", 8.0f, kAlignLeft), layout::kTrimLeft, layout::kTrimLabelAbove,
          layout::kTrimWidth, layout::kPresetHeight);
}

GLView_DB60Meter* GLView_StripEqView::AddMeter(float left) {
    auto* meter = new GLView_DB60Meter;
    Place(meter, left - 0.5f * layout::kMeterWidth,
          0.5f * (layout::kMeterBottom + layout::kMeterTop), layout::kMeterWidth,
          layout::kMeterTop - layout::kMeterBottom);
    return meter;
}

void GLView_StripEqView::AddPresets() {
    const float middle = 800.0f - layout::kHeaderBelowTop;
    Place(MakeCaption("Presets:", 8.0f, kAlignLeft), layout::kPresetLabelLeft, middle,
          layout::kFirstPresetLeft - layout::kPresetLabelLeft, layout::kPresetHeight);
    float left = layout::kFirstPresetLeft;
    for (const Preset& preset : kPresets) {
        auto* button = new GLView_PresetButton;
        button->SetWriter(connection_.GetWriter());
        button->SetPresetName(preset.name);
        button->SetLabelSize(7.0f);
        button->SetInfoTitle("Preset");
        button->SetInfoText(preset.name);
        for (size_t i = 0; i < preset.values.size(); ++i) {
            button->SetPresetValue(kFirstPresetPort + static_cast<uint32_t>(i), preset.values[i]);
        }
        Place(button, left, middle, layout::kPresetWidth, layout::kPresetHeight);
        left += layout::kPresetPitch;
    }
}

void GLView_StripEqView::PortEvent(uint32_t port, uint32_t size, uint32_t format,
                                   const void* buffer) {
    if (const auto plot = connection_.ReadPlot(format, buffer, size)) {
        SpectrumHistory& spectrum = graph_->spectrum;
        std::copy_n(plot->values, kPlotBins, spectrum.rows[static_cast<size_t>(plot->id)].begin());
        spectrum.newest = plot->id;
    } else if (const auto value = connection_.ReadControl(port, format, buffer, size)) {
        TakeControl(port, *value);
    }
}

void GLView_StripEqView::TakeControl(uint32_t port, float value) {
    if (reported_.none()) {
        graph_->MarkAllDirty(true);
        redrawNeeded = true;
    }
    // Hosts report the meters some 30 times a second, and much that has not changed. The meters are
    // drawn in each frame anyway.
    const bool isMeter = port == kMeterInPort || port == kMeterOutPort;
    const bool isNews = port >= reported_.size() || !reported_[port] || GetParameter(port) != value;
    if (port < reported_.size()) reported_[port] = true;
    SetParameter(port, value, false);
    if (isNews && !isMeter) MarkControl(port);
    if (port == kMeterInPort) inputMeter_->level = value;
    if (port == kMeterOutPort) outputMeter_->level = value;
}

void GLView_StripEqView::MarkControl(uint32_t port) {
    if (port == kTrimPort) {
        MarkFrame(trim_->DrawnArea());
        return;
    }
    if (port < band_port(0) || port >= section_port(kSectionCount)) {
        redrawNeeded = true;
        return;
    }
    // The curve and the handles on it, which stand above the graph where the curve leaves it.
    const float reach = (0.5f * layout::kHandleSize + 2.0f) * GetInterfaceScale();
    MarkFrame({graph_->x - graph_->hw - reach, graph_->y - graph_->hh - reach,
               graph_->x + graph_->hw + reach, viewTop});
    // Which controls light up and which have an effect is seen in the static layer; their values
    // are not.
    const uint32_t control = (port - band_port(0)) % kControlCount;
    const GLRect strip = strips_[(port - band_port(0)) / kControlCount]->DrawnArea();
    if (control == kEnable || control == kType) {
        MarkStatic(strip);
    } else {
        MarkFrame(strip);
    }
}

void GLView_StripEqView::TakeUnreportedWrites() {
    connection_.TakeUnreported(HostConnection::Now(),
                               [this](uint32_t port, float value) { TakeControl(port, value); });
}

void GLView_StripEqView::SendParameter(uint32_t index, float value) {
    connection_.Write(index, value);
}

void GLView_StripEqView::EditorOpened() {
    GLView_BaseView::EditorOpened();
    connection_.SendOpened();
}

void GLView_StripEqView::EditorClosed() {
    ReleaseAll();  // what a held control has changed for as long as it is held is put back
    connection_.SendClosed();
}

GLColor GLView_StripEqView::GetBackgroundColor() {
    constexpr float kBrightest = 0.16f;
    GLColor ground = GLView_BaseView::GetBackgroundColor();
    const float peak = std::max({ground.red, ground.green, ground.blue});
    if (peak > kBrightest) {
        const float share = kBrightest / peak;
        ground.Set(ground.red * share, ground.green * share, ground.blue * share, ground.alpha);
    }
    return ground;
}

void GLView_StripEqView::PreDraw() {
    selectedBand_ = graph_->selectedHandle;
    if (GLView* told = captureView != nullptr ? captureView : focusView) {
        ShowInfo(told->infoTitle, told->infoText);
    }
}

void GLView_StripEqView::DrawBackground() {
    // Darker than what stands on it.
    constexpr float kShare = 0.7f;
    const GLColor ground = GetBackgroundColor();
    // The layer has the panel's proportions; a rectangle over all of it takes five times as long.
    glClearColor(ground.red * kShare, ground.green * kShare, ground.blue * kShare, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);  // what the window's margins are cleared with
}

void GLView_StripEqView::DrawBack() {
    GLView_BaseView::DrawBack();
    DrawMeterName("In", layout::kMeterInLeft);
    DrawMeterName("Out", layout::kMeterOutLeft);
    color.ApplyFaded(0.6f);
    DrawMeterScale(layout::kMeterInLeft + layout::kMeterScaleGap, kAlignLeft);
    DrawMeterScale(layout::kMeterOutLeft - layout::kMeterScaleGap, kAlignRight);
    DrawNameplate();
}

void GLView_StripEqView::DrawTextAt(const char* text, float left, float above, float size,
                                    int alignment) {
    const float s = GetInterfaceScale();
    const GLPoint place = {viewLeft + left * s, viewBottom + above * s};
    const float width = TextWidth(text) * size * s;
    const float height = size * s;
    if (!IsDrawn({place.x - width, place.y - height, place.x + width, place.y + height})) return;
    const MatrixScope matrix;
    glTranslatef(place.x, place.y, 0.0f);
    glScalef(size * s, size * s, 1.0f);
    DrawText(GetResources(), text, alignment);
}

void GLView_StripEqView::DrawMeterName(const char* text, float meterLeft) {
    constexpr float kSize = 7.0f;
    constexpr float kHalfCapital = 0.585f * kSize;
    const float middle = layout::kMeterLabelTop - kHalfCapital;
    const float s = GetInterfaceScale();
    {
        const MatrixScope matrix;
        glTranslatef(viewLeft + meterLeft * s, viewBottom + middle * s, 0.0f);
        color.ApplyDimmed(0.8f);  // a plate on which black can be read
        DrawRoundRect(GetResources(), 15.0f * s, (kHalfCapital + 2.0f) * s,
                      (IsBoxy() ? 1.0f : 4.0f) * s);
    }
    kBlack.ApplyFaded(0.8f);
    DrawTextAt(text, meterLeft, middle, kSize, kAlignCentre);
}

void GLView_StripEqView::DrawMeterScale(float left, int alignment) {
    // The ports tell power where the meter expects an amplitude: its marks at twice the decibels
    // are where these levels are.
    constexpr std::array<const char*, 6> kLevelsDb = {"0", "3", "6", "10", "20", "30"};
    constexpr float kLowestDb = 30.0f;
    for (const char* level : kLevelsDb) {
        const float share = 1.0f - std::strtof(level, nullptr) / kLowestDb;
        const float above =
            layout::kMeterBottom + share * (layout::kMeterTop - layout::kMeterBottom);
        DrawTextAt(level, left, above, 6.5f, alignment);
    }
}

void GLView_StripEqView::DrawNameplate() {
    constexpr float kMiddle = layout::kOutputLeft + 0.5f * layout::kOutputWidth;
    color.ApplyFaded(0.9f);
    DrawTextAt("Brindle", kMiddle, layout::kNameAbove, 13.0f, kAlignCentre);
    GetContrastColor().Apply();
    DrawTextAt("Console EQ", kMiddle, layout::kSecondNameAbove, 8.0f, kAlignCentre);
}

void GLView_StripEqView::DrawFront() {
    GLView_BaseView::DrawFront();
    DrawHelpLine();
}

void GLView_StripEqView::DrawHelpLine() {
    const float s = GetInterfaceScale();
    const MatrixScope matrix;
    glTranslatef(viewLeft + layout::kHelpLeft * s, viewTop - layout::kHeaderBelowTop * s, 0.0f);
    glScalef(8.0f * s, 8.0f * s, 1.0f);
    color.ApplyFaded(0.9f);
    DrawText(GetResources(), infoTitle, kAlignLeft);
    glTranslatef(TextWidth(infoTitle) + 1.0f, 0.0f, 0.0f);
    color.ApplyFaded(0.6f);
    DrawText(GetResources(), infoText, kAlignLeft);
}

}  // namespace brindle
