// SPDX-License-Identifier: ISC
#include "editor/host_connection.h"

#include <chrono>
#include <cmath>
#include <cstring>

namespace brindle {
namespace {

constexpr uint32_t kFloatProtocol = 0;

/// Replaces a map that the host does not have.
LV2_URID MapNothing(LV2_URID_Map_Handle, const char*) {
    return 0;
}

}  // namespace

HostConnection::HostConnection(HostWriter newHost, LV2_URID_Map* map)
    : host_(newHost), uris_(map_urids(map, UridOrder::MessageFirst)) {
    LV2_URID_Map none = {nullptr, MapNothing};
    lv2_atom_forge_init(&forge_, map != nullptr ? map : &none);
}

void HostConnection::Write(uint32_t port, float value) {
    GetWriter().Write(port, value);
}

void HostConnection::PassOn(LV2UI_Controller connection, uint32_t port, uint32_t size,
                            uint32_t protocol, const void* buffer) {
    auto& self = *static_cast<HostConnection*>(connection);
    if (protocol == kFloatProtocol && size == sizeof(float)) {
        float value = 0.0f;
        std::memcpy(&value, buffer, sizeof value);
        // Before the host's call, because the host may report the value before it returns.
        self.pending_.Written(port, value, Now());
    }
    if (self.host_.function != nullptr) {
        self.host_.function(self.host_.controller, port, size, protocol, buffer);
    }
}

void HostConnection::Send(LV2_URID request) {
    const Request message(forge_, request);
    if (host_.function != nullptr) {
        host_.function(host_.controller, kControlPort, message.Size(), uris_.atom_event_transfer,
                       message.Atom());
    }
}

std::optional<PlotMessage> HostConnection::ReadPlot(uint32_t format, const void* buffer,
                                                    uint32_t size) const {
    // Without a map the atom format is 0, but format 0 means control values.
    if (format == 0 || format != uris_.atom_event_transfer) return std::nullopt;
    return ReadPlotMessage(uris_, buffer, size);
}

std::optional<float> HostConnection::ReadControl(uint32_t port, uint32_t format, const void* buffer,
                                                 uint32_t size) {
    float value = 0.0f;
    if (format != kFloatProtocol || buffer == nullptr || size != sizeof value) return std::nullopt;
    std::memcpy(&value, buffer, sizeof value);
    if (!std::isfinite(value)) return std::nullopt;
    return pending_.Reported(port, value, Now());
}

int64_t HostConnection::Now() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

}  // namespace brindle
