// SPDX-License-Identifier: ISC
#pragma once

#include <cstring>
#include <stdexcept>
#include <string>

namespace brindle {

/// What a command could not do and why, in one sentence for the user.
class UserError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// "cannot VERB PATH: the system's reason."
inline UserError file_error(const std::string& verb, const std::string& path, int error_number) {
    return UserError("cannot " + verb + ' ' + path + ": " + std::strerror(error_number) + '.');
}

}  // namespace brindle
