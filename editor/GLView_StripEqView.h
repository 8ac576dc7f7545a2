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

/// The editor's one panel: the root of its tree, and between that and the host. Every widget writes
/// through the connection's writer. UI thread.
class GLView_StripEqView : public GLView_BaseView {
  public:
    /// What the host offers, null where it has none. `touch` is read during construction only.
    GLView_StripEqView(HostWriter host, LV2_URID_Map* map, const LV2UI_Touch* touch);
    ~GLView_StripEqView() override;

    /// What the host reports of a port: a control value (format 0) reaches the parameters, tree and
    /// meters, an analyser row the graph. All else is ignored.
    void PortEvent(uint32_t port, uint32_t size, uint32_t format, const void* buffer);
    /// Takes the writes as reported that the host has not answered in time. Call it when idle.
    void AssumeUnreportedWrites();

    /// No handle has its rings and readout, no strip its outline any more.
    void PointerLeft() override;
    void SendParameter(uint32_t index, float value) override;
    /// Switch the engine's analyser on, and off.
    void EditorOpened() override;
    void EditorClosed() override;

    /// The console's ground: the host's colour, as dark as the controls' light texts need it.
    GLColor GetBackgroundColor() override;
    /// The help line tells of the control that is held, or else of the one that is pointed at.
    void PreDraw() override;
    /// Shows five lines above the darkened panel, until the next click.
    void ShowMessage(const char* line1, const char* line2, const char* line3, const char* line4,
                     const char* line5) override;
    void DrawBackground() override;

  private:
    /// Tells the user where pictures of the bundle are missing.
    void CheckResources();
    void ApplyReport(uint32_t port, float value);
    // The pieces of the panel, in the order in which they are asked for the pointer.
    void AddFlatAll();
    void AddGraph(const LV2UI_Touch* touch);
    void AddStrips(const LV2UI_Touch* touch);
    void AddOutput(const LV2UI_Touch* touch);
    GLView_DB60Meter* AddMeter(const char* text, float left, int scaleAlignment);
    void AddPresets();
    GLView_PresetButton& AddPresetButton(const char* title, const char* text);
    GLView_Caption& AddCaption(const char* text, int alignment);
    /// Gives a view its place: its left edge and middle are so far from the panel's left and lower
    /// edge, in points.
    void Place(GLView& view, float left, float middle, float width, float height);

    HostConnection connection_;
    GLView_Message message_;
    // Children of this view, observed.
    GLView_PresetButton* flatAll_ = nullptr;
    GLView_ParametricEQ* graph_ = nullptr;
    GLView_DB60Meter* inputMeter_ = nullptr;
    GLView_DB60Meter* outputMeter_ = nullptr;
    int32_t selectedBand_ = -1;        ///< strip whose handle is selected, -1 for none
    bool hasReportedControl_ = false;  ///< the host has told a value
    bool hasCheckedResources_ = false;
};

}  // namespace brindle
