// SPDX-License-Identifier: ISC
/// How widgets reach the host: control writes and touch gestures. UI thread.
#pragma once

#include <lv2/ui/ui.h>

#include <cstdint>

namespace brindle {

/// The host's write function and its controller handle. By default, writes are discarded.
struct HostWriter {
    LV2UI_Write_Function function = nullptr;
    LV2UI_Controller controller = nullptr;

    /// Writes a control value: one float in the plain control protocol.
    void Write(uint32_t port, float value) const {
        if (function != nullptr) function(controller, port, sizeof value, 0, &value);
    }
};

/// Reports to the host that the user holds a control. Each begin is followed by exactly one end, at
/// the latest when this object is destroyed.
class TouchGesture {
  public:
    TouchGesture() = default;
    TouchGesture(const TouchGesture&) = delete;
    TouchGesture& operator=(const TouchGesture&) = delete;
    ~TouchGesture() { End(); }

    /// Sets the port that gestures are reported for and the host's touch feature, of which a copy
    /// is kept; null if the host has none. Ends a gesture in progress.
    void Bind(const LV2UI_Touch* touch, uint32_t touchedPort) {
        End();
        feature_ = touch != nullptr ? *touch : LV2UI_Touch{};
        port_ = touchedPort;
    }
    /// Does nothing if a gesture is in progress or the host has no touch feature.
    void Begin() {
        if (!begun_ && feature_.touch != nullptr) {
            begun_ = true;
            feature_.touch(feature_.handle, port_, true);
        }
    }
    /// Does nothing if no gesture is in progress.
    void End() {
        if (begun_) {
            begun_ = false;
            feature_.touch(feature_.handle, port_, false);
        }
    }

  private:
    LV2UI_Touch feature_{};
    uint32_t port_ = 0;
    bool begun_ = false;
};

}  // namespace brindle
