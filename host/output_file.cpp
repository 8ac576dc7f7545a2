// SPDX-License-Identifier: ISC
#include "host/output_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <utility>

#include "host/user_error.h"

namespace brindle {

OutputFile::OutputFile(std::string target, Existing existing) : target_(std::move(target)) {
    namespace fs = std::filesystem;
    std::error_code ignored;
    if (existing == kRefuse && fs::exists(fs::symlink_status(target_, ignored))) {
        throw UserError("cannot write " + target_ + ": it exists already.");
    }
    const fs::path path(target_);
    const std::string name = '.' + path.filename().string() + '.' + std::to_string(getpid());
    temporary_ = (path.parent_path() / name).string();
    descriptor_ = open(temporary_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor_ < 0) throw file_error("write", target_, errno);
}

OutputFile::~OutputFile() {
    if (descriptor_ < 0) return;
    close(descriptor_);
    unlink(temporary_.c_str());
}

bool OutputFile::write(const void* data, size_t size) noexcept {
    const char* next = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t written = ::write(descriptor_, next, size);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) {
            if (failure_ == 0) failure_ = written < 0 ? errno : EIO;
            return false;
        }
        next += written;
        size -= static_cast<size_t>(written);
    }
    return true;
}

long long OutputFile::seek(long long offset, int whence) noexcept {
    return lseek(descriptor_, offset, whence);
}

void OutputFile::check() const {
    if (failure_ != 0) throw file_error("write", target_, failure_);
}

void OutputFile::commit() {
    check();
    // Some file systems report a full disk or an exceeded quota only here.
    if (close(std::exchange(descriptor_, -1)) != 0 ||
        std::rename(temporary_.c_str(), target_.c_str()) != 0) {
        const int error_number = errno;
        unlink(temporary_.c_str());
        throw file_error("write", target_, error_number);
    }
}

}  // namespace brindle
