// SPDX-License-Identifier: ISC
/// Counts calls that are forbidden on the audio thread: in programs that link it, allocation and
/// locking functions replace those of the C library and count their calls.
#pragma once

namespace brindle::test {

/// Counts the calls during its lifetime, one guard at a time. Counts nothing in sanitizer builds,
/// which replace these functions themselves.
class CallGuard {
  public:
    CallGuard();
    ~CallGuard();
    CallGuard(const CallGuard&) = delete;
    CallGuard& operator=(const CallGuard&) = delete;

    int calls() const;
};

}  // namespace brindle::test
