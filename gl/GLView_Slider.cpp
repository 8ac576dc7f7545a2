// SPDX-License-Identifier: ISC
#include "gl/GLView_Slider.h"

namespace brindle {

bool GLView_Slider::HitTest(GLPoint point) {
    ParentToLocal(point);
    return visible && point.x * point.x < hw * hw && point.y * point.y < hh * hh;
}

}  // namespace brindle
