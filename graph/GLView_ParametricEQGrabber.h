// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "contract/brindle.h"
#include "gl/GLView_Slider.h"
#include "graph/GLView_ParametricEQ.h"

namespace brindle {

/// A handle on the graph's curve at the frequency of a band or section. Dragging it sets frequency
/// and gain, the wheel sets Q. Holding its marker below the graph starts a search: the band is
/// heard alone, as a boosted band-pass if its type has a centre. The other controls are restored
/// when the marker is released, another view captures the pointer or the editor closes.
///
/// Half width and height are the radius of its disc and of the ring of the selected handle. Its
/// label is shown in the disc. Its position stays (0, 0): its values define where it is drawn and
/// hit.
class GLView_ParametricEQGrabber : public GLView_Slider {
  public:
    static constexpr int kHandleCount = kStripCount;

    /// `handleIndex`: 0 to 7 for the bands, 8 and 9 for sections A and B. The graph is observed and
    /// must be the parent.
    GLView_ParametricEQGrabber(GLView_ParametricEQ& parentGraph, int handleIndex);

    /// Sets the writer for the five controls.
    void SetWriter(const HostWriter& hostWriter);
    /// Sets the host's touch feature, null for none. A drag touches the frequency and the gain
    /// port, a search only the frequency port.
    void SetTouch(const LV2UI_Touch* touch);

    void ParameterChanged(uint32_t index) override;
    bool HitTest(GLPoint point) override;
    /// The help line tells what the part under the pointer does; once the handle is held or turned,
    /// its values.
    void ShowInfoAt(GLPoint point) override;
    void MouseDown(GLPoint point, GLPoint pagePoint) override;
    void MouseUp(GLPoint point) override;
    void MouseDragTo(GLPoint pagePoint) override;
    void Scroll(float delta) override;
    /// Losing the pointer ends a search.
    void SetCaptured(bool on) override;
    /// Closing ends a search.
    void Close() override;
    void DrawBack() override {}
    void Draw() override;
    void DrawFront() override;
    /// The area around its disc.
    GLRect DrawnArea() override;

    /// The handle's centre in the graph's coordinates.
    GLPoint Place();
    bool IsSearching() const { return foundType_.has_value(); }

    const int32_t index;
    const uint32_t firstPort;

  private:
    bool IsBand() const { return is_band(index); }
    bool IsOn();
    /// The shown value of one of the handle's controls.
    float Value(Control control) { return GetParameter(firstPort + control); }
    /// Writes a control, limited to its port's range.
    void WriteInRange(Control control, float value);
    /// Whether a point is at a height between two distances above the graph, in design pixels.
    bool IsOnStrip(GLPoint point, float bottom, float top);
    void ShowValues();
    float DragSpeed();
    void DragFrequency(float pagePointX, float speed);
    void DragGain(float pagePointY, float speed);
    void BeginSearch();
    void EndSearch();
    /// Draws the label around the origin; scales the matrix.
    void DrawLabel(const GraphLook& look);
    void DrawMarkerAt(float placeX, const GraphLook& look);
    void DrawGrip(const GraphLook& look);
    void DrawSelection(const GraphLook& look, GLPoint place);
    void DrawReadout(const GraphLook& look, float placeX);

    GLView_ParametricEQ& graph_;
    TouchGesture gainGesture_;
    const char* help_ = nullptr;      ///< of the part that the pointer was on last
    bool showsValues_ = false;        ///< the help line shows the handle's values
    std::optional<float> foundType_;  ///< the type's code before a search; empty without one
    float search_gain_db_ = 0.0f;     ///< the gain before a search
    std::array<bool, kHandleCount> searchEnables_{};
};

}  // namespace brindle
