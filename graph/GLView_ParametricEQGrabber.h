// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "contract/brindle.h"
#include "gl/GLView_Slider.h"
#include "graph/GLView_ParametricEQ.h"

namespace brindle {

/// A handle that rides on the graph's curve at the frequency of a band or section. Dragging it sets
/// frequency and gain, the wheel sets Q. While its marker below the graph is held, the band is
/// searched: heard alone, as a boosted band-pass where its type has a centre, and all else is put
/// back when it is let go, when something else takes the pointer, and when the editor closes.
///
/// Its half width and height are the radius of its disc and of the ring of the selected handle. Its
/// label stands in the disc. Its position stays (0, 0): it draws and is hit where its values put
/// it.
class GLView_ParametricEQGrabber : public GLView_Slider {
  public:
    static constexpr int kHandleCount = kStripCount;

    /// `handleIndex`: 0 to 7 for the bands, 8 and 9 for sections A and B. The graph, which this
    /// observes, is to be its parent.
    GLView_ParametricEQGrabber(GLView_ParametricEQ& parentGraph, int handleIndex);

    /// Through what the five controls are written.
    void SetWriter(const HostWriter& hostWriter);
    /// Whom to tell of drags, null for nobody: a gesture on the frequency and one on the gain.
    void SetTouch(const LV2UI_Touch* touch);

    void ParameterChanged(uint32_t index) override;
    bool HitTest(GLPoint point) override;
    void MouseDown(GLPoint point, GLPoint pagePoint) override;
    void MouseUp(GLPoint point) override;
    void MouseDragTo(GLPoint pagePoint) override;
    void Scroll(float delta) override;
    /// Losing the pointer ends a search.
    void SetCaptured(bool on) override;
    /// So does closing.
    void Close() override;
    void DrawBack() override {}
    void Draw() override;
    void DrawFront() override;
    /// Around its disc.
    GLRect DrawnArea() override;

    /// Where the handle is, in the graph's coordinates.
    GLPoint Place();
    bool IsSearching() const { return foundType_.has_value(); }

    const int32_t index;
    const uint32_t firstPort;

  private:
    bool IsBand() const { return is_band(index); }
    bool IsOn();
    /// What a control is set to, whether the host has reported it or not.
    float KnownValue(uint32_t controlPort);
    float DragSpeed();
    void DragFrequency(float pagePointX, float speed);
    void DragGain(float pagePointY, float speed);
    void BeginSearch();
    void EndSearch();
    void Restore(uint32_t controlPort, float value);
    void DrawMarkerAt(float placeX, const GraphLook& look);
    void DrawSelection(const GraphLook& look, GLPoint place);
    void DrawReadout(const GraphLook& look, float placeX);

    GLView_ParametricEQ& graph_;
    TouchGesture gainGesture_;
    /// What this drag wrote last. Reports of the host come too late to go on from.
    float dragged_hz_ = 0.0f;
    float dragged_db_ = 0.0f;
    std::optional<float> foundType_;  ///< the type's code before a search, none outside of it
    float search_gain_db_ = 0.0f;     ///< the gain before it
    std::array<bool, kHandleCount> searchEnables_{};
};

}  // namespace brindle
