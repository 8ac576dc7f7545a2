// SPDX-License-Identifier: ISC
#pragma once

#include <lv2/atom/atom.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace brindle {

/// A lock-free queue of atoms from one thread to another; a full ring drops messages. All memory
/// is allocated at construction, so both ends are real-time safe.
class MessageRing {
  public:
    /// Bytes of the largest atom with its header; an analyser row has 1056.
    static constexpr size_t kLargest = 2048;
    /// Capacity in messages: more than two seconds of analyser rows.
    static constexpr size_t kSlots = 128;

    MessageRing() : slots_(kSlots) {}

    /// Writing thread. False if there is no room.
    bool push(uint32_t port, const LV2_Atom& atom) {
        const size_t size = sizeof atom + size_t{atom.size};
        const size_t end = end_.load(std::memory_order_relaxed);
        if (size > kLargest || end - begin_.load(std::memory_order_acquire) == kSlots) return false;
        Slot& slot = slots_[end % kSlots];
        slot.port = port;
        std::memcpy(slot.bytes.data(), &atom, size);
        end_.store(end + 1, std::memory_order_release);
        return true;
    }

    /// Reading thread: calls `use(port, atom)` for the oldest message and removes it. False if
    /// there is none.
    template <typename Use>
    bool pop(Use use) {
        const size_t begin = begin_.load(std::memory_order_relaxed);
        if (begin == end_.load(std::memory_order_acquire)) return false;
        const Slot& slot = slots_[begin % kSlots];
        use(slot.port, *reinterpret_cast<const LV2_Atom*>(slot.bytes.data()));
        begin_.store(begin + 1, std::memory_order_release);
        return true;
    }

  private:
    struct Slot {
        uint32_t port;
        alignas(8) std::array<uint8_t, kLargest> bytes;
    };

    std::vector<Slot> slots_;
    std::atomic<size_t> begin_ = 0;  ///< messages read so far
    std::atomic<size_t> end_ = 0;    ///< messages written so far
};

}  // namespace brindle
