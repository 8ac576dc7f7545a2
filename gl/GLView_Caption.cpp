// SPDX-License-Identifier: ISC
#include "gl/GLView_Caption.h"

namespace brindle {

bool GLView_Caption::HitTest(GLPoint /*point*/) {
    return false;
}

}  // namespace brindle
