// SPDX-License-Identifier: ISC
/// The values that a search restored, kept while the host may still report the muted ones.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace brindle {

/// Recently written port values. A host reports writes late and until then reports the previous
/// values; a search that began then would save the last search's muting as the user's settings and
/// never lift it. UI thread.
class RestoredValues {
  public:
    /// Time that a host may take to report a write.
    static constexpr uint32_t kLifetimeMs = 500;

    /// Clears all values and starts again at an event's time.
    void Begin(uint32_t now_ms) {
        count_ = 0;
        since_ms_ = now_ms;
    }
    /// Adds a port's value; ignored if the list is full.
    void Add(uint32_t port, float value) {
        if (count_ < entries_.size()) entries_[count_++] = {port, value};
    }
    /// The value that was added for a port, until it expires.
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
