// SPDX-License-Identifier: ISC
#pragma once

#include <sys/types.h>

namespace brindle {

/// An X server without a screen, for this process and those that it starts; it ends with the
/// object. Make it before any thread is started.
class VirtualDisplay {
  public:
    /// Throws UserError where Xvfb is not installed or does not come up.
    VirtualDisplay(int width, int height);
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

  private:
    pid_t server_;
};

}  // namespace brindle
