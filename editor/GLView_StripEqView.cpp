// SPDX-License-Identifier: ISC
#include "editor/GLView_StripEqView.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

#include "contract/ports.h"
#include "contract/presets.h"
#include "editor/GLView_BandDecorator.h"
#include "editor/GLView_HelpLine.h"
#include "editor/GLView_MeterScale.h"
#include "editor/panel_layout.h"
#include "gl/GLView_DecoratorBox.h"
#include "gl/GLView_TrimSlider.h"
#include "gl/drawing.h"
#include "gl/look.h"
#include "gl/settings.h"
#include "graph/GLView_ParametricEQGrabber.h"

namespace brindle {
namespace {

constexpr float kDragSensitivity = 0.003f;

}  // namespace

GLView_StripEqView::GLView_StripEqView(HostWriter host, LV2_URID_Map* map, const LV2UI_Touch* touch)
    : GLView_BaseView(kEditorWidthPx, kEditorHeightPx),
      connection_(host, map),
      message_(GLView_BaseView::GetInterfaceScale()) {
    SetName(kProductName);
    AddFlatAll();
    AddGraph(touch);
    AddStrips(touch);
    AddOutput(touch);
    AddPresets();
}

GLView_StripEqView::~GLView_StripEqView() {
    // While they are destroyed, the widgets still use the connection and the graph.
    GLView_StripEqView::DeleteChildren();
}

void GLView_StripEqView::Place(GLView& view, float left, float middle, float width, float height) {
    const float s = GetInterfaceScale();
    view.SetSize(width * s, height * s);
    view.SetPosition(viewLeft + (left + 0.5f * width) * s, viewBottom + middle * s);
}

GLView_Caption& GLView_StripEqView::AddCaption(const char* text, int alignment) {
    auto& caption = Add<GLView_Caption>();
    caption.SetLabel(text);
    caption.alignment = alignment;
    return caption;
}

GLView_PresetButton& GLView_StripEqView::AddPresetButton(const char* title, const char* text) {
    auto& button = Add<GLView_PresetButton>();
    button.SetWriter(connection_.GetWriter());
    button.SetInfoTitle(title);
    button.SetInfoText(text);
    return button;
}

void GLView_StripEqView::AddFlatAll() {
    const float s = GetInterfaceScale();
    flatAll_ = &AddPresetButton("Flat", "All bands and sections off, no trim");
    flatAll_->SetLabel("flat");
    for (int strip = 0; strip < kStripCount; ++strip) {
        flatAll_->SetPresetValue(strip_port(strip) + kEnable, 0.0f);
    }
    flatAll_->SetPresetValue(kTrimPort, 0.0f);
    flatAll_->SetSize(layout::kFlatAllSize * s, layout::kFlatAllSize * s);
    flatAll_->SetPosition(viewRight - layout::kFlatAllFromRight * s,
                          viewTop - layout::kHeaderBelowTop * s);
}

void GLView_StripEqView::AddGraph(const LV2UI_Touch* touch) {
    const float s = GetInterfaceScale();
    graph_ = &Add<GLView_ParametricEQ>();
    graph_->SetSize(viewRight - viewLeft - 2.0f * layout::kGraphMarginPixels * GetPixelSize(),
                    layout::kGraphHeight * s);
    graph_->SetPosition(0.0f, viewTop - (layout::kGraphTop + 0.5f * layout::kGraphHeight) * s);
    for (int strip = 0; strip < kStripCount; ++strip) {
        auto& handle = graph_->Add<GLView_ParametricEQGrabber>(*graph_, strip);
        handle.SetWriter(connection_.GetWriter());
        handle.SetTouch(touch);
        handle.SetUnit("dB");
        handle.SetSensitivity(kDragSensitivity);
        handle.SetSize(layout::kHandleSize * s, layout::kHandleSize * s);
    }
}

void GLView_StripEqView::AddStrips(const LV2UI_Touch* touch) {
    for (int i = 0; i < kStripCount; ++i) {
        auto& strip = Add<GLView_BandDecorator>(*graph_, i);
        Place(strip, layout::StripLeft(i), layout::kStripMiddle, layout::kStripWidth,
              layout::kStripHeight);
        strip.AddWidgets(connection_.GetWriter(), touch);
    }
}

void GLView_StripEqView::AddOutput(const LV2UI_Touch* touch) {
    Place(Add<GLView_DecoratorBox>(), layout::kOutputLeft, layout::kStripMiddle,
          layout::kOutputWidth, layout::kStripHeight);
    auto& trim = Add<GLView_TrimSlider>(true, -kTrimRangeDb, kTrimRangeDb);
    trim.SetPort(connection_.GetWriter(), kTrimPort);
    trim.SetTouch(touch, kTrimPort);
    trim.SetLabel("Output Trim: ");
    trim.SetUnit("dB");
    trim.SetTextSize(8.0f);
    trim.SetColor(kCream);
    trim.SetSensitivity(kDragSensitivity);
    trim.SetResetValue(0.0f);
    trim.SetInfoTitle("Output Trim");
    Place(trim, layout::kTrimLeft, layout::kTrimAbove, layout::kTrimWidth, layout::kTrimHeight);
    Place(AddCaption("Trim:", kAlignLeft), layout::kTrimLeft, layout::kTrimLabelAbove,
          layout::kTrimWidth, layout::kPresetHeight);
    auto& product = AddCaption("Brindle", kAlignCentre);
    product.SetLabelSize(13.0f);
    product.color.ScaleAlpha(0.9f);
    Place(product, layout::kOutputLeft, layout::kNameAbove, layout::kOutputWidth,
          layout::kNameHeight);
    auto& secondName = AddCaption("Console EQ", kAlignCentre);
    secondName.inContrast = true;
    Place(secondName, layout::kOutputLeft, layout::kSecondNameAbove, layout::kOutputWidth,
          layout::kNameHeight);
    inputMeter_ = AddMeter("In", layout::kMeterInLeft, kAlignLeft);
    outputMeter_ = AddMeter("Out", layout::kMeterOutLeft, kAlignRight);
}

GLView_DB60Meter* GLView_StripEqView::AddMeter(const char* text, float left, int scaleAlignment) {
    constexpr float kMiddle = 0.5f * (layout::kMeterBottom + layout::kMeterTop);
    constexpr float kHeight = layout::kMeterTop - layout::kMeterBottom;
    auto& meter = Add<GLView_DB60Meter>();
    Place(meter, left - 0.5f * layout::kMeterWidth, kMiddle, layout::kMeterWidth, kHeight);
    auto& plate = Add<GLView_MeterName>();
    plate.SetLabel(text);
    plate.SetLabelSize(layout::kMeterNameSize);
    Place(plate, left - 0.5f * layout::kMeterNameWidth, layout::kMeterNameMiddle,
          layout::kMeterNameWidth, layout::kMeterNameHeight);
    auto& numbers = Add<GLView_MeterScale>(scaleAlignment);
    numbers.SetLabelSize(7.5f);
    const float beside = scaleAlignment == kAlignLeft
                             ? layout::kMeterScaleGap
                             : -layout::kMeterScaleGap - layout::kMeterScaleWidth;
    Place(numbers, left + beside, kMiddle, layout::kMeterScaleWidth, kHeight);
    return &meter;
}

void GLView_StripEqView::AddPresets() {
    constexpr float kMiddle = kHeightPoints - layout::kHeaderBelowTop;
    Place(AddCaption("Presets:", kAlignLeft), layout::kPresetLabelLeft, kMiddle,
          layout::kFirstPresetLeft - layout::kPresetLabelLeft, layout::kPresetHeight);
    float left = layout::kFirstPresetLeft;
    for (const Preset& preset : kPresets) {
        auto& button = AddPresetButton("Preset", preset.name);
        button.SetPresetName(preset.name);
        button.SetLabelSize(7.0f);
        for (size_t i = 0; i < preset.values.size(); ++i) {
            button.SetPresetValue(kFirstPresetPort + static_cast<uint32_t>(i), preset.values[i]);
        }
        Place(button, left, kMiddle, layout::kPresetWidth, layout::kPresetHeight);
        left += layout::kPresetPitch;
    }
    auto& help = Add<GLView_HelpLine>();
    Place(help, layout::kHelpLeft, kMiddle, layout::kHelpWidth, layout::kPresetHeight);
    // From above: the last bit of a text's height decides how its edges are smoothed.
    help.SetPosition(help.x, viewTop - layout::kHeaderBelowTop * GetInterfaceScale());
}

void GLView_StripEqView::PortEvent(uint32_t port, uint32_t size, uint32_t format,
                                   const void* buffer) {
    if (const auto plot = connection_.ReadPlot(format, buffer, size)) {
        graph_->AddSpectrumRow(plot->id, plot->values);
    } else if (const auto value = connection_.ReadControl(port, format, buffer, size)) {
        ApplyReport(port, *value);
    }
}

void GLView_StripEqView::ApplyReport(uint32_t port, float value) {
    if (!std::exchange(hasReportedControl_, true)) {
        graph_->MarkAllDirty(true);
        redrawNeeded = true;
    }
    SetParameter(port, value, false);
    if (port == kMeterInPort) inputMeter_->SetLevel(value);
    if (port == kMeterOutPort) outputMeter_->SetLevel(value);
}

void GLView_StripEqView::AssumeUnreportedWrites(int64_t wait_ms) {
    connection_.ForEachUnshown(wait_ms,
                               [this](uint32_t port, float value) { ApplyReport(port, value); });
}

void GLView_StripEqView::PrePress() {
    AssumeUnreportedWrites(0);
}

void GLView_StripEqView::Scroll(float delta) {
    AssumeUnreportedWrites(0);
    GLView_BaseView::Scroll(delta);
}

void GLView_StripEqView::MouseDown(GLPoint point, GLPoint pixelPoint) {
    GLView_BaseView::MouseDown(point, pixelPoint);
    // A drag goes on from the value that a double click has written.
    if (IsResetPress()) AssumeUnreportedWrites(0);
    presetChosen_ = dynamic_cast<GLView_PresetButton*>(captureView) != nullptr;
}

void GLView_StripEqView::MouseDragTo(GLPoint pixelPoint) {
    presetChosen_ = false;
    // A drag continues at its new speed from what it has reached.
    if (std::exchange(dragModifiers_, modifiers) != modifiers) AssumeUnreportedWrites(0);
    GLView_BaseView::MouseDragTo(pixelPoint);
}

void GLView_StripEqView::PointerLeft() {
    graph_->SelectHandle(-1);
    GLView_BaseView::PointerLeft();
}

void GLView_StripEqView::SendParameter(uint32_t index, float value) {
    connection_.Write(index, value);
}

void GLView_StripEqView::EditorOpened() {
    GLView_BaseView::EditorOpened();
    connection_.SendOpened();
}

void GLView_StripEqView::EditorClosed() {
    ReleaseAll();  // a held control restores what it changed temporarily
    connection_.SendClosed();
}

GLColor GLView_StripEqView::GetBackgroundColor() {
    constexpr float kBrightest = 0.076f;
    GLColor ground = GLView_BaseView::GetBackgroundColor();
    const float peak = std::max({ground.red, ground.green, ground.blue});
    if (peak > kBrightest) {
        const float share = kBrightest / peak;
        ground.Set(ground.red * share, ground.green * share, ground.blue * share, ground.alpha);
    }
    return ground;
}

GLColor GLView_StripEqView::GetContrastColor() {
    constexpr float kDarkest = 0.26f;  // luminance
    constexpr float kStep = 0.05f;
    GLColor contrast = GLView_BaseView::GetContrastColor();
    while (Luminance(contrast) < kDarkest) contrast = Lightened(contrast, kStep);
    return contrast;
}

void GLView_StripEqView::ShowMessage(const char* line1, const char* line2, const char* line3,
                                     const char* line4, const char* line5) {
    message_.SetLines({line1, line2, line3, line4, line5});
    OpenDialog(&message_);
}

void GLView_StripEqView::CheckResources() {
    const std::string folder = resourceDirectory + "res";
    if (!textRenderer->HasLetters()) {
        std::fprintf(stderr, "error: The editor finds no %sletters in %s\n",
                     textRenderer->HasPictures() ? "" : "pictures and ", folder.c_str());
    } else if (!textRenderer->HasPictures()) {
        ShowMessage("The editor's pictures are missing. They were looked for in", "",
                    folder.c_str(), "", "Install the plugin's bundle again, with its folders.");
    }
}

void GLView_StripEqView::PreDraw() {
    if (!std::exchange(hasCheckedResources_, true)) CheckResources();
    selectedBand_ = graph_->selectedHandle;
    const GLView* told = captureView != nullptr ? captureView : focusView;
    if (told != nullptr && !presetChosen_) {
        ShowInfo(told->infoTitle, told->infoText);
    } else {
        ShowInfo("", "");  // not the control that the host has reported last
    }
}

void GLView_StripEqView::DrawBackground() {
    // Darker than the graph and the strips.
    constexpr float kShare = 0.7f;
    const GLColor ground = GetBackgroundColor();
    // The layer has the panel's aspect ratio; a rectangle over all of it takes five times as long.
    glClearColor(ground.red * kShare, ground.green * kShare, ground.blue * kShare, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);  // clear colour of the window's margins
}

}  // namespace brindle
