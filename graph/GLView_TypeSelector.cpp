// SPDX-License-Identifier: ISC
#include "graph/GLView_TypeSelector.h"

#include "gl/look.h"

namespace brindle {

const char* GLView_TypeSelector::ShortLabel() {
    return strip_type(strip, GetParameter(port), TypeReading::Label).short_name;
}

void GLView_TypeSelector::ParameterChanged(uint32_t index) {
    if (index == port) Redraw(Layer::Main);
    GLView_MenuSelector::ParameterChanged(index);
}

void GLView_TypeSelector::Draw() {
    Enter();
    DrawEntry(ShortLabel(), labelSize * GetInterfaceScale());
    DrawFrame();
    DrawChildren();
}

}  // namespace brindle
