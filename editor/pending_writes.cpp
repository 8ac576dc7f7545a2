// SPDX-License-Identifier: ISC
#include "editor/pending_writes.h"

#include <algorithm>
#include <cmath>

namespace brindle {
namespace {

/// Whether two values differ by no more than the rounding of a host that keeps values as a float
/// from 0 to 1.
bool IsSame(float a, float b) {
    constexpr float kRounding = 4e-6f;
    return std::abs(a - b) <= kRounding * std::max(1.0f, std::abs(b));
}

}  // namespace

void PendingWrites::Written(uint32_t port, float value, int64_t now_ms) {
    Forget(now_ms);
    writes_.push_back({port, value, now_ms});
}

float PendingWrites::Reported(uint32_t port, float value, int64_t now_ms) {
    Forget(now_ms);
    const auto own = std::ranges::find_if(writes_, [&](const Write& write) {
        return write.port == port && !write.isReported && IsSame(value, write.value);
    });
    if (own == writes_.end()) {
        std::erase_if(writes_, [&](const Write& write) { return write.port == port; });
        return value;
    }
    own->isReported = true;
    return ShowNewest(port);
}

void PendingWrites::Forget(int64_t now_ms) {
    std::erase_if(writes_, [&](const Write& write) {
        return write.isShown && now_ms - write.since_ms >= kMemoryMs;
    });
}

float PendingWrites::ShowNewest(uint32_t port) {
    float newest = 0.0f;
    for (Write& write : writes_) {
        if (write.port != port) continue;
        write.isShown = true;
        newest = write.value;
    }
    return newest;
}

}  // namespace brindle
