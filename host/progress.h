// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <string>

namespace brindle {

/// A bar on standard error, drawn only where that is a terminal, and wiped when done.
class Progress {
  public:
    /// `total` steps of any unit; zero or less where their number is not known (no bar then).
    Progress(std::string label, int64_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void advance_to(int64_t done);

  private:
    std::string label_;
    int64_t total_;
    bool shown_;
    int64_t percent_ = -1;
};

}  // namespace brindle
