// SPDX-License-Identifier: ISC
#include "gl/info_format.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

namespace brindle {
namespace {

/// The integer conversion at the start of `text`, rewritten for a long, and the number of
/// characters it took; 0 if there is none.
struct Conversion {
    std::string format;
    size_t taken = 0;
};

Conversion ReadConversion(std::string_view text) {
    Conversion conversion;
    size_t at = 1;
    const auto skip = [&](std::string_view set, size_t most) {
        const size_t start = at;
        while (at < text.size() && at - start < most && set.find(text[at]) != set.npos) ++at;
    };
    skip("-+#0", 4);
    skip("0123456789", 3);
    if (at < text.size() && text[at] == '.') {
        ++at;
        skip("0123456789", 3);
    }
    const size_t endOfNumbers = at;
    skip("hljzt", 2);
    if (at < text.size() && std::string_view("diuoxX").find(text[at]) != std::string_view::npos) {
        conversion.format = std::string(text.substr(0, endOfNumbers)) + 'l' + text[at];
        conversion.taken = at + 1;
    }
    return conversion;
}

}  // namespace

void FormatInfo(char (&out)[kInfoSize], const char* text) {
    const std::string source = text != nullptr ? text : "";
    const std::string_view rest = source;
    std::string result;
    bool lengthShown = false;
    for (size_t at = 0; at < rest.size() && result.size() < kInfoSize;) {
        if (rest[at] != '%') {
            result += rest[at++];
            continue;
        }
        if (rest.substr(at, 2) == "%%") {
            result += '%';
            at += 2;
            continue;
        }
        const Conversion conversion = lengthShown ? Conversion{} : ReadConversion(rest.substr(at));
        if (conversion.taken == 0) {
            result += rest[at++];
            continue;
        }
        char number[kInfoSize];
        std::snprintf(number, sizeof number, conversion.format.c_str(),
                      static_cast<long>(source.size()));
        result += number;
        at += conversion.taken;
        lengthShown = true;
    }
    const size_t length = result.copy(out, kInfoSize - 1);
    out[length] = '\0';
}

}  // namespace brindle
