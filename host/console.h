// SPDX-License-Identifier: ISC
#pragma once

#include <string>

namespace brindle {

/// Reserves standard output and error for say() and warn(). Lines that the plugin and the libraries
/// print are dropped; if `verbose`, they go to standard error. A closed pipe becomes an ordinary
/// write error. Call once, before the plugin is loaded and threads are started.
void claim_standard_streams(bool verbose);

/// Descriptors that still lead to standard output and error.
[[nodiscard]] int standard_output();
[[nodiscard]] int standard_error();

/// As std::printf() into a string.
[[nodiscard, gnu::format(printf, 1, 2)]] std::string formatted(const char* format, ...);
/// Prints to standard output what was asked for. Throws UserError if it cannot be written.
[[gnu::format(printf, 1, 2)]] void say(const char* format, ...);
/// Prints "brindle: " and a line to standard error.
[[gnu::format(printf, 1, 2)]] void warn(const char* format, ...);

}  // namespace brindle
