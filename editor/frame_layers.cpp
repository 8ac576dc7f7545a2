// SPDX-License-Identifier: ISC
#include "editor/frame_layers.h"

#include <algorithm>
#include <cstdio>

namespace brindle {
namespace {

void MakeTexture(GLuint& texture, int32_t width, int32_t height) {
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, width, height, 0, GL_RGB, GL_UNSIGNED_BYTE, nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
}

}  // namespace

bool LayerArea::Touches(const LayerArea& other) const {
    return left < other.right && other.left < right && bottom < other.top && other.bottom < top;
}

void AddArea(std::vector<LayerArea>& areas, LayerArea area) {
    const auto touches = [&](const LayerArea& other) { return area.Touches(other); };
    for (auto other = std::ranges::find_if(areas, touches); other != areas.end();
         other = std::ranges::find_if(areas, touches)) {
        area = {std::min(area.left, other->left), std::min(area.bottom, other->bottom),
                std::max(area.right, other->right), std::max(area.top, other->top)};
        areas.erase(other);
    }
    areas.push_back(area);
}

FrameLayers::~FrameLayers() {
    if (framebuffer != 0) {
        glDeleteFramebuffers(1, &framebuffer);
        glDeleteTextures(1, &staticTexture);
        glDeleteTextures(1, &frameTexture);
    }
}

void FrameLayers::Create(int32_t newWidth, int32_t newHeight) {
    if (framebuffer != 0) {
        return;
    }
    width = newWidth;
    height = newHeight;
    glGenFramebuffers(1, &framebuffer);
    MakeTexture(staticTexture, width, height);
    MakeTexture(frameTexture, width, height);
}

void FrameLayers::Bind(GLuint texture) const {
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
        std::puts("ERROR::FRAMEBUFFER:: Framebuffer is not complete!");
    }
    glViewport(0, 0, width, height);
}

void FrameLayers::BindStatic() {
    Bind(staticTexture);
}

void FrameLayers::BindFrame() {
    Bind(frameTexture);
}

void FrameLayers::CopyStaticToFrame(const LayerArea& area) const {
    // Pixel for pixel, which costs a fraction of drawing one texture into the other.
    glBindTexture(GL_TEXTURE_2D, frameTexture);
    glCopyTexSubImage2D(GL_TEXTURE_2D, 0, area.left, area.bottom, area.left, area.bottom,
                        area.right - area.left, area.top - area.bottom);
}

void FrameLayers::BindWindow() {
    // The framebuffer goes first: another one has no back buffer to select.
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDrawBuffer(GL_BACK);
}

}  // namespace brindle
