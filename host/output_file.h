// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>
#include <string>

namespace brindle {

/// A file that appears under its name only when it is complete: it is written beside the target
/// and renamed by commit(). Destroyed before that, it leaves nothing behind.
class OutputFile {
  public:
    enum Existing { kRefuse, kReplace };

    /// Throws UserError where the target exists and is not to be replaced, or its folder cannot be
    /// written.
    explicit OutputFile(std::string target, Existing existing = kRefuse);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Appends all bytes, or returns false and remembers why. Never throws: libraries call it.
    bool write(const void* data, size_t size) noexcept;
    /// lseek(); never throws.
    long long seek(long long offset, int whence) noexcept;

    /// Throws UserError where a write has failed.
    void check() const;
    /// Gives the file its name. Throws UserError where a write or the renaming has failed.
    void commit();

    [[nodiscard]] const std::string& target() const { return target_; }

  private:
    std::string target_;
    std::string temporary_;
    int descriptor_ = -1;
    int failure_ = 0;  ///< errno of the first failed write
};

}  // namespace brindle
