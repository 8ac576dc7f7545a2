// SPDX-License-Identifier: ISC
/// The host's side of an editor's controls: records control writes and touches in one list, in
/// order.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <vector>

#include "gl/host_link.h"

namespace brindle {

/// One call to the host: a control write, or the begin or end of a touch.
struct HostCall {
    enum Kind { kWrite, kTouch, kRelease } kind;
    uint32_t port;
    float value = 0.0f;

    bool operator==(const HostCall&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const HostCall& call) {
        constexpr const char* kNames[] = {"write", "touch", "release"};
        return out << kNames[call.kind] << ' ' << call.port << ' ' << call.value;
    }
};

inline HostCall Wrote(uint32_t port, float value) {
    return {HostCall::kWrite, port, value};
}
inline HostCall Touched(uint32_t port) {
    return {HostCall::kTouch, port};
}
inline HostCall Released(uint32_t port) {
    return {HostCall::kRelease, port};
}

class RecordingHost {
  public:
    RecordingHost() = default;
    RecordingHost(const RecordingHost&) = delete;
    RecordingHost& operator=(const RecordingHost&) = delete;

    HostWriter Writer() { return {&Write, this}; }
    const LV2UI_Touch* TouchFeature() const { return &touch_; }

    std::vector<HostCall> calls;

  private:
    static void Write(LV2UI_Controller controller, uint32_t port, uint32_t size, uint32_t protocol,
                      const void* buffer) {
        HostCall call = Wrote(port, NAN);  // unless it is a control's value
        if (size == sizeof call.value && protocol == 0) std::memcpy(&call.value, buffer, size);
        static_cast<RecordingHost*>(controller)->calls.push_back(call);
    }
    static void Touch(LV2UI_Feature_Handle handle, uint32_t port, bool grabbed) {
        static_cast<RecordingHost*>(handle)->calls.push_back(grabbed ? Touched(port)
                                                                     : Released(port));
    }

    LV2UI_Touch touch_{this, &Touch};
};

}  // namespace brindle
