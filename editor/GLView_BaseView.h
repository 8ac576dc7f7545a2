// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <memory>
#include <string>

#include "editor/frame_layers.h"
#include "gl/GLResources.h"
#include "gl/GLView.h"

namespace brindle {

/// The root of the editor's tree: routes window events to views, implements the page services and
/// renders frames. Moving parts are drawn over a picture of the static ones. The picture is redrawn
/// where views ask for it, and as a whole if `redrawNeeded` is set. A frame is due when a view has
/// asked for it, or when roles, help texts, looks or the window's size have changed.
///
/// Window pixels count from the window's top left corner, frame pixels from that of the letterboxed
/// frame; the tree's y points upwards. Events are ignored until the first frame. UI thread.
class GLView_BaseView : public GLView {
  public:
    static constexpr float kHeightPoints = 800.0f;  ///< interface points in the view's height

    /// A tree with a design size in points. Its coordinates run from -1 to 1 upwards, and as far to
    /// both sides as the design's aspect ratio requires.
    GLView_BaseView(int32_t newDesignWidth, int32_t newDesignHeight);
    /// Destroys the children first. Needs the GL context current if frames have been rendered.
    ~GLView_BaseView() override;

    // Window events
    void SetWindowSize(float width, float height);
    void MouseButton(int32_t button, bool press, float windowX, float windowY);
    void PointerMotion(float windowX, float windowY);
    /// The pointer has left the window: no view is hovered.
    virtual void PointerLeft();
    void MouseWheel(float delta);
    void Key(bool press, uint32_t character);
    void SpecialKey(bool press, uint32_t code);
    /// Renders a frame into the window of the current GL context and leaves the window bound.
    void RenderFrame();
    /// Whether a frame would differ from the last one.
    bool IsFrameDue();
    void SetSampleRate(float rate);
    /// Whether the next frame redraws more than the moving parts.
    bool IsStale() const { return redrawNeeded || layers.IsStale(); }
    /// The pointer's shape over the selected view.
    PointerShape GetPointerShape() const;
    /// Sets the time of the next event.
    void SetEventTime(uint32_t time_ms) { eventTime = time_ms; }
    void SetModifiers(uint32_t newModifiers) { modifiers = newModifiers; }

    // Routing from the root downwards; `point` is in tree units
    /// `pixelPoint` is in whole frame pixels.
    void MouseDown(GLPoint point, GLPoint pixelPoint) override;
    void MouseUp(GLPoint point) override;
    /// `pixelPoint` is in frame pixels; the view that captured the pointer gets it unchanged.
    void MouseDragTo(GLPoint pixelPoint) override;
    void Scroll(float delta) override;
    virtual void KeyDown(uint32_t character, uint32_t code);

    /// Stores a port's value (up to index 127) and tells the tree. `markDirty` redraws everything.
    virtual void SetParameter(uint32_t index, float value, bool markDirty);
    /// Called when the editor is shown, and when it is about to close.
    virtual void EditorOpened() {}
    virtual void EditorClosed() {}
    /// The background of the static layer, below all views: the background colour.
    virtual void DrawBackground();

    // Page services
    GLView* Page() override { return this; }
    float GetParameter(uint32_t index) override;
    bool IsResetPress() override { return doubleClick; }
    int32_t GetPressedButton() override { return pressedButton; }
    uint32_t GetModifiers() override { return modifiers; }
    uint32_t GetEventTime() override { return eventTime; }
    GLResources* GetResources() override { return textRenderer.get(); }
    float GetPageWidth() override;
    float GetPageHeight() override;
    float GetInterfaceScale() override;
    float GetViewRight() override { return viewRight; }
    float GetViewLeft() override { return viewLeft; }
    float GetViewTop() override { return viewTop; }
    float GetViewBottom() override { return viewBottom; }
    float GetPixelSize() override;
    GLColor GetBackgroundColor() override;
    GLColor GetContrastColor() override;
    bool IsBoxy() override;
    bool IsFlat() override;
    /// Stores both texts as the root's own help texts, `infoTitle` and `infoText`.
    void ShowInfo(const char* title, const char* text) override;
    void OpenDialog(GLView* dialog) override;
    void CloseDialog(bool outside) override;
    GLView* GetSelectedView() override { return focusView; }
    GLView* GetHoverView() override { return hoverView; }
    GLView* GetCapturedView() override { return captureView; }
    void SetSelectedView(GLView* view) override { focusView = view; }
    void SetHoverView(GLView* view) override { hoverView = view; }
    void SetCapturedView(GLView* view) override { captureView = view; }
    /// Hovering the root itself selects nothing, whatever `on` is.
    void SetSelected(bool on) override;
    bool IsPage() const override { return true; }
    void RedrawArea(const GLRect& area, Layer layer) override;
    bool IsDrawn(const GLRect& area) override;

  protected:
    float sampleRate = 0.0f;                    ///< Hz
    std::unique_ptr<GLResources> textRenderer;  ///< null until the first frame
    GLView* focusView = nullptr;                ///< selected: gets wheel events. Observed
    GLView* hoverView = nullptr;                ///< observed
    GLView* captureView = nullptr;              ///< has captured the pointer. Observed
    int32_t windowWidth = 0;                    ///< pixels
    int32_t windowHeight = 0;
    int32_t layerWidth = -1;  ///< window size that the shown picture was last made for
    int32_t layerHeight = -1;
    int32_t designWidth;  ///< points
    int32_t designHeight;
    int32_t pressedButton = 0;   ///< 0 for none
    uint32_t lastPressTime = 0;  ///< ms
    bool doubleClick = false;    ///< true while a double click is dispatched
    uint32_t eventTime = 0;      ///< ms
    uint32_t modifiers = 0;      ///< 1 Shift, 2 Ctrl, 4 Alt, 8 Super
    float viewRight;             ///< bounds of the tree's coordinates
    float viewLeft;
    float viewTop = 1.0f;
    float viewBottom = -1.0f;
    float letterboxX = 0.0f;  ///< margins beside and above the frame, window pixels
    float letterboxY = 0.0f;
    FrameLayers layers;
    GLView* modalDialog = nullptr;  ///< observed
    std::array<float, 128> parameters{};

  private:
    /// The looks of everything drawn. Another editor of the process may change them.
    struct Looks {
        GLColor background;
        GLColor contrast;
        bool boxy = false;
        bool flat = false;
        bool operator==(const Looks&) const = default;
    };
    /// What a frame shows besides the layers and what views ask for. The views are only compared.
    struct Shown {
        Looks looks;
        const GLView* selected = nullptr;
        const GLView* dialog = nullptr;
        std::string title;  ///< help texts
        std::string text;
        bool operator==(const Shown&) const = default;
    };

    LayerArea ToLayer(const GLRect& area) const;
    GLPoint PixelToTree(GLPoint framePixel);
    void ClearInfo();
    GLRect Bounds() const { return {viewLeft, viewBottom, viewRight, viewTop}; }
    void UpdateLetterbox();
    Shown WouldShow();
    bool IsResized() const { return layerWidth != windowWidth || layerHeight != windowHeight; }
    void UpdateLayers();
    void SetProjection() const;
    void DrawOverlay();

    Shown shown_;                  ///< by the last frame
    bool frontStale_ = false;      ///< a view asks for another frame
    std::bitset<128> known_;       ///< parameters that have been set
    bool parameterIsNews_ = true;  ///< false while an unchanged value is reported
};

}  // namespace brindle
