// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <vector>

namespace brindle {

/// The editor's writes that the host may still report. Widgets show reported values, but hosts
/// report late, only some values, in another order, or nothing. So the first report of a write
/// stands for the newest write of its port, and after a while without reports the newest write
/// counts as reported. A value that was not written is the host's own and always shown. UI thread.
class PendingWrites {
  public:
    /// Time without a report after which a written value counts as reported.
    static constexpr int64_t kWaitMs = 100;
    /// Time within which a report of a written value is taken for a late one.
    static constexpr int64_t kMemoryMs = 500;

    /// Adds a write. Times are those of a steady clock.
    void Written(uint32_t port, float value, int64_t now_ms);
    /// The value to show when the host reports `value`: the port's newest write if `value` is one
    /// of its unreported writes, otherwise `value` itself; then the port's writes are forgotten.
    float Reported(uint32_t port, float value, int64_t now_ms);

    /// Calls `assume(port, value)` with the newest write of each port that has an unshown write of
    /// `wait_ms` ago or earlier. These writes then count as shown. `assume` must not write.
    template <typename Assume>
    void ForEachUnshown(int64_t now_ms, int64_t wait_ms, Assume assume) {
        for (const Write& write : writes_) {
            if (!write.isShown && now_ms - write.since_ms >= wait_ms) {
                assume(write.port, ShowNewest(write.port));
            }
        }
    }

  private:
    struct Write {
        uint32_t port = 0;
        float value = 0.0f;
        int64_t since_ms = 0;
        bool isShown = false;  ///< the tree has been told of this or a later write of the port
        bool isReported = false;
    };

    void Forget(int64_t now_ms);
    float ShowNewest(uint32_t port);

    std::vector<Write> writes_;  ///< in the order in which they were written
};

}  // namespace brindle
