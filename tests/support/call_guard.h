// SPDX-License-Identifier: ISC
/// Watches what code on the audio thread must not call: a program that uses this has allocation
/// and locking functions that take the place of the C library's and count their calls.
#pragma once

namespace brindle::test {

/// Counts the calls made while it lives, one guard at a time. Counts nothing in builds with a
/// sanitizer, which needs these functions for itself.
class CallGuard {
  public:
    CallGuard();
    ~CallGuard();
    CallGuard(const CallGuard&) = delete;
    CallGuard& operator=(const CallGuard&) = delete;

    int calls() const;
};

}  // namespace brindle::test
