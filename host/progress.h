// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <string>

namespace brindle {

/// A progress bar on standard error if that is a terminal; the destructor erases it.
class Progress {
  public:
    /// `total` steps of any unit; with 0 or less there is no bar.
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
