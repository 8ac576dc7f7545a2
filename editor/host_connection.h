// SPDX-License-Identifier: ISC
#pragma once

#include <lv2/atom/forge.h>
#include <lv2/ui/ui.h>
#include <lv2/urid/urid.h>

#include <cstdint>
#include <optional>

#include "editor/messages.h"
#include "editor/pending_writes.h"
#include "gl/host_link.h"

namespace brindle {

/// Sends the editor's messages to the host and reads the host's. UI thread.
class HostConnection {
  public:
    /// `map` may be null; then the engine's messages are not read.
    HostConnection(HostWriter newHost, LV2_URID_Map* map);
    HostConnection(const HostConnection&) = delete;
    HostConnection& operator=(const HostConnection&) = delete;

    /// Writes a control port.
    void Write(uint32_t port, float value);
    /// The widgets' writer: passes everything on to the host unchanged and records control values
    /// for `TakeUnreported`.
    HostWriter GetWriter() { return {PassOn, this}; }

    /// Ask the engine to send analyser rows, and to stop.
    void SendOpened() { Send(uris_.enable_ui); }
    void SendClosed() { Send(uris_.disable_ui); }

    /// The analyser row of a port event; empty if it has none.
    std::optional<PlotMessage> ReadPlot(uint32_t format, const void* buffer, uint32_t size) const;
    /// The control value of a port event; empty if it has none or is not finite. The port's last
    /// write then counts as reported.
    std::optional<float> ReadControl(uint32_t port, uint32_t format, const void* buffer,
                                     uint32_t size);
    /// Calls `assume(port, value)` for writes that the host does not report (see PendingWrites).
    template <typename Assume>
    void ForEachOverdue(int64_t now_ms, Assume assume) {
        pending_.ForEachOverdue(now_ms, assume);
    }
    /// Time of the steady clock that writes are stamped with, in ms.
    static int64_t Now();

  private:
    static void PassOn(LV2UI_Controller connection, uint32_t port, uint32_t size, uint32_t protocol,
                       const void* buffer);
    void Send(LV2_URID request);

    HostWriter host_;
    EqUris uris_;
    LV2_Atom_Forge forge_{};
    PendingWrites pending_;
};

}  // namespace brindle
