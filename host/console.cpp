// SPDX-License-Identifier: ISC
#include "host/console.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "host/user_error.h"

namespace brindle {
namespace {

// Fixed, so that no variable has to remember them; far above what a shell hands down.
constexpr int kOutput = 210;
constexpr int kError = 211;

int claimed_or(int claimed, int standard) {
    return fcntl(claimed, F_GETFD) < 0 ? standard : claimed;
}

}  // namespace

void claim_standard_streams(bool verbose) {
    std::signal(SIGPIPE, SIG_IGN);
    dup3(STDOUT_FILENO, kOutput, O_CLOEXEC);
    dup3(STDERR_FILENO, kError, O_CLOEXEC);
    const int elsewhere = verbose ? dup(STDERR_FILENO) : open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(elsewhere, STDOUT_FILENO);
    dup2(elsewhere, STDERR_FILENO);
    close(elsewhere);
}

int standard_output() {
    return claimed_or(kOutput, STDOUT_FILENO);
}

int standard_error() {
    return claimed_or(kError, STDERR_FILENO);
}

std::string formatted(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    char* text = nullptr;
    const int count = vasprintf(&text, format, arguments);
    va_end(arguments);
    std::string result = count < 0 ? "" : text;
    if (count >= 0) std::free(text);
    return result;
}

void say(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const int count = vdprintf(standard_output(), format, arguments);
    const int error_number = errno;
    va_end(arguments);
    if (count < 0) throw file_error("write", "standard output", error_number);
}

void warn(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const std::string line = "brindle: " + std::string(format) + '\n';
    vdprintf(standard_error(), line.c_str(), arguments);
    va_end(arguments);
}

}  // namespace brindle
