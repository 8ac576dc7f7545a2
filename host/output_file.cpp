// SPDX-License-Identifier: ISC
#include "host/output_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <utility>

#include "host/console.h"
#include "host/user_error.h"

namespace brindle {
namespace {

namespace fs = std::filesystem;

/// errno of the first failure, 0 on success.
int write_all(int descriptor, const void* data, size_t size) {
    const char* next = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t written = write(descriptor, next, size);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return written < 0 ? errno : EIO;
        next += written;
        size -= static_cast<size_t>(written);
    }
    return 0;
}

}  // namespace

bool OutputFile::is_stream(const std::string& target) {
    std::error_code ignored;
    const fs::file_type type = fs::status(target, ignored).type();
    return target == kStream || type == fs::file_type::character || type == fs::file_type::fifo;
}

OutputFile::OutputFile(std::string target, Existing existing) : target_(std::move(target)) {
    std::error_code ignored;
    if (is_stream(target_)) {
        const std::string folder = fs::temp_directory_path(ignored);
        descriptor_ = open(folder.c_str(), O_RDWR | O_TMPFILE | O_CLOEXEC, 0600);
        if (descriptor_ < 0) throw file_error("write into", folder, errno);
        return;
    }
    if (existing == kRefuse && fs::exists(fs::symlink_status(target_, ignored))) {
        throw UserError("cannot write " + target_ + ": it exists already; --force overwrites it.");
    }
    if (fs::is_directory(target_, ignored)) throw file_error("write", target_, EISDIR);
    const fs::path path(target_);
    const std::string hidden = '.' + path.filename().string() + '.' + std::to_string(getpid());
    temporary_ = (path.parent_path() / hidden).string();
    descriptor_ = open(temporary_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor_ < 0) throw file_error("write", target_, errno);
}

OutputFile::~OutputFile() {
    if (descriptor_ < 0) return;
    close(descriptor_);
    unlink(temporary_.c_str());
}

std::string OutputFile::name() const {
    return target_ == kStream ? "standard output" : target_;
}

bool OutputFile::write(const void* data, size_t size) noexcept {
    const int error_number = write_all(descriptor_, data, size);
    if (failure_ == 0) failure_ = error_number;
    return error_number == 0;
}

long long OutputFile::seek(long long offset, int whence) noexcept {
    return lseek(descriptor_, offset, whence);
}

void OutputFile::check() const {
    if (failure_ != 0) throw file_error("write", name(), failure_);
}

void OutputFile::copy_to_stream() {
    const int stream = target_ == kStream ? fcntl(standard_output(), F_DUPFD_CLOEXEC, 0)
                                          : open(target_.c_str(), O_WRONLY | O_CLOEXEC);
    if (stream < 0) throw file_error("write", name(), errno);
    std::array<char, 65536> part{};
    lseek(descriptor_, 0, SEEK_SET);
    while (failure_ == 0) {
        const ssize_t count = read(descriptor_, part.data(), part.size());
        if (count < 0) failure_ = errno;
        if (count <= 0) break;
        failure_ = write_all(stream, part.data(), static_cast<size_t>(count));
    }
    if (close(stream) != 0 && failure_ == 0) failure_ = errno;
    check();
}

void OutputFile::commit() {
    check();
    if (temporary_.empty()) {
        copy_to_stream();
        return;
    }
    // Some file systems report a full disk or an exceeded quota only here.
    if (close(std::exchange(descriptor_, -1)) != 0 ||
        std::rename(temporary_.c_str(), target_.c_str()) != 0) {
        const int error_number = errno;
        unlink(temporary_.c_str());
        throw file_error("write", target_, error_number);
    }
}

void say_written(const std::string& target) {
    if (target != OutputFile::kStream) say("Wrote %s.\n", target.c_str());
}

}  // namespace brindle
