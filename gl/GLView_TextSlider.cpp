// SPDX-License-Identifier: ISC
#include "gl/GLView_TextSlider.h"

#include <string>

#include "gl/value_display.h"

namespace brindle {

void GLView_TextSlider::DrawTrack() {
    DrawValueDisplayBack(Look(*this), Face(""));
}

void GLView_TextSlider::DrawValue() {
    const std::string text = std::string(Caption()) + infoText;
    DrawValueDisplay(Look(*this), Face(text.c_str()));
}

float GLView_TextSlider::GetTravel() {
    return ValueTravel(Look(*this), Face(""));
}

}  // namespace brindle
