// SPDX-License-Identifier: ISC
#include "editor/GLView_BaseView.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "gl/drawing.h"
#include "gl/settings.h"

namespace brindle {
namespace {

constexpr int32_t kLayerScale = 2;        // layer pixels to a design point
constexpr uint32_t kDoubleClickMs = 200;  // presses this far apart are two clicks again
constexpr float kScalePoints = 800.0f;    // interface points in the height of the view

/// Draws in one part of the bound layer only, and tells in which, for the lifetime of a scope.
class AreaScope {
  public:
    AreaScope(std::optional<LayerArea>& drawn, const LayerArea& area) : drawn_(drawn) {
        drawn_ = area;
        glEnable(GL_SCISSOR_TEST);
        glScissor(area.left, area.bottom, area.right - area.left, area.top - area.bottom);
    }
    ~AreaScope() {
        glDisable(GL_SCISSOR_TEST);
        drawn_.reset();
    }
    AreaScope(const AreaScope&) = delete;
    AreaScope& operator=(const AreaScope&) = delete;

  private:
    std::optional<LayerArea>& drawn_;
};

}  // namespace

GLView_BaseView::GLView_BaseView(int32_t newDesignWidth, int32_t newDesignHeight)
    : designWidth(newDesignWidth),
      designHeight(newDesignHeight),
      viewRight(static_cast<float>(newDesignWidth) / static_cast<float>(newDesignHeight)),
      viewLeft(-viewRight) {
    GLView::SetSize(viewRight - viewLeft, viewTop - viewBottom);
}

GLView_BaseView::~GLView_BaseView() {
    // The children may still ask the page for its services, which are gone below this class.
    GLView_BaseView::DeleteChildren();
}

void GLView_BaseView::SetWindowSize(float width, float height) {
    windowWidth = static_cast<int32_t>(width);
    windowHeight = static_cast<int32_t>(height);
    UpdateLetterbox();
}

void GLView_BaseView::SetSampleRate(float rate) {
    sampleRate = rate;
    hostRate = rate;
}

void GLView_BaseView::UpdateLetterbox() {
    const float width = static_cast<float>(windowWidth);
    const float height = static_cast<float>(windowHeight);
    const float aspect = static_cast<float>(designWidth) / static_cast<float>(designHeight);
    const bool narrow = width / height <= aspect;
    const int32_t frameWidth = narrow ? windowWidth : static_cast<int32_t>(aspect * height);
    const int32_t frameHeight = narrow ? static_cast<int32_t>(width / aspect) : windowHeight;
    letterboxX = static_cast<float>(windowWidth - frameWidth) * 0.5f;
    letterboxY = static_cast<float>(windowHeight - frameHeight) * 0.5f;
}

GLPoint GLView_BaseView::PixelToTree(GLPoint framePixel) const {
    const float frameWidth = static_cast<float>(windowWidth) - 2.0f * letterboxX;
    const float frameHeight = static_cast<float>(windowHeight) - 2.0f * letterboxY;
    // Upwards the view always spans two units, whatever its bounds.
    return {viewLeft + framePixel.x / (frameWidth / (viewRight - viewLeft)),
            viewTop + framePixel.y / (frameHeight * -0.5f)};
}

void GLView_BaseView::ClearInfo() {
    SetInfoTitle("");
    SetInfoText("");
}

void GLView_BaseView::MouseButton(int32_t button, bool press, float windowX, float windowY) {
    if (textRenderer == nullptr) return;
    const GLPoint pixel = {static_cast<float>(static_cast<int32_t>(windowX - letterboxX)),
                           static_cast<float>(static_cast<int32_t>(windowY - letterboxY))};
    const GLPoint point = PixelToTree(pixel);
    pressedButton = button;
    if (!press) {
        MouseUp(point);
        return;
    }
    doubleClick = eventTime - lastPressTime - 1 < kDoubleClickMs - 1;
    MouseDown(point, pixel);
    doubleClick = false;
    lastPressTime = eventTime;
}

void GLView_BaseView::MouseDown(GLPoint point, GLPoint pixelPoint) {
    PrePress();
    if (modalDialog != nullptr) {
        if (modalDialog->HitTest(point)) {
            modalDialog->MouseDown(point, pixelPoint);
        } else {
            CloseDialog(true);
        }
        return;
    }
    GLView::MouseDown(point, pixelPoint);
}

void GLView_BaseView::MouseUp(GLPoint point) {
    pressedButton = 0;
    if (captureView != nullptr) {
        captureView->MouseUp(point);
    } else if (modalDialog != nullptr) {
        modalDialog->MouseUp(point);
    } else {
        SetCaptured(false);
    }
}

void GLView_BaseView::PointerMotion(float windowX, float windowY) {
    if (textRenderer != nullptr) MouseDragTo({windowX - letterboxX, windowY - letterboxY});
}

void GLView_BaseView::MouseDragTo(GLPoint pixelPoint) {
    const GLPoint point = PixelToTree(pixelPoint);
    if (modalDialog != nullptr) {
        if (modalDialog->HitTest(point)) {
            modalDialog->ShowInfoAt(point);
        } else {
            SetSelected(false);
            ClearInfo();
        }
    } else if (captureView != nullptr) {
        captureView->MouseDragTo(pixelPoint);
    } else {
        ClearInfo();
        ShowInfoAt(point);
    }
}

void GLView_BaseView::MouseWheel(float delta) {
    // A wheel that is turned sideways leaves values as they are, and unwritten.
    if (textRenderer != nullptr && delta != 0.0f) Scroll(delta);
}

void GLView_BaseView::Scroll(float delta) {
    if (focusView != nullptr) focusView->Scroll(delta);
}

void GLView_BaseView::Key(bool /*press*/, uint32_t character) {
    KeyDown(character, 0);
}

void GLView_BaseView::SpecialKey(bool /*press*/, uint32_t code) {
    KeyDown(0, code);
}

void GLView_BaseView::KeyDown(uint32_t /*character*/, uint32_t /*code*/) {
    if (textRenderer != nullptr) std::puts("GLView_BaseView::KeyDown, doing nothing");
}

void GLView_BaseView::SetParameter(uint32_t index, float value, bool markDirty) {
    redrawNeeded = redrawNeeded || markDirty;
    if (index < parameters.size()) parameters[index] = value;
    ParameterChanged(index);
}

float GLView_BaseView::GetParameter(uint32_t index) {
    return index < parameters.size() ? parameters[index] : 0.0f;
}

float GLView_BaseView::GetPageWidth() {
    return static_cast<float>(windowWidth) - 2.0f * letterboxX;
}

float GLView_BaseView::GetPageHeight() {
    return static_cast<float>(windowHeight) - 2.0f * letterboxY;
}

float GLView_BaseView::GetInterfaceScale() {
    return (viewTop - viewBottom) / kScalePoints;
}

float GLView_BaseView::GetPixelSize() {
    return (viewTop - viewBottom) / static_cast<float>(designHeight);
}

GLColor GLView_BaseView::GetBackgroundColor() {
    return hostBackgroundColor;
}

GLColor GLView_BaseView::GetContrastColor() {
    return hostContrastColor;
}

bool GLView_BaseView::IsBoxy() {
    return themeBoxy;
}

bool GLView_BaseView::IsFlat() {
    return themeFlat;
}

void GLView_BaseView::ShowInfo(const char* title, const char* text) {
    SetInfoTitle(title);
    SetInfoText(text);
}

void GLView_BaseView::OpenDialog(GLView* dialog) {
    if (modalDialog != nullptr) CloseDialog(true);
    if (dialog != nullptr) {
        dialog->parent = this;
        dialog->SetVisible(true);
        dialog->Close();  // what is in it starts anew
        modalDialog = dialog;
    }
}

void GLView_BaseView::CloseDialog(bool /*outside*/) {
    if (modalDialog != nullptr) {
        modalDialog->SetVisible(false);
        modalDialog = nullptr;
    }
}

void GLView_BaseView::SetCapturedView(GLView* view) {
    MarkViewStatic(captureView);
    captureView = view;
    MarkViewStatic(view);
}

LayerArea GLView_BaseView::ToLayer(const GLRect& area) const {
    constexpr float kRounding = 0.01f;  // pixels
    const auto width = static_cast<float>(kLayerScale * designWidth);
    const auto height = static_cast<float>(kLayerScale * designHeight);
    const float perUnit = height / (viewTop - viewBottom);
    const auto lower = [&](float place, float size) {
        return static_cast<int32_t>(std::clamp(place * perUnit + kRounding, 0.0f, size));
    };
    const auto upper = [&](float place, float size) {
        return static_cast<int32_t>(std::ceil(std::clamp(place * perUnit - kRounding, 0.0f, size)));
    };
    return {lower(area.left - viewLeft, width), lower(area.bottom - viewBottom, height),
            upper(area.right - viewLeft, width), upper(area.top - viewBottom, height)};
}

void GLView_BaseView::MarkFrame(const GLRect& area) {
    AddArea(staleFrame_, ToLayer(area));
}

void GLView_BaseView::MarkStatic(const GLRect& area) {
    AddArea(staleStatic_, ToLayer(area));
}

void GLView_BaseView::MarkViewStatic(GLView* view) {
    while (view != nullptr && view->parent != this) view = view->parent;
    if (view != nullptr) MarkStatic(view->DrawnArea());
}

bool GLView_BaseView::IsDrawn(const GLRect& area) const {
    return !drawnArea_ || drawnArea_->Touches(ToLayer(area));
}

bool GLView_BaseView::DrawsChild(GLView& child) {
    return IsDrawn(child.DrawnArea());
}

void GLView_BaseView::SetSelected(bool /*on*/) {
    focusView = nullptr;
}

void GLView_BaseView::DrawBackground() {
    glDisable(GL_TEXTURE_2D);
    GetBackgroundColor().Apply();
    glRectf(viewLeft, viewBottom, viewRight, viewTop);
    glEnable(GL_TEXTURE_2D);
}

void GLView_BaseView::SetProjection() const {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(viewLeft, viewRight, viewBottom, viewTop, -1.0, 1.0);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE);
}

