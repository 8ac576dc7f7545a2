// SPDX-License-Identifier: ISC
/// What a search has put back, for as long as the host may still report what it had muted.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace brindle {

/// Port values that were written a moment ago. A host reports writes late or, asked too early,
/// still reports the ones before; a search that began then would take the last search's muting for
/// the user's own settings and never lift it. UI thread.
class RestoredValues {
  public:
    /// How long a host may take to report a write.
    static constexpr uint32_t kLifetimeMs = 500;

    /// Forgets all and starts anew at an event's time.
    void Begin(uint32_t now_ms) {
        count_ = 0;
        since_ms_ = now_ms;
    }
    /// Adds a port; ignored when there is no room.
    void Add(uint32_t port, float value) {
        if (count_ < entries_.size()) entries_[count_++] = {port, value};
    }
    /// The value that a port has been given, while that is recent.
    std::optional<float> Find(uint32_t port, uint32_t now_ms) const {
        if (now_ms - since_ms_ >= kLifetimeMs) return std::nullopt;
        for (size_t i = 0; i < count_; ++i) {
            if (entries_[i].port == port) return entries_[i].value;
        }
        return std::nullopt;
    }

  private:
    struct Entry {
        uint32_t port = 0;
        float value = 0.0f;
    };
    std::array<Entry, 12> entries_{};  // ten enables, a type and a gain
    size_t count_ = 0;
    uint32_t since_ms_ = 0;
};

}  // namespace brindle
