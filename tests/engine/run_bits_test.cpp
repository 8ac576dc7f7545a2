// SPDX-License-Identifier: ISC
// The loaded plugin yields the plain engine's bits over seeded random sessions, on every available
// instruction set.
#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "contract/brindle.h"
#include "tests/engine/reference_engine.h"
#include "tests/support/hard_treatment.h"
#include "tests/support/plugin_host.h"

namespace brindle::test {
namespace {

/// A host session that gives both engines the same controls and audio.
class Session {
  public:
    Session(int channels, double rate, uint32_t seed)
        : random_(seed), product_(channels, rate), plain_(channels, rate) {
        for (uint32_t number = 2; number <= kTrimPort; ++number) turn(number);
    }

    /// Turns some controls, often none.
    void turn_controls() {
        const uint32_t count = random_.one_in(2) ? 0 : random_.below(12);
        for (uint32_t i = 0; i < count; ++i) turn(2 + random_.below(kTrimPort - 1));
    }

    /// Sets a strip's five controls, from its first port on.
    void set_strip(uint32_t number, const std::array<float, kControlCount>& values) {
        for (float value : values) set(number++, value);
    }

    /// Runs `n` samples of noise or silence; false where the outputs or meters differ.
    ::testing::AssertionResult run(uint32_t n) {
        return run(
            noise(product_.channels(), n, random_.below(1000), random_.one_in(8) ? 0.0f : 1.0f));
    }

    /// Runs a block of given audio; false where the outputs or meters differ.
    ::testing::AssertionResult run(const Audio& in) {
        const auto n = static_cast<uint32_t>(in[0].size());
        Audio expected(in.size(), std::vector<float>(n));
        plain_.run(in, expected, static_cast<int>(n));
        run_product(in, n);
        return compare(expected, n);
    }

    Random& random() { return random_; }

  private:
    void set(uint32_t number, float value) {
        product_.port(number) = value;
        plain_.port[number] = value;
    }

    // The filter, a steep low-pass too, stays below Nyquist.
    void turn(uint32_t number) {
        const auto rate = static_cast<float>(product_.rate());
        set(number, any_value(random_, number,
                              number >= section_port(0) ? std::min(15000.0f, 0.3f * rate)
                                                        : std::min(20000.0f, 0.47f * rate)));
    }

    // Gives the product buffers as hosts do: separate, in place, or in place and crossed.
    void run_product(const Audio& in, uint32_t n) {
        const size_t channels = in.size();
        buffers_ = in;
        buffers_.resize(2 * channels, std::vector<float>(n, 7.0f));
        const uint32_t layout = random_.below(3);
        outputs_.clear();
        for (size_t c = 0; c < channels; ++c) {
            const size_t out = layout == 0 ? channels + c : layout == 1 ? c : channels - 1 - c;
            outputs_.push_back(buffers_[out].data());
            const auto number = kFirstAudioPort + 2 * static_cast<uint32_t>(c);
            product_.connect(number, buffers_[c].data());
            product_.connect(number + 1, buffers_[out].data());
        }
        product_.run(n);
    }

    ::testing::AssertionResult compare(const Audio& expected, uint32_t n) {
        for (size_t c = 0; c < expected.size(); ++c) {
            for (uint32_t i = 0; i < n; ++i) {
                if (!std::isfinite(expected[c][i])) {
                    return ::testing::AssertionFailure() << "the plain engine left the numbers";
                }
                if (std::memcmp(&expected[c][i], outputs_[c] + i, sizeof(float)) == 0) continue;
                return ::testing::AssertionFailure() << "channel " << c << " sample " << i << ": "
                                                     << outputs_[c][i] << " for " << expected[c][i];
            }
        }
        for (uint32_t number : {kMeterInPort, kMeterOutPort}) {
            if (product_.port(number) == plain_.port[number]) continue;
            return ::testing::AssertionFailure()
                   << "meter " << number << ": " << product_.port(number) << " for "
                   << plain_.port[number];
        }
        return ::testing::AssertionSuccess();
    }

