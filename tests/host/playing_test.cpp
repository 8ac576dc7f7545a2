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

TEST(PinkNoise, HasItsLevelAndAsMuchPowerInEachOctave) {
    constexpr size_t kFrames = size_t{1} << 20;
    std::vector<float> samples(2 * kFrames);
    PinkNoise().read(samples.data(), kFrames);
    double product = 0.0;
    for (size_t i = 0; i < kFrames; ++i) product += double{samples[2 * i]} * samples[2 * i + 1];
    // The mean of `hop` samples of the left side keeps the spectrum below rate / (2 hop).
    const auto power = [&](size_t hop) {
        double sum = 0.0;
        for (size_t i = 0; i < kFrames; i += hop) {
            double mean = 0.0;
            for (size_t k = i; k < i + hop; ++k) mean += samples[2 * k];
            sum += mean * mean / static_cast<double>(hop * kFrames);
        }
        return sum;
    };
    const double whole = power(1);
    EXPECT_NEAR(10.0 * std::log10(whole), -18.0, 0.5);
    EXPECT_NEAR(product / (whole * kFrames), 0.0, 0.1);
    // Of white noise the first step would take three quarters away, and leave little to the others.
    for (const size_t hop : {1U, 4U, 16U, 64U}) {
        EXPECT_NEAR((power(hop) - power(4 * hop)) / whole, 2.0 / 15.0, 0.03) << hop;
    }
}

TEST(Sweep, TakesTenSecondsFromTheLowestToTheHighestTone) {
    Sweep sweep;
    std::vector<float> samples(2 * 48000);
    const double ratio = std::pow(1000.0, 0.1);
    for (int second = 0; second < 11; ++second) {
        sweep.read(samples.data(), 48000);
        int crossings = 0;
        for (size_t i = 2; i < samples.size(); i += 2) {
            crossings += samples[i - 2] < 0.0f && samples[i] >= 0.0f ? 1 : 0;
        }
        // The mean frequency of a second: its rise over the logarithm of its ratio.
        const double mean_hz =
            20.0 * std::pow(ratio, second % 10) * (ratio - 1.0) / std::log(ratio);
        EXPECT_NEAR(crossings, mean_hz, 2.0 + 1e-3 * mean_hz);
    }
}

}  // namespace
}  // namespace brindle
