// SPDX-License-Identifier: ISC
#pragma once

#include <lv2/ui/ui.h>

#include <cstdint>
#include <vector>

#include "host/bundle.h"
#include "host/live_plugin.h"
#include "host/top_window.h"

namespace brindle {

/// The bundle's editor in a window, connected with a live plugin as a workstation does it. UI
/// thread.
class Editor {
  public:
    /// Times a second that tick() is to be called.
    static constexpr int kTicks = 30;

    /// Opens the editor for a plugin with `channels` at `rate_hz`. All that is passed in outlives
    /// it. Throws UserError where there is none for X11, or it refuses.
    Editor(Bundle& bundle, LivePlugin& plugin, TopWindow& window, int channels, double rate_hz);
    ~Editor();
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;

    /// Tells the editor what has changed, handles the window's events, and lets the editor handle
    /// its own and draw. False where the editor asks to be closed.
    bool tick();
    /// The first half of that: control inputs that have changed, meters and messages.
    void report();

  private:
    void load(const Bundle& bundle, int channels);
    void instantiate(Bundle& bundle, int channels, double rate_hz);
    void take_write(uint32_t port, uint32_t size, uint32_t protocol, const void* buffer);
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
    std::vector<uint8_t> is_changed_;  ///< by port: a control that the editor has to be told
};

}  // namespace brindle
