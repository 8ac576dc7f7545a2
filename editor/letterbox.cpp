// SPDX-License-Identifier: ISC
#include "editor/letterbox.h"

namespace brindle {

GLPoint LetterboxMargins(int32_t windowWidth, int32_t windowHeight, int32_t designWidth,
                         int32_t designHeight) {
    const auto width = static_cast<float>(windowWidth);
    const auto height = static_cast<float>(windowHeight);
    const float aspect = static_cast<float>(designWidth) / static_cast<float>(designHeight);
    const bool narrow = width / height <= aspect;
    const int32_t frameWidth = narrow ? windowWidth : static_cast<int32_t>(aspect * height);
    const int32_t frameHeight = narrow ? static_cast<int32_t>(width / aspect) : windowHeight;
    return {static_cast<float>(windowWidth - frameWidth) * 0.5f,
            static_cast<float>(windowHeight - frameHeight) * 0.5f};
}

GLPoint FramePixelToTree(GLPoint pixel, GLPoint frameSize, const GLRect& bounds) {
    return {bounds.left + pixel.x / (frameSize.x / (bounds.right - bounds.left)),
            bounds.top + pixel.y / (frameSize.y * -0.5f)};
}

}  // namespace brindle
