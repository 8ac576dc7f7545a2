// SPDX-License-Identifier: ISC
#include "editor/GLView_BandDecorator.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <string>

#include "contract/ports.h"
#include "gl/GLView_Knob.h"
#include "gl/look.h"
#include "graph/GLView_ParametricEQSelector.h"
#include "graph/GLView_ParametricFilterSelector.h"
#include "graph/scales.h"
#include "graph/strip_colors.h"

namespace brindle {
namespace {

// In points, from the strip's upper or lower edge or its middle.
constexpr float kToggleBelowTop = 16.0f;
constexpr float kToggleWidth = 72.0f;
constexpr float kToggleHeight = 26.0f;
constexpr float kSelectorAboveBottom = 8.0f;
constexpr float kSelectorWidth = 75.0f;
constexpr float kSelectorHeight = 20.0f;
constexpr float kKnobWidth = 48.0f;
constexpr float kKnobHeight = 22.0f;
constexpr float kKnobLabelSize = 7.5f;

struct KnobPlan {
    Control control;
    float y;  ///< points above the strip's middle
    const char* unit;
    float sensitivity;  ///< normalised change per pixel
    const char* title;  ///< on the help line, after the strip's name
    const char* label;  ///< below the knob
};
constexpr std::array<KnobPlan, 3> kKnobs = {{
    {kGain, 40.0f, "dB", 0.003f, "Gain", "gain"},
    {kQ, 0.0f, " ", 0.003f, "Q", "Q"},
    {kFrequency, -40.0f, "Hz", 0.0005f, "Frequency", "freq"},
}};

constexpr float kBandMenuWidth = 110.0f;
constexpr float kSectionMenuWidth = 130.0f;

std::string TitleOf(int strip, const char* control) {
    return std::string(strip_row(strip).name) + " " + control;
}

}  // namespace

GLView_BandDecorator::GLView_BandDecorator(GLView_ParametricEQ& curveGraph, int stripIndex)
    : index(stripIndex), firstPort(strip_port(stripIndex)), graph_(curveGraph) {
    SetInfoTitle(strip_row(index).name);
}

void GLView_BandDecorator::AddWidgets(const HostWriter& writer, const LV2UI_Touch* touch) {
    AddToggle(writer, touch);
    AddSelector();
    AddKnobs(writer, touch);
    UpdateEffect();
}

void GLView_BandDecorator::AddToggle(const HostWriter& writer, const LV2UI_Touch* touch) {
    const float s = GetInterfaceScale();
    toggle_ = &Add<GLView_Toggle>();
    toggle_->SetPort(writer, firstPort + kEnable);
    toggle_->SetTouch(touch, firstPort + kEnable);
    toggle_->SetText(strip_row(index).label);
    toggle_->SetInfoTitle(TitleOf(index, "on/off").c_str());
    toggle_->SetColor(LampColor(index));
    toggle_->SetSize(kToggleWidth * s, kToggleHeight * s);
    toggle_->SetPosition(0.0f, hh - kToggleBelowTop * s);
}

void GLView_BandDecorator::AddSelector() {
    const float s = GetInterfaceScale();
    GLView_TypeSelector* selector = nullptr;
    if (IsBand()) {
        selector = &Add<GLView_ParametricEQSelector>(index);
    } else {
        selector = &Add<GLView_ParametricFilterSelector>(index - kBandCount);
    }
    selector->SetInfoTitle(TitleOf(index, "EQ Shape").c_str());
    selector->SetSize(kSelectorWidth * s, kSelectorHeight * s);
    selector->SetPosition(0.0f, (kSelectorAboveBottom + 0.5f * kSelectorHeight) * s - hh);
    const std::span<const TypeRow> types = strip_types(index);
    const size_t menu = index == kStripCount - 1 ? 1 : 0;
    const float width = IsBand() ? kBandMenuWidth : kSectionMenuWidth;
    for (size_t place = 1; place <= types.size(); ++place) {
        for (size_t code = 0; code < types.size(); ++code) {
            if (types[code].menu_place[menu] != place) continue;
            selector->AddItem(selector->port, static_cast<float>(code), width * s,
                              types[code].name);
        }
    }
    controls_[kType] = selector;
}

void GLView_BandDecorator::AddKnobs(const HostWriter& writer, const LV2UI_Touch* touch) {
    const float s = GetInterfaceScale();
    for (const KnobPlan& plan : kKnobs) {
        const ControlRow& range = strip_controls(index)[plan.control];
        const uint32_t port = firstPort + plan.control;
        auto& knob = Add<GLView_Knob>(false, range.minimum, range.maximum);
        knob.SetPort(writer, port);
        knob.SetTouch(touch, port);
        knob.SetUnit(plan.unit);
        knob.SetSensitivity(plan.sensitivity);
        knob.SetLimits(range.minimum, range.maximum);  // the scales' ends are rounded
        knob.SetResetValue(strip_row(index).defaults[plan.control]);
        knob.SetInfoTitle(TitleOf(index, plan.title).c_str());
        knob.SetLabel(plan.label);
        knob.SetLabelSize(kKnobLabelSize);
        knob.SetColor(LampColor(index));
        knob.SetSize(kKnobWidth * s, kKnobHeight * s);
        knob.SetPosition(0.0f, plan.y * s);
        if (plan.control == kQ) {
            knob.SetMapping(QAt, PositionOfQ);
        } else if (plan.control == kFrequency && IsBand()) {
            knob.SetMapping(BandHzAt, PositionOfBandHz);
        } else if (plan.control == kFrequency) {
            knob.SetMapping(SectionHzAt, PositionOfSectionHz);
        }
        controls_[plan.control] = &knob;
    }
}

void GLView_BandDecorator::UpdateEffect() {
    const bool on = toggle_->IsOn();
    const TypeRow& type = strip_type(index, GetParameter(firstPort + kType));
    controls_[kType]->SetEnabled(on);
    controls_[kGain]->SetEnabled(on && type.heeds_gain);
    controls_[kQ]->SetEnabled(on && type.heeds_q);
    controls_[kFrequency]->SetEnabled(on);
}

void GLView_BandDecorator::ParameterChanged(uint32_t parameter) {
    if (parameter >= firstPort && parameter < firstPort + kControlCount) UpdateEffect();
    GLView_DecoratorBox::ParameterChanged(parameter);
}

bool GLView_BandDecorator::HitTest(GLPoint point) {
    ParentToLocal(point);
    return std::abs(point.x) < hw && std::abs(point.y) < hh;
}

void GLView_BandDecorator::ShowInfoAt(GLPoint point) {
    graph_.SelectHandle(index);
    GLView_DecoratorBox::ShowInfoAt(point);
}

void GLView_BandDecorator::DrawFront() {
    const Look look(*this);
    if (graph_.selectedHandle == index) DrawSelection(look);
    Enter();
    DrawChildrenFront();
}

void GLView_BandDecorator::DrawSelection(const Look& look) {
    // With edges on whole pixels of the window, the outline is equally thick on all sides.
    constexpr float kThickness = 2.75f;  // points; the corners follow those of the frame
    const float pixel = (GetViewTop() - GetViewBottom()) / GetPageHeight();
    const auto snapped = [pixel](float place, float from) {
        return from + pixel * std::round((place - from) / pixel);
    };
    const float left = snapped(x - hw, GetViewLeft());
    const float right = snapped(x + hw, GetViewLeft());
    const float bottom = snapped(y - hh, GetViewBottom());
    const float top = snapped(y + hh, GetViewBottom());
    const MatrixScope matrix;
    glTranslatef(0.5f * (left + right), 0.5f * (bottom + top), 0.0f);
    LampColor(index).ApplyFaded(toggle_->IsOn() ? 0.8f : 0.35f);
    DrawOutline(look, 0.5f * (right - left), 0.5f * (top - bottom),
                std::max(snapped(kThickness * look.s, 0.0f), pixel));
}

}  // namespace brindle
