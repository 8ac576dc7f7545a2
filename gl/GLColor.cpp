// SPDX-License-Identifier: ISC
#include "gl/GLColor.h"

#include "gl/gl.h"

namespace brindle {

void GLColor::Apply() {
    glColor4f(red, green, blue, alpha);
}

void GLColor::Apply() const {
    glColor4f(red, green, blue, alpha);
}

void GLColor::ApplyDimmed(float f) const {
    glColor4f(red * f, green * f, blue * f, alpha);
}

void GLColor::ApplyFaded(float f) const {
    glColor4f(red, green, blue, alpha * f);
}

}  // namespace brindle