    Random random_;
    PluginHost product_;
    reference::Engine plain_;
    Audio buffers_;
    std::vector<float*> outputs_;
};

/// Each test runs on every instruction set that Highway compiled and the processor has.
class RunBits : public testing::TestWithParam<int64_t> {
  protected:
    void SetUp() override { hwy::SetSupportedTargetsForTest(GetParam()); }
    void TearDown() override { hwy::SetSupportedTargetsForTest(0); }
};

TEST_P(RunBits, AreThoseOfThePlainEngine) {
    constexpr uint32_t kLengths[] = {0, 1, 2, 63, 64, 65, 128, 256, 1000, 1024, 4096, 8192};
    uint32_t seed = 0;
    for (double rate : {32000.0, 44100.0, 48000.0, 60000.5, 60001.0, 88200.0, 96000.0, 192000.0}) {
        for (int repeat = 0; repeat < 4; ++repeat, ++seed) {
            SCOPED_TRACE(testing::Message() << rate << " Hz, seed " << seed);
            Session session(seed % 2 == 0 ? 2 : 1, rate, seed);
            for (int block = 0; block < 60; ++block) {
                session.turn_controls();
                Random& random = session.random();
                const uint32_t n = random.one_in(2) ? random.pick(kLengths) : random.below(300);
                ASSERT_TRUE(session.run(n)) << "block " << block << " of " << n << " samples";
            }
        }
    }
}

// After 3000 ticks no glide moves, and the product skips its ticks.
TEST_P(RunBits, AreThoseOfThePlainEngineBeyondTheEndOfGlides) {
    for (int channels : {1, 2}) {
        Session session(channels, 48000.0, 99);
        for (int turn = 0; turn < 3; ++turn) {
            for (int block = 0; block < 3000 * 64 / 4096; ++block) ASSERT_TRUE(session.run(4096));
            for (int block = 0; block < 100; ++block)
                ASSERT_TRUE(session.run(session.random().below(200)));
            session.turn_controls();
        }
    }
}

// The input drives the first stage or one in the middle out of the finite numbers, so that stages
// restart at the next tick.
TEST_P(RunBits, AreThoseOfThePlainCascadeAfterBursts) {
    const auto process = [](int channels, float burst, uint32_t block) {
        PluginHost host(channels, 48000.0);
        for (int band = 0; band < kBandCount; ++band) host.set_band(band, 9, 18.0f, 1000.0f, 0.5f);
        host.settle();
        Audio in = noise(channels, 6000, 5);
        for (size_t start : {1000u, 1060u, 3007u}) in[0][start] = in[0][start + 40] = burst;
        for (size_t i = 4000; i < 4500; i += 7) in[0][i] = burst;
        return host.process(in, block);
    };
    for (int channels : {1, 2}) {
        for (float burst : {std::numeric_limits<float>::infinity(), 1e35f}) {
            SCOPED_TRACE(testing::Message() << channels << " channels, " << burst);
            hwy::SetSupportedTargetsForTest(hwy::SupportedAndGeneratedTargets().back());
            const Audio expected = process(channels, burst, 1);
            hwy::SetSupportedTargetsForTest(GetParam());
            const Audio out = process(channels, burst, 777);
            size_t left_the_numbers = 0;
            for (size_t c = 0; c < out.size(); ++c) {
                for (size_t i = 0; i < out[c].size(); ++i) {
                    if (!std::isfinite(expected[c][i])) {
                        ASSERT_FALSE(std::isfinite(out[c][i])) << "sample " << i;
                        ++left_the_numbers;
                    } else {
                        ASSERT_EQ(out[c][i], expected[c][i]) << "sample " << i;
                    }
                }
            }
            EXPECT_GT(left_the_numbers, 100u);
            EXPECT_LT(left_the_numbers, 1000u);
        }
    }
}

// Shows the effect of the crossfades' tiny addends by a signal far above the dither. A high-pass
// stops the signal but for the share that `dry` has grown to; once the signal ends, a low-pass that
// is long off still sounds with the share that `wet` has fallen to.
TEST_P(RunBits, AreThoseOfThePlainEngineWhereOnlyTheAddendsSound) {
    constexpr float kLoud = 1e15f;
    constexpr uint32_t kBlock = 8192;
    constexpr int kFading = 2200 * 64 / kBlock;  // 0.98 a tick leaves 1e-19 after 2200 ticks
    Session session(1, 48000.0, 0);
    for (uint32_t number = band_port(0); number < kTrimPort; number += kControlCount) {
        session.set_strip(number, {0.0f, 0.0f, 0.0f, 1000.0f, 1.0f});
    }
    session.set_strip(band_port(0), {0.0f, 1.0f, 0.0f, 20.0f, 1.0f});
    session.set_strip(band_port(1), {1.0f, 2.0f, 0.0f, 1000.0f, 1.0f});
    for (int block = 0; block <= kFading; ++block) {
        ASSERT_TRUE(session.run({std::vector<float>(kBlock, kLoud)})) << "block " << block;
    }
    EXPECT_TRUE(session.run({std::vector<float>(kBlock, 0.0f)}));
}

INSTANTIATE_TEST_SUITE_P(EachInstructionSet, RunBits,
                         testing::ValuesIn(hwy::SupportedAndGeneratedTargets()),
                         [](const auto& target) {
                             return std::string(hwy::TargetName(target.param));
                         });

}  // namespace
}  // namespace brindle::test
