// SPDX-License-Identifier: ISC
#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>

namespace brindle {

/// A progress bar with the time left, on standard error if that is a terminal; the destructor
/// erases it. Any thread.
class Progress {
  public:
    /// `total` steps of any unit; with 0 or less there is no bar.
    Progress(std::string label, int64_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Counts further steps.
    void advance(int64_t steps);
    /// Makes room for a line; the next step draws the bar again.
    void erase();

  private:
    std::mutex mutex_;
    std::string label_;
    int64_t total_;
    bool shown_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    int64_t done_ = 0;
    int64_t percent_ = -1;  ///< on the screen; -1 for none
};

}  // namespace brindle
