// SPDX-License-Identifier: ISC
#include "host/interrupt.h"

#include <array>
#include <csignal>

namespace brindle {
namespace {

constexpr std::array kStopSignals = {SIGINT, SIGTERM, SIGHUP};

}  // namespace

void hold_interrupts() {
    sigset_t held;
    sigemptyset(&held);
    for (const int signal_number : kStopSignals) sigaddset(&held, signal_number);
    sigprocmask(SIG_BLOCK, &held, nullptr);
    std::signal(SIGXFSZ, SIG_IGN);
}

void throw_if_interrupted() {
    sigset_t pending;
    sigpending(&pending);
    for (const int signal_number : kStopSignals) {
        if (sigismember(&pending, signal_number) == 1) throw Interrupted(signal_number);
    }
}

}  // namespace brindle
