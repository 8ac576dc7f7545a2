// SPDX-License-Identifier: ISC
#include "host/virtual_display.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string>

#include "host/user_error.h"

namespace brindle {
namespace {

constexpr int kPatienceMs = 30000;

/// Turns the new process into the server, which writes its display's number to `report`. The server
/// ends with its parent; a process group of its own keeps the terminal's interrupts away.
[[noreturn]] void become_server(const char* screen, int report, pid_t parent) {
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) _exit(1);
    setpgid(0, 0);
    const int nowhere = open("/dev/null", O_RDWR);
    dup2(nowhere, STDIN_FILENO);
    dup2(nowhere, STDERR_FILENO);
    dup2(report, STDOUT_FILENO);
    execlp("Xvfb", "Xvfb", "-displayfd", "1", "-screen", "0", screen, "+extension", "GLX",
           "-noreset", "-nolisten", "tcp", static_cast<char*>(nullptr));
    _exit(127);
}

/// Reads a line from `source`; empty if none comes in time.
std::string read_line(int source) {
    std::string line;
    pollfd ready = {source, POLLIN, 0};
    while (poll(&ready, 1, kPatienceMs) > 0) {
        std::array<char, 16> part{};
        const ssize_t count = read(source, part.data(), part.size());
        if (count <= 0) return "";
        line.append(part.data(), static_cast<size_t>(count));
        if (line.ends_with('\n')) return line.substr(0, line.size() - 1);
    }
    return "";
}

void end_server(pid_t server) {
    kill(server, SIGTERM);
    while (waitpid(server, nullptr, 0) < 0 && errno == EINTR) continue;
}

}  // namespace

VirtualDisplay::VirtualDisplay(int width, int height) {
    const std::string screen = std::to_string(width) + 'x' + std::to_string(height) + "x24";
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) throw file_error("start", "Xvfb", errno);
    const pid_t parent = getpid();
    server_ = fork();
    if (server_ == 0) become_server(screen.c_str(), ends[1], parent);
    const int fork_error = errno;
    close(ends[1]);
    if (server_ < 0) {
        close(ends[0]);
        throw file_error("start", "Xvfb", fork_error);
    }
    const std::string number = read_line(ends[0]);
    close(ends[0]);
    if (number.empty()) {
        end_server(server_);
        throw UserError("there is no display, and Xvfb, which would stand in, cannot be started.");
    }
    setenv("DISPLAY", (':' + number).c_str(), 1);
}

VirtualDisplay::~VirtualDisplay() {
    end_server(server_);
}

}  // namespace brindle
