// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>

#include "editor/GLView_BaseView.h"
#include "editor/host_connection.h"
#include "gl/GLView_Caption.h"
#include "gl/GLView_DB60Meter.h"
#include "gl/GLView_Message.h"
#include "gl/GLView_PresetButton.h"
#include "graph/GLView_ParametricEQ.h"

namespace brindle {

/// The editor's panel: the root of its tree, between the tree and the host. All widgets write
/// through the connection's writer. UI thread.
class GLView_StripEqView : public GLView_BaseView {
  public:
    /// The host's features, null if it has none. `touch` is only read during construction.
    GLView_StripEqView(HostWriter host, LV2_URID_Map* map, const LV2UI_Touch* touch);
    ~GLView_StripEqView() override;

    /// Handles a port event from the host: a control value (format 0) goes to the parameters, the
    /// tree and the meters, an analyser row to the graph. All other events are ignored.
    void PortEvent(uint32_t port, uint32_t size, uint32_t format, const void* buffer);
    /// Treats writes as reported if the host has not reported them in time. Call it when idle.
    void AssumeUnreportedWrites(int64_t wait_ms = PendingWrites::kWaitMs);

    // Presses, wheel steps and drags at another speed start from what was written last.
    void PrePress() override;
    void MouseDown(GLPoint point, GLPoint pixelPoint) override;
    void Scroll(float delta) override;
    void MouseDragTo(GLPoint pixelPoint) override;
    /// Deselects the handle and its strip.
    void PointerLeft() override;
    void SendParameter(uint32_t index, float value) override;
    /// Switch the engine's analyser on and off.
    void EditorOpened() override;
    void EditorClosed() override;

    /// The panel's background: the host's colour, dark enough for the controls' light texts.
    GLColor GetBackgroundColor() override;
    /// The host's contrast colour, bright enough to stand out from the panel.
    GLColor GetContrastColor() override;
    /// Shows the help texts of the held control or else of the hovered one. A preset's click clears
    /// the help line until the pointer moves or another control is pressed.
    void PreDraw() override;
    /// Shows five lines above the darkened panel, until the next click.
    void ShowMessage(const char* line1, const char* line2, const char* line3, const char* line4,
                     const char* line5) override;
    void DrawBackground() override;

  private:
    /// Reports missing pictures of the bundle to the user.
    void CheckResources();
    void ApplyReport(uint32_t port, float value);
    // The parts of the panel, in the order in which they are hit-tested.
    void AddFlatAll();
    void AddGraph(const LV2UI_Touch* touch);
    void AddStrips(const LV2UI_Touch* touch);
    void AddOutput(const LV2UI_Touch* touch);
    GLView_DB60Meter* AddMeter(const char* text, float left, int scaleAlignment);
    void AddPresets();
    GLView_PresetButton& AddPresetButton(const char* title, const char* text);
    GLView_Caption& AddCaption(const char* text, int alignment);
    /// Sets a view's size and position in points: its left edge from the panel's left edge, its
    /// middle from the panel's lower edge.
    void Place(GLView& view, float left, float middle, float width, float height);

    HostConnection connection_;
    GLView_Message message_;
    // Children of this view, observed.
    GLView_PresetButton* flatAll_ = nullptr;
    GLView_ParametricEQ* graph_ = nullptr;
    GLView_DB60Meter* inputMeter_ = nullptr;
    GLView_DB60Meter* outputMeter_ = nullptr;
    int32_t selectedBand_ = -1;        ///< strip of the selected handle, -1 for none
    uint32_t dragModifiers_ = 0;       ///< modifier keys at the pointer's last motion
    bool presetChosen_ = false;        ///< by the last press, and the pointer has not moved since
    bool hasReportedControl_ = false;  ///< the host has reported a value
    bool hasCheckedResources_ = false;
};

}  // namespace brindle
