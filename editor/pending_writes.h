// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstdint>

namespace brindle {

/// The editor's writes that the host has not reported yet. Widgets show reported values, but some
/// hosts do not report the editor's own writes; then a written value counts as reported after a
/// while. UI thread.
class PendingWrites {
  public:
    /// Time without a report after which a written value counts as reported.
    static constexpr int64_t kWaitMs = 100;
    static constexpr uint32_t kPorts = 128;  ///< ports from here on are not recorded

    /// `now_ms` is the time of a steady clock.
    void Written(uint32_t port, float value, int64_t now_ms);
    /// The host has reported the port, with any value.
    void Reported(uint32_t port);

    /// Calls `assume(port, value)` for each port whose first unreported write is 100 ms old, with
    /// the last value written. These writes then count as reported.
    template <typename Assume>
    void ForEachOverdue(int64_t now_ms, Assume assume) {
        if (count_ == 0) return;
        for (uint32_t port = 0; port < kPorts; ++port) {
            if (writes_[port].pending && now_ms - writes_[port].since_ms >= kWaitMs) {
                Reported(port);
                assume(port, writes_[port].value);
            }
        }
    }

  private:
    struct Write {
        bool pending = false;
        float value = 0.0f;
        int64_t since_ms = 0;
    };
    std::array<Write, kPorts> writes_;
    uint32_t count_ = 0;
};

}  // namespace brindle
