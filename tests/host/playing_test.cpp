// SPDX-License-Identifier: ISC
// What plays while an editor is open: the built-in noise, and messages between the threads.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <thread>
#include <vector>

#include "host/message_ring.h"
#include "host/signal_source.h"

namespace brindle {
namespace {

struct NumberAtom {
    LV2_Atom atom = {sizeof(uint32_t), 0};
    uint32_t number = 0;
};

TEST(MessageRing, KeepsOrderAcrossThreadsAndDropsWhatHasNoRoom) {
    constexpr uint32_t kCount = 200000;
    MessageRing ring;
    std::thread writer([&ring] {
        for (NumberAtom next; next.number < kCount;) {
            if (ring.push(next.number % 7, next.atom)) ++next.number;
        }
    });
    uint32_t expected = 0;
    while (expected < kCount) {
        ring.pop([&expected](uint32_t port, const LV2_Atom& atom) {
            uint32_t number = 0;
            std::memcpy(&number, &atom + 1, sizeof number);
            EXPECT_EQ(number, expected);
            EXPECT_EQ(port, expected % 7);
            ++expected;
        });
    }
    writer.join();
    NumberAtom extra;
    for (size_t i = 0; i < MessageRing::kSlots; ++i) EXPECT_TRUE(ring.push(1, extra.atom));
    EXPECT_FALSE(ring.push(1, extra.atom));

    MessageRing empty;
    std::vector<uint64_t> large(MessageRing::kLargest / sizeof(uint64_t) + 1);
    auto* atom = reinterpret_cast<LV2_Atom*>(large.data());
    atom->size = static_cast<uint32_t>(MessageRing::kLargest - sizeof(LV2_Atom));
    EXPECT_TRUE(empty.push(1, *atom));
    atom->size += 1;
    EXPECT_FALSE(empty.push(1, *atom));
    atom->size = UINT32_MAX;
    EXPECT_FALSE(empty.push(1, *atom));
}

/// Of the low part of a signal's spectrum.
struct Measured {
    double level_db;  ///< RMS
    double sides;     ///< correlation of the two sides
};

Measured measure(const std::vector<float>& samples, size_t hop) {
    const size_t frames = samples.size() / 2;
    double power = 0.0;
    double product = 0.0;
    size_t count = 0;
    // The mean of `hop` samples keeps the spectrum below rate / (2 hop).
    for (size_t i = 0; i + hop <= frames; i += hop, ++count) {
        double left = 0.0;
        double right = 0.0;
        for (size_t k = i; k < i + hop; ++k) {
            left += double{samples[2 * k]} / static_cast<double>(hop);
            right += double{samples[2 * k + 1]} / static_cast<double>(hop);
        }
        power += left * left + right * right;
        product += 2.0 * left * right;
    }
    return {10.0 * std::log10(power / (2.0 * static_cast<double>(count))), product / power};
}

TEST(PinkNoise, HasItsLevelAndAsMuchPowerInEachOctave) {
    std::vector<float> samples(size_t{2} << 20);
    PinkNoise noise;
    noise.read(samples.data(), samples.size() / 2);
    const Measured all = measure(samples, 1);
    EXPECT_NEAR(all.level_db, -18.0, 0.5);
    EXPECT_NEAR(all.sides, 0.0, 0.1);
    // Of white noise the first step would take three quarters away, and leave little to the others.
    const double whole = std::pow(10.0, all.level_db / 10.0);
    double previous = whole;
    for (const size_t hop : {4U, 16U, 64U, 256U}) {
        const double power = std::pow(10.0, measure(samples, hop).level_db / 10.0);
        EXPECT_NEAR((previous - power) / whole, 2.0 / 15.0, 0.03) << hop;
        previous = power;
    }
}

TEST(Sweep, TakesTenSecondsFromTheLowestToTheHighestTone) {
    Sweep sweep;
    std::vector<float> samples(2 * 48000);
    std::vector<int> crossings;
    for (int second = 0; second < 11; ++second) {
        sweep.read(samples.data(), 48000);
        int count = 0;
        for (size_t i = 1; i < 48000; ++i) {
            count += samples[2 * i - 2] < 0.0f && samples[2 * i] >= 0.0f ? 1 : 0;
        }
        crossings.push_back(count);
    }
    // The mean frequency of a second: its rise over the logarithm of its ratio, 1000^(1/10).
    const double ratio = std::pow(1000.0, 0.1);
    for (size_t second = 0; second < 10; ++second) {
        const double mean_hz =
            20.0 * std::pow(ratio, static_cast<double>(second)) * (ratio - 1.0) / std::log(ratio);
        EXPECT_NEAR(crossings[second], mean_hz, 2.0 + 1e-3 * mean_hz);
    }
    EXPECT_NEAR(crossings[10], crossings[0], 1);
}

}  // namespace
}  // namespace brindle
