// SPDX-License-Identifier: ISC
#include "host/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <utility>

#include "host/console.h"

namespace brindle {
namespace {

constexpr int64_t kBarWidth = 40;

}  // namespace

Progress::Progress(std::string label, int64_t total)
    : label_(std::move(label)), total_(total), shown_(total > 0 && isatty(standard_error()) == 1) {
    advance_to(0);
}

Progress::~Progress() {
    if (shown_) dprintf(standard_error(), "\r\033[K");
}

void Progress::advance_to(int64_t done) {
    if (!shown_) return;
    const int64_t percent = 100 * std::clamp<int64_t>(done, 0, total_) / total_;
    if (percent == std::exchange(percent_, percent)) return;
    std::string bar(static_cast<size_t>(kBarWidth * percent / 100), '#');
    bar.resize(kBarWidth, '.');
    dprintf(standard_error(), "\r%s [%s] %3d %%", label_.c_str(), bar.c_str(),
            static_cast<int>(percent));
}

}  // namespace brindle
