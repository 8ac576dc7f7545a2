// SPDX-License-Identifier: ISC
/// How widgets reach the host: control writes and touch gestures. UI thread.
#pragma once

#include <lv2/ui/ui.h>

#include <cstdint>

namespace brindle {

/// The host's write function with the handle that it wants back. The default one writes nowhere.
struct HostWriter {
    LV2UI_Write_Function function = nullptr;
    LV2UI_Controller controller = nullptr;

    /// Writes a control value: one float in the plain control protocol.
    void Write(uint32_t port, float value) const {
        if (function != nullptr) function(controller, port, sizeof value, 0, &value);
    }
};

/// Announces to the host that the user holds a control. Each begin is followed by exactly one end,
/// at the latest when this object goes.
class TouchGesture {
  public:
    TouchGesture() = default;
    TouchGesture(const TouchGesture&) = delete;
    TouchGesture& operator=(const TouchGesture&) = delete;
    ~TouchGesture() { End(); }

    /// From now on gestures concern `touchedPort` and go to `touch`, of which a copy is kept. Null
    /// where the host gave none. A gesture that has begun ends.
    void Bind(const LV2UI_Touch* touch, uint32_t touchedPort) {
        End();
        feature_ = touch != nullptr ? *touch : LV2UI_Touch{};
        port_ = touchedPort;
    }
    /// Nothing happens where a gesture has begun already, or there is no host to tell.
    void Begin() {
        if (!begun_ && feature_.touch != nullptr) {
            begun_ = true;
            feature_.touch(feature_.handle, port_, true);
        }
    }
    /// Nothing happens where none has begun.
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
