// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstdint>
#include <limits>

#include "gl/GLView_Control.h"

namespace brindle {

/// A button that writes a stored set of port values. It is lit while all these ports have them.
class GLView_PresetButton : public GLView_Control {
  public:
    /// One value for each port from 0 upwards.
    using Values = std::array<float, 128>;
    /// Marks a port that is not part of the preset.
    static constexpr float kNotSet = std::numeric_limits<float>::max();

    GLView_PresetButton();

    /// Sets the writer of the values.
    void SetWriter(const HostWriter& hostWriter);

    void ParameterChanged(uint32_t index) override;
    void DrawBack() override;
    /// Writes the values in port order and clears the page's info text.
    void MouseDown(GLPoint point, GLPoint pagePoint) override;
    void MouseUp(GLPoint point) override;

    /// Stores a port's value; ports from 128 upwards are ignored.
    virtual void SetPresetValue(uint32_t index, float value);
    /// The text on the button if it has no label.
    virtual void SetPresetName(const char* presetName);

    HostWriter writer;
    Values values;

  protected:
    /// Writes the values of the ports that are part of the preset, in port order.
    void WriteAll(const Values& from) const;

  private:
    /// Whether all ports of the preset have its values, as last reported.
    bool IsSet();

    bool lit_ = false;
};

}  // namespace brindle
