// SPDX-License-Identifier: ISC
#pragma once

namespace brindle {

/// Runs what C code has called: hosts, Pugl and Xlib are not made for exceptions. What throws is
/// left where it was.
template <typename Action>
void Contain(Action action) noexcept {
    try {
        action();
    } catch (...) {
        // Short of memory as a rule; there is nobody to tell.
    }
}

}  // namespace brindle
