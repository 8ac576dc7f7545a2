// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>
#include <string>

namespace brindle {

/// A file that appears under its name only when complete: it is written beside the target and
/// renamed by commit(). Without commit() it leaves nothing behind. Devices, pipes and standard
/// output ("-") get all of it with commit().
class OutputFile {
  public:
    enum Existing { kRefuse, kReplace };
    /// The name of standard output, and where files are read of standard input.
    static constexpr const char* kStream = "-";

    /// Throws UserError if the target exists and may not be replaced, or its folder is not
    /// writable.
    explicit OutputFile(std::string target, Existing existing = kRefuse);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Appends all bytes, or returns false and remembers why.
    bool write(const void* data, size_t size) noexcept;
    /// As lseek().
    long long seek(long long offset, int whence) noexcept;

    /// Throws UserError if a write has failed.
    void check() const;
    /// Gives the file its name. Throws UserError if a write or the renaming has failed.
    void commit();

    [[nodiscard]] const std::string& target() const { return target_; }
    /// A target without a name to go by: standard output, a device or a pipe.
    [[nodiscard]] static bool is_stream(const std::string& target);

  private:
    [[nodiscard]] std::string name() const;
    void copy_to_stream();

    std::string target_;
    std::string temporary_;  ///< empty for a stream, whose bytes wait in a file without a name
    int descriptor_ = -1;
    int failure_ = 0;  ///< errno of the first failed write
};

/// Reports "Wrote TARGET." on standard output unless that was the target.
void say_written(const std::string& target);

}  // namespace brindle
