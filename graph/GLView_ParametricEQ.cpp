// SPDX-License-Identifier: ISC
#include "graph/GLView_ParametricEQ.h"

#include <algorithm>
#include <cmath>

#include "gl/drawing.h"
#include "graph/type_curves.h"

namespace brindle {
namespace {

/// How far outside the graph handles and their markers may be hit, in page units.
constexpr float kReachX = 0.08f;
constexpr float kReachY = 0.28f;

/// The panel, in design pixels: its middle's depth below the graph's, and how far it reaches beyond
/// the graph's sides and height.
constexpr float kPanelBelow = 40.0f;
constexpr float kPanelBeside = 32.0f;
constexpr float kPanelBeyond = 72.0f;
constexpr float kPanelCorner = 8.0f;

bool IsSectionPort(uint32_t index) {
    return index >= section_port(0) && index < section_port(kSectionCount);
}

}  // namespace

GLView_ParametricEQ::GLView_ParametricEQ() {
    SetFrequencyGrid(grid, kPoints, 20.0f, 20000.0f);
}

void GLView_ParametricEQ::ParameterChanged(uint32_t index) {
    if (index >= band_port(0)) {
        for (int band = 0; band < kBandCount; ++band) {
            if (index < band_port(band + 1)) bandDirty[static_cast<size_t>(band)] = true;
        }
    }
    if (IsSectionPort(index)) filtersDirty = true;
    GLView::ParameterChanged(index);
}

void GLView_ParametricEQ::MarkAllDirty(bool dirty) {
    bandDirty.fill(dirty);
    filtersDirty = dirty;
}

void GLView_ParametricEQ::UpdateCurves() {
    if (!filtersDirty && std::ranges::count(bandDirty, true) == 0) return;
    for (int band = 0; band < kBandCount; ++band) {
        const auto k = static_cast<size_t>(band);
        if (bandDirty[k]) UpdateCurve(bands_[k], band_port(band), AddBandCurve);
    }
    if (filtersDirty) {
        for (int section = 0; section < kSectionCount; ++section) {
            UpdateCurve(sections_[static_cast<size_t>(section)], section_port(section),
                        AddSectionCurve);
        }
    }
    SumCurves();
    MarkAllDirty(false);
    plotted_ = true;
}

void GLView_ParametricEQ::UpdateCurve(Curve& curve, uint32_t firstPort, AddCurve add) {
    ClearCurve(grid, curve);
    if (GetParameter(firstPort + kEnable) == 0.0f) return;
    add(grid, curve, GetParameter(firstPort + kType),
        {GetParameter(firstPort + kGain), GetParameter(firstPort + kFrequency),
         GetParameter(firstPort + kQ)});
}

void GLView_ParametricEQ::SumCurves() {
    for (size_t i = 0; i < kPoints; ++i) total_[i] = sections_[0][i] + sections_[1][i];
    for (const Curve& band : bands_) {
        for (size_t i = 0; i < kPoints; ++i) total_[i] += band[i];
    }
    for (size_t i = 0; i < kPoints; ++i) total_[i] = total_[i] * hh / kGraphRangeDb;
}

bool GLView_ParametricEQ::HitTest(GLPoint point) {
    ParentToLocal(point);
    if (std::abs(point.y) - kReachY > hh || std::abs(point.x) - kReachX > hw) return false;
    for (GLView* handle = firstChild; handle != nullptr; handle = handle->nextSibling) {
        if (handle->HitTest(point)) return true;
    }
    return false;
}

GraphLook GLView_ParametricEQ::Look() {
    return {hw, hh, GetPixelSize(), color, GetBackgroundColor()};
}

void GLView_ParametricEQ::DrawBack() {
    glTranslatef(x, y, 0.0f);
    const GraphLook look = Look();
    {
        const MatrixScope matrix;
        glTranslatef(0.0f, -kPanelBelow * look.m, 0.0f);
        look.background.Apply();
        DrawRoundRect(GetResources(), hw + kPanelBeside * look.m, hh + kPanelBeyond * look.m,
                      kPanelCorner * look.m);
    }
    DrawKeyboard(look);
    DrawFrequencyScale(GetResources(), look);
    DrawChildrenBack();
}

void GLView_ParametricEQ::Draw() {
    glTranslatef(x, y, 0.0f);
    const GraphLook look = Look();
    DrawLevelLines(look);
    UpdateCurves();
    if (plotted_) DrawResponse(Heights(), look);
    DrawEdgeShading(look);
    DrawLevelLabels(GetResources(), look);
    DrawChildren();
    glTranslatef(0.0f, -kPanelBelow * look.m, 0.0f);
    look.background.Apply();
    DrawRoundFrame(GetResources(), hw + kPanelBeside * look.m, hh + kPanelBeyond * look.m,
                   kPanelCorner * look.m);
}

GLRect GLView_ParametricEQ::DrawnArea() {
    const float m = GetPixelSize();
    const float middle = y - kPanelBelow * m;
    return {x - hw - kPanelBeside * m, middle - hh - kPanelBeyond * m, x + hw + kPanelBeside * m,
            std::max(middle + hh + kPanelBeyond * m, GetViewTop())};
}

void GLView_ParametricEQ::DrawFront() {
    glTranslatef(x, y, 0.0f);
    DrawSpectrum(spectrum, Look());
    DrawChildrenFront();
}

}  // namespace brindle
