// SPDX-License-Identifier: ISC
/// Reads arbitrary bytes as a picture file.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "gl/bitmap.h"

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    // Every input prints a message.
    return std::freopen("/dev/null", "w", stdout) != nullptr ? 0 : 1;
}

namespace {

void Read(const std::string& bytes) {
    const int file = memfd_create("picture", MFD_CLOEXEC);
    if (write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size())) {
        brindle::Bitmap image;
        const std::string path = "/proc/self/fd/" + std::to_string(file);
        const bool loaded = brindle::LoadBitmap(path.c_str(), image);
        const size_t expected =
            static_cast<size_t>(image.width) * static_cast<size_t>(image.height) * 4;
        if (image.pixels.size() != (loaded ? expected : 0) || (loaded && expected > bytes.size())) {
            std::abort();
        }
    }
    close(file);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string bytes(reinterpret_cast<const char*>(data), size);
    Read(bytes);
    // Again with the fields that all pictures share, so that sizes and offsets are reached.
    bytes.resize(std::max(size, size_t{30}));
    bytes.replace(0, 2, "BM");
    bytes.replace(26, 4, std::string("\1\0\x20\0", 4));
    Read(bytes);
    return 0;
}
