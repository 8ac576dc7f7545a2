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
    /// The widgets' writer: passes everything on to the host unchanged and records control values.
    HostWriter GetWriter() { return {PassOn, this}; }

    /// Ask the engine to send analyser rows, and to stop.
    void SendOpened() { Send(uris_.enable_ui); }
    void SendClosed() { Send(uris_.disable_ui); }

    /// The analyser row of a port event; empty if it has none.
    std::optional<PlotMessage> ReadPlot(uint32_t format, const void* buffer, uint32_t size) const;
    /// The control value to show after a port event: a late report of a write stands for the port's
    /// newest write (see PendingWrites). Empty if the event has no value or none that is finite.
    std::optional<float> ReadControl(uint32_t port, uint32_t format, const void* buffer,
                                     uint32_t size);
    /// Calls `assume(port, value)` for writes that are not shown after this time (see
    /// PendingWrites).
    template <typename Assume>
    void ForEachUnshown(int64_t wait_ms, Assume assume) {
        pending_.ForEachUnshown(Now(), wait_ms, assume);
    }

  private:
    /// Time of the steady clock that writes are stamped with, in ms.
    static int64_t Now();
    static void PassOn(LV2UI_Controller connection, uint32_t port, uint32_t size, uint32_t protocol,
                       const void* buffer);
    void Send(LV2_URID request);

    HostWriter host_;
    EqUris uris_;
    LV2_Atom_Forge forge_{};
    PendingWrites pending_;
};

}  // namespace brindle
