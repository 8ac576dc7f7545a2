// SPDX-License-Identifier: ISC
/// Messages on the plugin's control port, correct ones and others.
#pragma once

#include <lv2/atom/atom.h>

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <optional>
#include <vector>

#include "tests/support/urid_map.h"

namespace brindle::test {

/// A sequence as 32-bit words, whose events may be wrong in any way.
class AtomSequence {
  public:
    using Words = std::vector<uint32_t>;

    explicit AtomSequence(UridMap& map) : map_(map) {}

    /// Adds an event with a body of `words`. The size in its head, 4 bytes a word unless given, may
    /// be wrong.
    AtomSequence& event(LV2_URID type, const Words& words, std::optional<uint32_t> size = {}) {
        const auto real_size = static_cast<uint32_t>(4 * words.size());
        words_.insert(words_.end(), {0, 0, size.value_or(real_size), type});
        words_.insert(words_.end(), words.begin(), words.end());
        words_.resize((words_.size() + 1) / 2 * 2);
        return *this;
    }
    /// Adds an object without properties.
    AtomSequence& request(const char* type) {
        return event(map_(LV2_ATOM__Object), {1, map_(type)});
    }
    /// Removes the last `count` bytes.
    AtomSequence& cut(size_t count) {
        cut_ = count;
        return *this;
    }

    size_t size() const { return 4 * words_.size() - cut_; }
    /// Writes it with the right size in its head, as a host guarantees.
    void write(uint8_t* memory) const {
        const LV2_Atom head = {static_cast<uint32_t>(size() - sizeof(LV2_Atom)),
                               map_(LV2_ATOM__Sequence)};
        std::memcpy(memory, words_.data(), size());
        std::memcpy(memory, &head, sizeof head);
    }

  private:
    UridMap& map_;
    Words words_ = {0, 0, 0, 0};
    size_t cut_ = 0;
};

}  // namespace brindle::test
