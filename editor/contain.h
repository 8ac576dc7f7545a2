// SPDX-License-Identifier: ISC
#pragma once

namespace brindle {

/// Runs code that C callers have called: hosts, Pugl and Xlib cannot handle exceptions. An action
/// that throws is abandoned at that point.
template <typename Action>
void Contain(Action action) noexcept {
    try {
        action();
    } catch (...) {
        // Usually out of memory; there is no one to report it to.
    }
}

}  // namespace brindle