void GLView_BaseView::RenderFrame() {
    const GLRect whole = {viewLeft, viewBottom, viewRight, viewTop};
    if (textRenderer == nullptr) {
        textRenderer = std::make_unique<GLResources>(GetInterfaceScale());
        layers.Create(kLayerScale * designWidth, kLayerScale * designHeight);
        MarkStatic(whole);
    }
    PreDraw();
    const Looks looks = {GetBackgroundColor(), GetContrastColor(), IsBoxy(), IsFlat()};
    if (redrawNeeded || !(looks == drawnLooks_)) MarkStatic(whole);
    drawnLooks_ = looks;
    // The layers have their own size: another window only takes another copy of them.
    if (layerWidth != windowWidth || layerHeight != windowHeight) {
        layerWidth = windowWidth;
        layerHeight = windowHeight;
        UpdateLetterbox();
        layers.SetShownSize(static_cast<int32_t>(GetPageWidth()),
                            static_cast<int32_t>(GetPageHeight()));
        AddArea(staleShown_, ToLayer(whole));
    }
    DrawLayers();
    layers.CopyShownToWindow(static_cast<int32_t>(letterboxX), static_cast<int32_t>(letterboxY),
                             static_cast<int32_t>(GetPageWidth()),
                             static_cast<int32_t>(GetPageHeight()));
    glDisable(GL_DEPTH_TEST);
    SetProjection();
    glViewport(static_cast<GLint>(letterboxX), static_cast<GLint>(letterboxY),
               static_cast<GLsizei>(GetPageWidth()), static_cast<GLsizei>(GetPageHeight()));
    DrawOverlay();
}

