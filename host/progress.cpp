// SPDX-License-Identifier: ISC
#include "host/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include "host/console.h"

namespace brindle {
namespace {

constexpr int64_t kBarWidth = 40;

}  // namespace

Progress::Progress(std::string label, int64_t total)
    : label_(std::move(label)), total_(total), shown_(total > 0 && isatty(standard_error()) == 1) {
    advance(0);
}

Progress::~Progress() {
    erase();
}

void Progress::erase() {
    const std::lock_guard lock(mutex_);
    if (shown_) dprintf(standard_error(), "\r\033[K");
    percent_ = -1;
}

void Progress::advance(int64_t steps) {
    const std::lock_guard lock(mutex_);
    done_ = std::min(done_ + steps, total_);
    if (!shown_) return;
    const int64_t percent = 100 * done_ / total_;
    if (percent == std::exchange(percent_, percent)) return;
    std::string line =
        label_ + " [" + std::string(static_cast<size_t>(kBarWidth * percent / 100), '#');
    line.resize(label_.size() + 2 + kBarWidth, '.');
    line += "] " + std::to_string(percent) + " %";
    if (percent > 0) {
        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start_;
        const double share = static_cast<double>(total_ - done_) / static_cast<double>(done_);
        line += ", " + std::to_string(std::lround(passed.count() * share)) + " s left";
    }
    dprintf(standard_error(), "\r%s\033[K", line.c_str());
}

}  // namespace brindle
