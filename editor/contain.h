// SPDX-License-Identifier: ISC
#pragma once

namespace brindle {

/// Runs code that C callers have called: hosts, Pugl and Xlib cannot handle exceptions. An action
/// that throws is abandoned at that point. False if it has thrown.
template <typename Action>
bool Contain(Action action) noexcept {
    try {
        action();
        return true;
    } catch (...) {
        return false;  // usually out of memory; there is no one to report it to
    }
}

}  // namespace brindle