void GLView_BaseView::DrawLayers() {
    for (const LayerArea& area : staleStatic_) AddArea(staleFrame_, area);
    for (const LayerArea& area : staleFrame_) AddArea(staleShown_, area);
    if (staleShown_.empty()) return;
    layers.BindStatic();
    SetProjection();
    for (const LayerArea& area : staleStatic_) {
        const AreaScope part(drawnArea_, area);
        DrawBackground();
        const MatrixScope matrix;
        DrawBack();
    }
    for (const LayerArea& area : staleFrame_) layers.CopyStaticToFrame(area);
    layers.BindFrame();
    SetProjection();
    for (const LayerArea& area : staleFrame_) {
        const AreaScope part(drawnArea_, area);
        const MatrixScope matrix;
        Draw();
    }
    for (const LayerArea& area : staleShown_) layers.ScaleFrameToShown(area);
    redrawNeeded = false;
    staleStatic_.clear();
    staleFrame_.clear();
    staleShown_.clear();
}

void GLView_BaseView::DrawOverlay() {
    {
        const MatrixScope matrix;
        DrawFront();
    }
    if (modalDialog != nullptr) {
        {
            const MatrixScope matrix;
            modalDialog->Draw();
        }
        const MatrixScope matrix;
        modalDialog->DrawFront();
    }
}

}  // namespace brindle
