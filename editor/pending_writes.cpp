// SPDX-License-Identifier: ISC
#include "editor/pending_writes.h"

namespace brindle {

void PendingWrites::Written(uint32_t port, float value, int64_t now_ms) {
    if (port >= kPorts) return;
    Write& write = writes_[port];
    write.value = value;
    // A drag writes continuously: the wait starts with the first write, or it would never end.
    if (!write.pending) {
        write.pending = true;
        write.since_ms = now_ms;
        ++count_;
    }
}

void PendingWrites::Reported(uint32_t port) {
    if (port < kPorts && writes_[port].pending) {
        writes_[port].pending = false;
        --count_;
    }
}

}  // namespace brindle
