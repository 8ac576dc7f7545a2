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

/// What the editor sends to the host, and what it makes of what the host sends. UI thread.
class HostConnection {
  public:
    /// `map` may be null: the engine's messages are not understood then.
    HostConnection(HostWriter newHost, LV2_URID_Map* map);
    HostConnection(const HostConnection&) = delete;
    HostConnection& operator=(const HostConnection&) = delete;

    /// Writes a control port.
    void Write(uint32_t port, float value);
    /// What widgets write through: passes everything on to the host unchanged, and remembers
    /// control values for `ForEachOverdue`.
    HostWriter GetWriter() { return {PassOn, this}; }

    /// Ask the engine for analyser rows, and for no more of them.
    void SendOpened() { Send(uris_.enable_ui); }
    void SendClosed() { Send(uris_.disable_ui); }

    /// A port event's analyser row, nothing where it is none.
    std::optional<PlotMessage> ReadPlot(uint32_t format, const void* buffer, uint32_t size) const;
    /// A port event's control value, nothing where it is none or no number. From now on the port's
    /// last write needs no report.
    std::optional<float> ReadControl(uint32_t port, uint32_t format, const void* buffer,
                                     uint32_t size);
    /// Calls `assume(port, value)` for the writes that the host does not report (see
    /// PendingWrites).
    template <typename Assume>
    void ForEachOverdue(int64_t now_ms, Assume assume) {
        pending_.ForEachOverdue(now_ms, assume);
    }
    /// The steady clock that writes are dated by, ms.
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
