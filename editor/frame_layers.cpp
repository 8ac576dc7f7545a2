// SPDX-License-Identifier: ISC
#include "editor/frame_layers.h"

#include <algorithm>
#include <cstdio>

#include "gl/primitives.h"

namespace brindle {
namespace {

/// Makes a picture in the layout of window pixels, whose fourth byte means nothing. Drivers copy
/// such pictures unconverted; software GL has a fast way to fill rectangles in them.
void MakeTexture(GLuint& texture, int32_t width, int32_t height) {
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV,
                 nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

constexpr GLRect kUpright = {-1.0f, -1.0f, 1.0f, 1.0f};
/// Turns the place, not the texture: the corners then come in a blit's order, and software GL
/// rounds like one.
constexpr GLRect kUpsideDown = {-1.0f, 1.0f, 1.0f, -1.0f};

/// Fills the bound picture of this size in pixels with another one. A blit with a linear filter
/// gives the same picture no sooner, but software GL compiles programs of its own for it, which
/// take more than a third of the time until the first frame.
void DrawScaled(GLuint texture, int32_t width, int32_t height, const GLRect& place) {
    glViewport(0, 0, width, height);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glEnable(GL_TEXTURE_2D);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    const OpaqueScope opaque;
    const TexturedQuads quads(texture);
    EmitQuad(place);
}

int64_t Size(const LayerArea& area) {
    return int64_t{area.right - area.left} * (area.top - area.bottom);
}

LayerArea Join(const LayerArea& a, const LayerArea& b) {
    return {std::min(a.left, b.left), std::min(a.bottom, b.bottom), std::max(a.right, b.right),
            std::max(a.top, b.top)};
}

/// Adds an area to a list of disjoint areas, merged with those that it touches or nearly touches:
/// some more pixels take less time than another pass over the tree.
void AddArea(std::vector<LayerArea>& areas, LayerArea area) {
    constexpr int64_t kPixelsOfAPass = 8000;
    if (area.left >= area.right || area.bottom >= area.top) return;
    const auto isNear = [&](const LayerArea& other) {
        return area.Touches(other) ||
               Size(Join(area, other)) <= Size(area) + Size(other) + kPixelsOfAPass;
    };
    for (auto other = std::ranges::find_if(areas, isNear); other != areas.end();
         other = std::ranges::find_if(areas, isNear)) {
        area = Join(area, *other);
        areas.erase(other);
    }
    areas.push_back(area);
}

}  // namespace

bool LayerArea::Touches(const LayerArea& other) const {
    return left < other.right && other.left < right && bottom < other.top && other.bottom < top;
}

FrameLayers::~FrameLayers() {
    if (framebuffer != 0) {
        glDeleteFramebuffers(1, &framebuffer);
        glDeleteFramebuffers(1, &shownFramebuffer_);
        glDeleteFramebuffers(1, &halfFramebuffer_);
        glDeleteTextures(1, &halfTexture_);
        glDeleteTextures(1, &staticTexture);
        glDeleteTextures(1, &frameTexture);
        glDeleteTextures(1, &shownTexture_);
    }
}

void FrameLayers::Create(int32_t newWidth, int32_t newHeight) {
    if (framebuffer != 0) return;
    width_ = newWidth;
    height_ = newHeight;
    glGenFramebuffers(1, &framebuffer);
    glGenFramebuffers(1, &shownFramebuffer_);
    MakeTexture(staticTexture, width_, height_);
    MakeTexture(frameTexture, width_, height_);
}

void FrameLayers::SetShownSize(int32_t newWidth, int32_t newHeight) {
    GLint limit = 1;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
    newWidth = std::clamp(newWidth, 1, limit);
    newHeight = std::clamp(newHeight, 1, limit);
    if (newWidth == shownWidth_ && newHeight == shownHeight_) return;
    glDeleteTextures(1, &shownTexture_);
    shownWidth_ = newWidth;
    shownHeight_ = newHeight;
    MakeTexture(shownTexture_, shownWidth_, shownHeight_);
    Attach(shownFramebuffer_, shownTexture_);
    if (IsScaledTwice() && halfFramebuffer_ == 0) {
        glGenFramebuffers(1, &halfFramebuffer_);
        MakeTexture(halfTexture_, width_ / 2, height_ / 2);
        Attach(halfFramebuffer_, halfTexture_);
    }
    Mark(Layer::Front, {0, 0, width_, height_});
}

void FrameLayers::Mark(Layer layer, const LayerArea& area) {
    if (layer == Layer::Back) AddArea(staleStatic_, area);
    if (layer != Layer::Front) AddArea(staleFrame_, area);
    AddArea(staleShown_, area);
}

void FrameLayers::Update(const std::function<void()>& drawBack,
                         const std::function<void()>& drawMain) {
    if (staleShown_.empty()) return;
    Bind(staticTexture);
    DrawAreas(staleStatic_, drawBack);
    for (const LayerArea& area : staleFrame_) CopyStaticToFrame(area);
    Bind(frameTexture);
    DrawAreas(staleFrame_, drawMain);
    for (const LayerArea& area : staleShown_) ScaleFrameToShown(area);
    for (Areas* areas : {&staleStatic_, &staleFrame_, &staleShown_}) areas->clear();
}

void FrameLayers::DrawAreas(const Areas& areas, const std::function<void()>& draw) {
    glEnable(GL_SCISSOR_TEST);
    for (const LayerArea& area : areas) {
        drawn_ = area;
        glScissor(area.left, area.bottom, area.right - area.left, area.top - area.bottom);
        draw();
        glFlush();  // software GL fills this area while the next one is prepared
    }
    drawn_.reset();
    glDisable(GL_SCISSOR_TEST);
}

void FrameLayers::Attach(GLuint target, GLuint texture) {
    glBindFramebuffer(GL_FRAMEBUFFER, target);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
        std::puts("ERROR::FRAMEBUFFER:: Framebuffer is not complete!");
    }
}

void FrameLayers::Bind(GLuint texture) const {
    Attach(framebuffer, texture);
    glViewport(0, 0, width_, height_);
}

void FrameLayers::CopyStaticToFrame(const LayerArea& area) const {
    // A copy pixel for pixel costs a fraction of drawing one texture into the other.
    glBindTexture(GL_TEXTURE_2D, frameTexture);
    glCopyTexSubImage2D(GL_TEXTURE_2D, 0, area.left, area.bottom, area.left, area.bottom,
                        area.right - area.left, area.top - area.bottom);
}

void FrameLayers::ScaleFrameToShown(const LayerArea& area) const {
    const auto scaled = [](int32_t place, int32_t size, int32_t of) {
        return static_cast<int32_t>(int64_t{place} * size / of);
    };
    // The filter also reads neighbouring pixels, those of the half-size picture if there is one.
    const int32_t reach = IsScaledTwice() ? 3 : 1;
    const int32_t left = scaled(std::max(area.left - reach, 0), shownWidth_, width_);
    const int32_t right = scaled(area.right + reach, shownWidth_, width_) + 1;
    const int32_t above = scaled(std::max(height_ - area.top - reach, 0), shownHeight_, height_);
    const int32_t below = scaled(height_ - area.bottom + reach, shownHeight_, height_) + 1;
    glEnable(GL_SCISSOR_TEST);
    if (IsScaledTwice()) {
        glBindFramebuffer(GL_FRAMEBUFFER, halfFramebuffer_);
        glScissor(area.left / 2, area.bottom / 2, (area.right - area.left) / 2 + 2,
                  (area.top - area.bottom) / 2 + 2);
        DrawScaled(frameTexture, width_ / 2, height_ / 2, kUpright);
    }
    glBindFramebuffer(GL_FRAMEBUFFER, shownFramebuffer_);
    glScissor(left, above, right - left, below - above);
    DrawScaled(IsScaledTwice() ? halfTexture_ : frameTexture, shownWidth_, shownHeight_,
               kUpsideDown);
    glDisable(GL_SCISSOR_TEST);
}

void FrameLayers::CopyShownToWindow(int32_t x, int32_t y, int32_t areaWidth,
                                    int32_t areaHeight) const {
    const bool fits = areaWidth == shownWidth_ && areaHeight == shownHeight_;
    glBindFramebuffer(GL_READ_FRAMEBUFFER, shownFramebuffer_);
    // The window's back buffer can only be selected while it is bound.
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
    glDrawBuffer(GL_BACK);
    glBlitFramebuffer(0, shownHeight_, shownWidth_, 0, x, y, x + areaWidth, y + areaHeight,
                      GL_COLOR_BUFFER_BIT, fits ? GL_NEAREST : GL_LINEAR);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

}  // namespace brindle
