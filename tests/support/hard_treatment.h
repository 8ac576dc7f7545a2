// SPDX-License-Identifier: ISC
/// Random values, seeds and durations of the programs that misuse the plugin at random.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>

#include "contract/brindle.h"

namespace brindle::test {

/// Seeded random choices.
class Random {
  public:
    explicit Random(uint32_t seed) : engine_(seed) {}

    /// 0..count-1.
    uint32_t below(uint32_t count) { return static_cast<uint32_t>(engine_() % count); }
    /// low..high, both included.
    int between(int low, int high) {
        return low + static_cast<int>(below(static_cast<uint32_t>(high - low + 1)));
    }
    bool one_in(uint32_t count) { return below(count) == 0; }
    /// From low to high, evenly.
    float real(float low, float high) {
        return std::uniform_real_distribution<float>(low, high)(engine_);
    }
    template <typename List>
    auto& pick(List& list) {
        return list[below(static_cast<uint32_t>(std::size(list)))];
    }

  private:
    std::mt19937 engine_;
};

/// A value that a host may give an input port: within its range, often at an end, with fractions of
/// switches and types and with types that do not exist. Frequencies reach up to `top_hz`.
inline float any_value(Random& random, uint32_t port, float top_hz = 20000.0f) {
    constexpr float kFractions[] = {0.0f, 0.0f, 0.0f, 0.85f, 0.9f, 0.95f};  // 0.9f is below 0.9
    const float share =
        random.one_in(10) ? static_cast<float>(random.below(2)) : random.real(0.0f, 1.0f);
    if (port == kTrimPort) return -20.0f + 40.0f * share;
    switch ((port - 2) % kControlCount) {
        case kEnable:
            return static_cast<float>(random.below(2)) + random.pick(kFractions);
        case kType:
            return static_cast<float>(random.between(-2, 19)) + random.pick(kFractions);
        case kGain:
            return random.one_in(6) ? 0.0f : -18.0f + 36.0f * share;
        case kFrequency:
            return 20.0f * std::pow(top_hz / 20.0f, share);
        default:
            return 0.1f * std::pow(1000.0f, share);
    }
}

/// Calls `life(random)` at least `lives` times and until BRINDLE_SOAK_SECONDS (default 0) have
/// passed, each time with the next seed; stops at the first failure. The first seed is
/// BRINDLE_SOAK_SEED (default 1), which repeats a failed life alone.
template <typename Life>
void live(uint32_t lives, Life life) {
    using Clock = std::chrono::steady_clock;
    const auto setting = [](const char* name, uint32_t otherwise) {
        const char* text = std::getenv(name);
        return text ? static_cast<uint32_t>(std::strtoul(text, nullptr, 10)) : otherwise;
    };
    const uint32_t first = setting("BRINDLE_SOAK_SEED", 1);
    const auto end = Clock::now() + std::chrono::seconds(setting("BRINDLE_SOAK_SECONDS", 0));
    uint32_t lived = 0;
    while (lived < lives || Clock::now() < end) {
        SCOPED_TRACE(testing::Message() << "BRINDLE_SOAK_SEED=" << first + lived);
        Random random(first + lived++);
        life(random);
        if (testing::Test::HasFailure()) return;
    }
    testing::Test::RecordProperty("lives", std::to_string(lived));
}

}  // namespace brindle::test
