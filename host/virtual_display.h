// SPDX-License-Identifier: ISC
#pragma once

#include <sys/types.h>

namespace brindle {

/// An X server without a screen for this process and its children; it ends with the object. Make
/// it before any thread is started.
class VirtualDisplay {
  public:
    /// Throws UserError if Xvfb is not installed or does not start.
    VirtualDisplay(int width, int height);
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

  private:
    pid_t server_;
};

}  // namespace brindle
