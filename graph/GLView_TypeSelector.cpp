// SPDX-License-Identifier: ISC
#include "graph/GLView_TypeSelector.h"

#include <algorithm>

#include "gl/look.h"

namespace brindle {

GLView_TypeSelector::GLView_TypeSelector(std::span<const TypeLabel> typeLabels, uint32_t typePort)
    : labels(typeLabels), port(typePort) {}

const char* GLView_TypeSelector::ShortLabel() {
    const float code = GetParameter(port) + 0.01f;
    const auto last = static_cast<float>(labels.size() - 1);
    return labels[code > 0.0f ? static_cast<size_t>(std::min(code, last)) : 0].short_name;
}

void GLView_TypeSelector::Draw() {
    EnterView(*this);
    DrawEntry(ShortLabel(), labelSize * GetInterfaceScale());
    DrawFrame();
    DrawChildren();
}

}  // namespace brindle
