// SPDX-License-Identifier: ISC
#include "gl/GLView_MomentaryButton.h"

namespace brindle {

void GLView_MomentaryButton::MouseDown(GLPoint point, GLPoint pagePoint) {
    // A second mouse button must not take the auditioned values for those to come back to.
    if (!held_) {
        // First, so that what was auditioned elsewhere is back before it is saved here.
        SetCaptured(true);
        for (uint32_t port = 0; port < values.size(); ++port) {
            if (values[port] != kNotSet) saved[port] = GetParameter(port);
        }
        held_ = true;
    }
    GLView_PresetButton::MouseDown(point, pagePoint);
}

void GLView_MomentaryButton::Restore() {
    if (held_) {
        held_ = false;
        WriteAll(saved);
    }
}

void GLView_MomentaryButton::MouseUp(GLPoint point) {
    Restore();
    GLView_PresetButton::MouseUp(point);
}

void GLView_MomentaryButton::SetCaptured(bool on) {
    if (!on) Restore();
    GLView::SetCaptured(on);
}

}  // namespace brindle
