// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <limits>
#include <string>

#include "gl/GLView_Control.h"
#include "gl/value_text.h"

namespace brindle {

struct ControlFace;

/// The port of the control that the user is dragging, -1 for none. UI thread.
inline int32_t activePort = -1;

/// A control of one port of the plugin: shows the value that the host reported last, and turns
/// drags and wheel steps into writes. It moves only when the host reports the new value.
///
/// Normalised values run from 0 (`low`) to 1 (`high`). A knob that is not `enabled` looks so but
/// can be turned: a band that is off is set up before it is switched on.
///
/// A wide knob shows as a pill, its value on a track with a mark at `zero`; one that is nearly as
/// high as wide is round.
class GLView_Knob : public GLView_PortControl {
  public:
    static constexpr uint32_t kNoGesturePort = 129;
    static constexpr float kNoLimit = std::numeric_limits<float>::max();

    /// `dragsAlongX`: dragged sideways rather than upwards. The ends are port values.
    GLView_Knob(bool dragsAlongX, float lowValue, float highValue);

    /// Replaces the linear scale between low and high. Null for linear.
    void SetMapping(float (*toValue)(float), float (*toNormalised)(float));
    /// Drags stay inside these port values; the wheel does not heed them.
    void SetLimits(float lowest, float highest);
    /// What a reset press writes; none is written before this was called. The drag that may follow
    /// begins once the host has reported a value.
    void SetResetValue(float value);
    /// The text behind the number.
    void SetUnit(const char* text);

    void ParameterChanged(uint32_t index) override;
    void DrawBack() override;
    void Draw() override;
    void DrawFront() override;
    /// With the label below it.
    GLRect DrawnArea() override;
    void MouseDown(GLPoint point, GLPoint pagePoint) override;
    void MouseUp(GLPoint point) override;
    void MouseDragTo(GLPoint pagePoint) override;
    void Scroll(float delta) override;
    /// A knob that loses the pointer ends the gesture.
    void SetCaptured(bool on) override;
    /// The colour of the value's track, not the view's.
    void SetColor(const GLColor& newColor) override;

    /// The port value at a normalised one.
    virtual float MapValue(float normalised);
    virtual void SetSensitivity(float changePerPixel);
    /// The drag goes on from the pointer's last place in range.
    virtual void ReanchorX();
    virtual void ReanchorY();

    /// Where the value's track starts, normalised: port value 0, or the nearest end.
    float NormalisedZero() const;

    uint32_t gesturePort = kNoGesturePort;  ///< gets 1.0 with each drag step
    float (*map)(float) = nullptr;          ///< normalised to port value
    float (*unmap)(float) = nullptr;        ///< port value to normalised
    bool sendOnReset = false;
    float resetValue = 0.0f;
    GLPoint dragStart{};  ///< window pixels, as are all page points
    GLPoint dragLast{};
    GLColor knobColor = kWhite;
    float low;
    float high;
    float limitLow = kNoLimit;  ///< no limits while this is kNoLimit
    float limitHigh = kNoLimit;
    float normalised = 0.0f;
    bool horizontal;
    ValueStyle style = ValueStyle::Plain;
    float sensitivity = 0.003f;  ///< normalised change a window pixel
    std::string unit;

  protected:
    static constexpr float kLabelRoom = 3.0f;  ///< half widths
    /// The view and its label, whose middle stands so far below its own.
    GLRect DrawnAreaWithLabel(float below);
    /// The control as it is drawn now, with a text.
    ControlFace Face(const char* text);

  private:
    float Normalise(float value) const;
    bool IsFine();
    void LetGo();
    bool IsRound() const;
    /// How far below its middle the label stands.
    float LabelBelow();

    /// A reset was written that the host has not reported yet: a drag has no value to go on from.
    bool resetPending_ = false;
};

}  // namespace brindle
