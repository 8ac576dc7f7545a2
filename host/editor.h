// SPDX-License-Identifier: ISC
#pragma once

#include <lv2/ui/ui.h>

#include <cstdint>
#include <vector>

#include "host/bundle.h"
#include "host/live_plugin.h"
#include "host/top_window.h"

namespace brindle {

/// The bundle's editor in a window, connected to a live plugin as a workstation does. UI thread.
class Editor {
  public:
    /// Calls of tick() per second.
    static constexpr int kTicks = 30;

    /// Opens the editor for a plugin with `channels` at `rate_hz`. All arguments must outlive it.
    /// Throws UserError if the bundle has no X11 editor or the editor refuses.
    Editor(Bundle& bundle, LivePlugin& plugin, TopWindow& window, int channels, double rate_hz);
    ~Editor();
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;

    /// Reports changes to the editor, handles the window's events, and lets the editor handle its
    /// own and draw. False if the editor asks to be closed.
    bool tick();
    /// Reports changed controls, meters and messages to the editor; tick() begins with this.
    void report();

  private:
    void load(const Bundle& bundle, int channels);
    void instantiate(Bundle& bundle, int channels, double rate_hz);
    void apply_write(uint32_t port, uint32_t size, uint32_t protocol, const void* buffer);
    void report_value(uint32_t port);

    LivePlugin& plugin_;
    TopWindow& window_;
    LV2_URID event_transfer_;
    const LV2UI_Descriptor* descriptor_ = nullptr;
    const LV2UI_Idle_Interface* idle_ = nullptr;
    LV2UI_Touch touch_;
    LV2UI_Resize resize_;
    LV2UI_Handle handle_ = nullptr;
    LV2UI_Widget widget_ = nullptr;
    std::vector<uint8_t> is_changed_;  ///< by port: a control to report to the editor
};

}  // namespace brindle
