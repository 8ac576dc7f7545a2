// SPDX-License-Identifier: ISC
#pragma once

#include <string>

#include "host/user_error.h"

namespace brindle {

/// Keeps requests to stop (SIGINT, SIGTERM, SIGHUP) pending, so that a command ends where it can
/// clean up. Also turns a file size limit into an ordinary write error. Call once, before any
/// thread is started.
void hold_interrupts();

/// A request to stop has come; `exit_status` is what shells expect.
class Interrupted : public UserError {
  public:
    explicit Interrupted(int signal_number)
        : UserError("interrupted."), exit_status(128 + signal_number) {}
    const int exit_status;
};

/// A request to stop is pending.
[[nodiscard]] bool is_interrupted();

/// Throws Interrupted when a request to stop is pending.
void throw_if_interrupted();

}  // namespace brindle
