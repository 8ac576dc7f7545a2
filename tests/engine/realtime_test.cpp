// SPDX-License-Identifier: ISC
// run only computes: a child process whose system calls are forbidden shows that it makes none. The
// soak counts the calls that allocate or lock.
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <cstdio>
#include <mutex>

#include "contract/brindle.h"
#include "tests/support/call_guard.h"
#include "tests/support/hard_treatment.h"
#include "tests/support/plugin_host.h"

namespace brindle::test {
namespace {

constexpr int kCouldNotForbid = 2;

/// From now on, any system call but the one that ends the process kills it.
void forbid_system_calls() {
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_exit_group, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS),
    };
    const sock_fprog filter = {std::size(program), program};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0) {
        _exit(kCouldNotForbid);
    }
}

TEST(RealTime, GuardsNoticeWhatTheyForbid) {
    const auto print = [] {
        forbid_system_calls();
        std::fputs("x\n", stderr);
        _exit(0);
    };
    EXPECT_EXIT(print(), testing::KilledBySignal(SIGSYS), "");
    std::mutex mutex;
    const CallGuard guard;
    int* volatile number = new int;
    delete number;
    EXPECT_EQ(guard.calls(), 2);
    const std::lock_guard lock(mutex);
    EXPECT_EQ(guard.calls(), 3);
}

// The analyser is at work. The host owns all buffers and random numbers.
TEST(RealTime, RunMakesNoSystemCall) {
    constexpr uint32_t kBlock = 700;
    for (int channels : {1, 2}) {
        PluginHost host(channels, 48000.0);
        Random random(23);
        Audio buffers = noise(4, kBlock, 23);
        for (uint32_t i = 0; i < 4; ++i) host.connect(kFirstAudioPort + i, buffers[i].data());
        host.send_request(kEnableUiUri);
        const auto play = [&] {
            forbid_system_calls();
            for (uint32_t block = 0; block < 400; ++block) {
                for (uint32_t port = 2; block < 200 && port <= kTrimPort; ++port) {
                    host.port(port) = any_value(random, port);
                }
                host.run(kBlock - block);
            }
            _exit(0);
        };
        EXPECT_EXIT(play(), testing::ExitedWithCode(0), "");
    }
}

}  // namespace
}  // namespace brindle::test
