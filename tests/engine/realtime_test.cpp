// SPDX-License-Identifier: ISC
// run only computes. A guard counts calls of allocation and locking functions; a child process
// whose system calls are forbidden shows that run makes none.
#include <gtest/gtest.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <lv2/atom/util.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <cstring>
#include <functional>
#include <mutex>
#include <vector>

#include "contract/brindle.h"
#include "tests/support/call_guard.h"
#include "tests/support/hard_treatment.h"
#include "tests/support/plugin_host.h"

namespace brindle::test {
namespace {

enum Verdict { kQuiet = 0, kCalledForbidden = 1, kCouldNotGuard = 2, kMadeSystemCall = 3 };

// From now on, any system call but the one that ends the process kills it.
bool forbid_system_calls() {
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_exit_group, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS),
    };
    const sock_fprog filter = {std::size(program), program};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

// Runs `work` under guard in a child and reports what it did.
int verdict_on(const std::function<void()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        if (!forbid_system_calls()) _exit(kCouldNotGuard);
        const CallGuard guard;
        work();
        _exit(guard.calls() == 0 ? kQuiet : kCalledForbidden);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFSIGNALED(status)) return WTERMSIG(status) == SIGSYS ? kMadeSystemCall : -1;
    return WEXITSTATUS(status);
}

TEST(Guard, NoticesWhatItForbids) {
    std::mutex mutex;
    EXPECT_EQ(verdict_on([] {}), kQuiet);
    EXPECT_EQ(verdict_on([] {
                  int* volatile number = new int;
                  delete number;
              }),
              kCalledForbidden);
    EXPECT_EQ(verdict_on([&mutex] { std::lock_guard lock(mutex); }), kCalledForbidden);
    EXPECT_EQ(verdict_on([] { getppid(); }), kMadeSystemCall);
    EXPECT_EQ(verdict_on([] { std::fputs("x\n", stderr); }), kMadeSystemCall);
}

class RealTime : public testing::TestWithParam<int> {};

// The analyser is at work. The host owns all buffers and random numbers.
TEST_P(RealTime, RunAllocatesLocksAndCallsNothing) {
    constexpr uint32_t kBlock = 700;
    PluginHost host(GetParam(), 48000.0);
    Random random(23);
    Audio buffers = noise(4, kBlock, 23);
    for (uint32_t i = 0; i < 4; ++i) host.connect(kFirstAudioPort + i, buffers[i].data());
    host.send_request(kEnableUiUri);

    for (bool turning : {false, true}) {
        SCOPED_TRACE(turning ? "controls moving" : "controls at rest");
        const int verdict = verdict_on([&] {
            for (int block = 0; block < 200; ++block) {
                for (uint32_t port = 2; turning && port <= kTrimPort; ++port) {
                    host.port(port) = any_value(random, port);
                }
                host.run(kBlock - static_cast<uint32_t>(block));
            }
        });
        EXPECT_EQ(verdict, kQuiet);
    }
}

INSTANTIATE_TEST_SUITE_P(Variants, RealTime, testing::Values(1, 2));

}  // namespace
}  // namespace brindle::test
