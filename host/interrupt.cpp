// SPDX-License-Identifier: ISC
#include "host/interrupt.h"

#include <array>
#include <csignal>

namespace brindle {
namespace {

constexpr std::array kStopSignals = {SIGINT, SIGTERM, SIGHUP};

/// The first request to stop that is pending, 0 for none.
int pending_request() {
    sigset_t pending;
    sigpending(&pending);
    for (const int signal_number : kStopSignals) {
        if (sigismember(&pending, signal_number) == 1) return signal_number;
    }
    return 0;
}

}  // namespace

void hold_interrupts() {
    sigset_t held;
    sigemptyset(&held);
    for (const int signal_number : kStopSignals) sigaddset(&held, signal_number);
    sigprocmask(SIG_BLOCK, &held, nullptr);
    std::signal(SIGXFSZ, SIG_IGN);
}

bool is_interrupted() {
    return pending_request() != 0;
}

void throw_if_interrupted() {
    if (const int signal_number = pending_request()) throw Interrupted(signal_number);
}

}  // namespace brindle
