// SPDX-License-Identifier: ISC
#include "gl/GLView_MomentaryButton.h"

namespace brindle {

void GLView_MomentaryButton::MouseDown(GLPoint point, GLPoint pagePoint) {
    // A second mouse button must not save the auditioned values as the ones to restore.
    if (!held_) {
        // Capture first, so that another button restores its values before they are saved here.
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
