// SPDX-License-Identifier: ISC
#include "graph/GLView_ParametricEQ.h"

#include <algorithm>
#include <cmath>

#include "contract/ports.h"
#include "gl/drawing.h"
#include "graph/curves/type_curves.h"

namespace brindle {
namespace {

/// How far outside the graph a handle or marker can be hit, in page units.
constexpr float kReachX = 0.08f;
constexpr float kReachY = 0.28f;

/// The panel in design pixels: how far its centre is below the graph's centre, and how far it
/// extends beyond the graph's sides and height.
constexpr float kPanelBelow = 40.0f;
constexpr float kPanelBeside = 32.0f;
constexpr float kPanelBeyond = 72.0f;
constexpr float kPanelCorner = 8.0f;
/// How far handles extend beyond their centres, in design pixels.
constexpr float kHandleReach = 12.0f;

bool IsSectionPort(uint32_t index) {
    return index >= section_port(0) && index < section_port(kSectionCount);
}

}  // namespace

GLView_ParametricEQ::GLView_ParametricEQ() {
    SetFrequencyGrid(grid, kPoints, kLowestHz, kHighestBandHz);
}

void GLView_ParametricEQ::ParameterChanged(uint32_t index) {
    if (index >= band_port(0)) {
        for (int band = 0; band < kBandCount; ++band) {
            if (index < band_port(band + 1)) bandDirty[static_cast<size_t>(band)] = true;
        }
    }
    if (IsSectionPort(index)) filtersDirty = true;
    if (index >= strip_port(0) && index < strip_port(kStripCount)) RedrawCurve();
    GLView::ParameterChanged(index);
}

void GLView_ParametricEQ::RedrawCurve() {
    if (!IsOnPage()) return;
    // Handles extend beyond the edges, and are above the graph where the curve leaves it.
    const float reach = kHandleReach * GetPixelSize();
    RedrawArea({-hw - reach, -hh - reach, hw + reach, GetViewTop() - y}, Layer::Main);
}

void GLView_ParametricEQ::SelectHandle(int32_t handle) {
    if (selectedHandle == handle) return;
    GLView* const below = TopChild();
    selectedHandle = handle;
    for (GLView* const moved : {below, TopChild()}) {
        if (moved != nullptr) moved->Redraw(Layer::Main);
    }
    Redraw(Layer::Front);
}

void GLView_ParametricEQ::AddSpectrumRow(int32_t row, const float* levels_db) {
    spectrum.Add(row, levels_db);
    const SpectrumImage image = MakeSpectrumImage(spectrum);
    if (image == spectrumImage_) return;  // like the rows before, as in silence
    spectrumImage_ = image;
    Redraw(Layer::Front);
}

void GLView_ParametricEQ::MarkAllDirty(bool dirty) {
    bandDirty.fill(dirty);
    filtersDirty = dirty;
    if (dirty) RedrawCurve();
}

void GLView_ParametricEQ::UpdateCurves() {
    if (!filtersDirty && std::ranges::count(bandDirty, true) == 0) return;
    for (int strip = 0; strip < kStripCount; ++strip) {
        if (is_band(strip) ? bandDirty[static_cast<size_t>(strip)] : filtersDirty) {
            UpdateCurve(strip);
        }
    }
    SumCurves();
    MarkAllDirty(false);
    plotted_ = true;
}

void GLView_ParametricEQ::UpdateCurve(int strip) {
    Curve& curve = curves_[static_cast<size_t>(strip)];
    const uint32_t port = strip_port(strip);
    ClearCurve(grid, curve);
    if (GetParameter(port + kEnable) == 0.0f) return;
    const float type = GetParameter(port + kType);
    const CurveSettings settings = {GetParameter(port + kGain), GetParameter(port + kFrequency),
                                    GetParameter(port + kQ)};
    AddStripCurve(grid, curve, strip, type, settings);
}

void GLView_ParametricEQ::SumCurves() {
    // Sections first: the sum's rounding depends on the order.
    const Curve& a = curves_[kBandCount];
    const Curve& b = curves_[kBandCount + 1];
    for (size_t i = 0; i < kPoints; ++i) total_[i] = a[i] + b[i];
    for (const Curve& band : std::span(curves_).first(kBandCount)) {
        for (size_t i = 0; i < kPoints; ++i) total_[i] += band[i];
    }
    for (size_t i = 0; i < kPoints; ++i) total_[i] = total_[i] * hh / kGainRangeDb;
}

GLView* GLView_ParametricEQ::TopChild() {
    if (selectedHandle < 0) return nullptr;
    GLView* child = firstChild;
    for (int32_t i = 0; i < selectedHandle && child != nullptr; ++i) child = child->nextSibling;
    return child;
}

bool GLView_ParametricEQ::HitTest(GLPoint point) {
    UpdateCurves();  // handles are hit where their values place them, even before the next frame
    ParentToLocal(point);
    if (std::abs(point.y) - kReachY > hh || std::abs(point.x) - kReachX > hw) return false;
    return ChildAt(point) != nullptr;
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
    DrawSpectrum(spectrumImage_, Look());
    DrawChildrenFront();
}

}  // namespace brindle
