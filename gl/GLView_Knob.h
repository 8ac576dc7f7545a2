// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <limits>
#include <string>

#include "gl/GLView_Control.h"
#include "gl/value_text.h"

namespace brindle {

struct ControlFace;

/// Port of the control that is being dragged, -1 for none. UI thread.
inline int32_t activePort = -1;

/// A control for one port of the plugin. It shows the value that the host reported last, and turns
/// drags and wheel steps into writes. It moves only when the host reports the new value.
///
/// Normalised values run from 0 (`low`) to 1 (`high`). A knob that is not `enabled` is drawn grey
/// but can still be turned: a band can be set up before it is switched on.
///
/// A wide knob is drawn as a display with a track below its value, and a mark at `NormalisedZero`;
/// a knob that is nearly as high as wide is drawn round.
class GLView_Knob : public GLView_PortControl {
  public:
    static constexpr uint32_t kNoGesturePort = 129;
    static constexpr float kNoLimit = std::numeric_limits<float>::max();

    /// `dragsAlongX`: dragged sideways instead of upwards. The ends are port values.
    GLView_Knob(bool dragsAlongX, float lowValue, float highValue);

    /// Replaces the linear scale between low and high. Null restores it.
    void SetMapping(float (*toValue)(float), float (*toNormalised)(float));
    /// Limits drags to these port values. The wheel ignores the limits.
    void SetLimits(float lowest, float highest);
    /// Sets the value that a reset press writes; until then a reset press writes nothing.
    void SetResetValue(float value);
    /// The text after the number.
    void SetUnit(const char* text);

    void ParameterChanged(uint32_t index) override;
    void DrawBack() override;
    void Draw() override;
    void DrawFront() override;
    /// Includes the label below the knob.
    GLRect DrawnArea() override;
    void MouseDown(GLPoint point, GLPoint pagePoint) override;
    void MouseUp(GLPoint point) override;
    void MouseDragTo(GLPoint pagePoint) override;
    void Scroll(float delta) override;
    /// Losing the pointer ends the gesture.
    void SetCaptured(bool on) override;
    /// Sets the colour of the value's track, not the view's colour.
    void SetColor(const GLColor& newColor) override;

    /// The port value at a normalised value.
    virtual float MapValue(float normalised);
    virtual void SetSensitivity(float changePerPixel);
    /// Restart the drag from the pointer's last position in range.
    virtual void ReanchorX();
    virtual void ReanchorY();

    /// Normalised start of the value's track: port value 0, or the nearest end.
    float NormalisedZero() const;

    uint32_t gesturePort = kNoGesturePort;  ///< 1.0 is written to it with each drag step
    float (*map)(float) = nullptr;          ///< normalised to port value
    float (*unmap)(float) = nullptr;        ///< port value to normalised
    bool sendOnReset = false;
    float resetValue = 0.0f;
    GLPoint dragStart{};  ///< pixels of the frame, like all page points
    GLPoint dragLast{};
    GLColor knobColor = kWhite;
    float low;
    float high;
    float limitLow = kNoLimit;  ///< kNoLimit: drags are not limited
    float limitHigh = kNoLimit;
    float normalised = 0.0f;
    bool horizontal;
    ValueStyle style = ValueStyle::Plain;
    float sensitivity = 0.003f;  ///< normalised change per window pixel
    std::string unit;

  protected:
    static constexpr float kLabelRoom = 3.0f;  ///< in half widths
    /// The area of the view and its label, whose middle is `below` under the view's middle.
    GLRect DrawnAreaWithLabel(float below);
    /// The control's current state for drawing, with `text`.
    ControlFace Face(const char* text);

  private:
    float Normalise(float value) const;
    bool IsFine();
    void LetGo();
    bool IsRound() const;
    /// Distance of the label below the view's middle.
    float LabelBelow();
};

}  // namespace brindle
