// SPDX-License-Identifier: ISC
#include "gl/bitmap.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <memory>
#include <type_traits>

namespace brindle {
namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// Opens a file for reading; null if it cannot be opened. Never waits for the other end of a pipe.
File Open(const char* path) {
    const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) return nullptr;
    File file(fdopen(descriptor, "rb"));
    if (file == nullptr) close(descriptor);
    return file;
}

/// Size in bytes of a regular file, -1 for anything else.
int64_t RegularSize(std::FILE* file) {
    struct stat status {};
    const bool regular = fstat(fileno(file), &status) == 0 && S_ISREG(status.st_mode);
    return regular ? static_cast<int64_t>(status.st_size) : -1;
}

/// Reads a little-endian number.
template <typename Number>
bool Read(std::FILE* file, Number& number) {
    uint8_t bytes[sizeof(Number)];
    if (std::fread(bytes, sizeof bytes, 1, file) != 1) return false;
    uint32_t value = 0;
    for (size_t i = 0; i < sizeof bytes; ++i) value |= static_cast<uint32_t>(bytes[i]) << (8 * i);
    number = static_cast<Number>(value);
    return true;
}

bool Skip(std::FILE* file, long count) {
    return std::fseek(file, count, SEEK_CUR) == 0;
}

bool IsSideAllowed(int32_t side) {
    return side > 0 && side <= kMaxBitmapSide;
}

/// Reads header and pixels. Returns an error message, or null on success.
const char* ReadBitmap(std::FILE* file, Bitmap& image) {
    constexpr const char* kUnreadable = "Error reading file!";
    constexpr uint16_t kSignature = 0x4D42;
    const int64_t size = RegularSize(file);
    uint16_t signature = 0;
    if (size < 0 || !Read(file, signature)) return kUnreadable;
    if (signature != kSignature) return "Not a Bitmap-File!";
    uint32_t offset = 0;
    int32_t width = 0;
    int32_t height = 0;
    uint16_t planes = 0;
    uint16_t depth = 0;
    if (!Skip(file, 8) || !Read(file, offset) || !Skip(file, 4) || !Read(file, width) ||
        !Read(file, height) || !Read(file, planes)) {
        return kUnreadable;
    }
    if (planes != 1) return "Error: number of Planes not 1!";
    if (!Read(file, depth)) return kUnreadable;
    if (depth != 32) return "Bits per Pixel not 32";
    // Allocate only once the file is known to hold that many pixels.
    constexpr const char* kIncomplete = "Error loading file!";
    if (!IsSideAllowed(width) || !IsSideAllowed(height)) return kIncomplete;
    const int64_t bytes = int64_t{width} * height * 4;
    if (offset + bytes > size || std::fseek(file, static_cast<long>(offset), SEEK_SET) != 0) {
        return kIncomplete;
    }
    std::vector<uint8_t> pixels(static_cast<size_t>(bytes));
    if (std::fread(pixels.data(), pixels.size(), 1, file) != 1) return kIncomplete;
    image = {width, height, std::move(pixels)};
    return nullptr;
}

}  // namespace

bool LoadBitmap(const char* path, Bitmap& image) {
    image = {};
    const File file = Open(path);
    if (file == nullptr) {
        if (!quietMissingFiles) std::printf("File not found : %s\n", path);
        return false;
    }
    const char* fault = ReadBitmap(file.get(), image);
    if (fault != nullptr) std::puts(fault);
    return fault == nullptr;
}

}  // namespace brindle
