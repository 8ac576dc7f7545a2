// SPDX-License-Identifier: ISC
#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>

namespace brindle::test {

/// A host's memory whose end is followed by a page that may not be touched: a read or write beyond
/// a buffer that ends there ends the program.
class Fenced {
  public:
    explicit Fenced(size_t room)
        : room_((room + kPage - 1) / kPage * kPage),
          bytes_(static_cast<uint8_t*>(mmap(nullptr, room_ + kPage, PROT_READ | PROT_WRITE,
                                            MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
        mprotect(bytes_ + room_, kPage, PROT_NONE);
    }
    Fenced(Fenced&& other) noexcept : room_(other.room_), bytes_(other.bytes_) {
        other.bytes_ = nullptr;
    }
    Fenced& operator=(Fenced&&) = delete;
    ~Fenced() {
        if (bytes_) munmap(bytes_, room_ + kPage);
    }

    /// The last `count` values.
    template <typename T>
    T* last(size_t count) const {
        return reinterpret_cast<T*>(bytes_ + room_ - count * sizeof(T));
    }

  private:
    static constexpr size_t kPage = 4096;
    size_t room_;
    uint8_t* bytes_;
};

}  // namespace brindle::test
