// SPDX-License-Identifier: ISC
#include "editor/GLView_BaseView.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include "editor/letterbox.h"
#include "gl/drawing.h"
#include "gl/settings.h"

namespace brindle {
namespace {

constexpr int32_t kLayerScale = 2;        // layer pixels per design point
constexpr uint32_t kDoubleClickMs = 200;  // presses closer than this are a double click

}  // namespace

GLView_BaseView::GLView_BaseView(int32_t newDesignWidth, int32_t newDesignHeight)
    : designWidth(newDesignWidth),
      designHeight(newDesignHeight),
      viewRight(static_cast<float>(newDesignWidth) / static_cast<float>(newDesignHeight)),
      viewLeft(-viewRight) {
    GLView::SetSize(viewRight - viewLeft, viewTop - viewBottom);
}

GLView_BaseView::~GLView_BaseView() {
    // The children may still call page services, which end with this class.
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
    const GLPoint margins = LetterboxMargins(windowWidth, windowHeight, designWidth, designHeight);
    letterboxX = margins.x;
    letterboxY = margins.y;
}

GLPoint GLView_BaseView::PixelToTree(GLPoint framePixel) {
    return FramePixelToTree(framePixel, {GetPageWidth(), GetPageHeight()}, Bounds());
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

void GLView_BaseView::PointerLeft() {
    SetSelected(false);
    ClearInfo();
}

void GLView_BaseView::MouseWheel(float delta) {
    // A sideways turn of the wheel changes no value and writes none.
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
    bool isNews = true;
    if (index < parameters.size()) {
        isNews = !known_[index] || parameters[index] != value;
        known_[index] = true;
        parameters[index] = value;
    }
    // Hosts report unchanged values too, some 30 times a second. The tree is told of all of them.
    const bool outerIsNews = std::exchange(parameterIsNews_, isNews);
    ParameterChanged(index);
    parameterIsNews_ = outerIsNews;
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
    return (viewTop - viewBottom) / kHeightPoints;
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
        dialog->Close();  // restarts the dialog's contents
        modalDialog = dialog;
    }
}

void GLView_BaseView::CloseDialog(bool /*outside*/) {
    if (modalDialog != nullptr) {
        modalDialog->SetVisible(false);
        modalDialog = nullptr;
    }
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

void GLView_BaseView::RedrawArea(const GLRect& area, Layer layer) {
    if (!parameterIsNews_) return;
    frontStale_ = true;  // the front pass draws the whole front layer in every frame
    if (layer != Layer::Front) layers.Mark(layer, ToLayer(area));
}

bool GLView_BaseView::IsDrawn(const GLRect& area) {
    return layers.IsDrawn(ToLayer(area));
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

PointerShape GLView_BaseView::GetPointerShape() const {
    return focusView != nullptr ? focusView->pointerShape : PointerShape::Arrow;
}

GLView_BaseView::Shown GLView_BaseView::WouldShow() {
    return {{GetBackgroundColor(), GetContrastColor(), IsBoxy(), IsFlat()},
            focusView,
            modalDialog,
            infoTitle,
            infoText};
}

bool GLView_BaseView::IsFrameDue() {
    if (textRenderer == nullptr) return true;
    PreDraw();
    return frontStale_ || IsStale() || IsResized() || !(WouldShow() == shown_);
}

void GLView_BaseView::RenderFrame() {
    if (textRenderer == nullptr) {
        textRenderer = std::make_unique<GLResources>(GetInterfaceScale());
        layers.Create(kLayerScale * designWidth, kLayerScale * designHeight);
        redrawNeeded = true;
    }
    PreDraw();
    Shown shows = WouldShow();
    const bool looksChange = !(shows.looks == shown_.looks);
    if (redrawNeeded || looksChange) layers.Mark(Layer::Back, ToLayer(Bounds()));
    shown_ = std::move(shows);
    // Some drivers notice a new size only when a frame has been shown.
    frontStale_ = IsResized();
    // The layers have a fixed size: a resized window only needs another scaled copy.
    if (IsResized()) {
        layerWidth = windowWidth;
        layerHeight = windowHeight;
        UpdateLetterbox();
        layers.SetShownSize(static_cast<int32_t>(GetPageWidth()),
                            static_cast<int32_t>(GetPageHeight()));
    }
    UpdateLayers();
    const auto left = static_cast<GLint>(letterboxX);
    const auto below = static_cast<GLint>(letterboxY);
    const auto width = static_cast<GLsizei>(GetPageWidth());
    const auto height = static_cast<GLsizei>(GetPageHeight());
    layers.CopyShownToWindow(left, below, width, height);
    glDisable(GL_DEPTH_TEST);
    SetProjection();
    glViewport(left, below, width, height);
    DrawOverlay();
}

void GLView_BaseView::UpdateLayers() {
    layers.Update(
        [this] {
            SetProjection();
            DrawBackground();
            const MatrixScope matrix;
            DrawBack();
        },
        [this] {
            SetProjection();
            const MatrixScope matrix;
            Draw();
        });
    redrawNeeded = false;
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
