// SPDX-License-Identifier: ISC
// The loaded plugin and the analyser yield the plain versions' bits over seeded random sessions, on
// every available instruction set.
#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "contract/brindle.h"
#include "engine/analyser.h"
#include "tests/engine/reference_analyser.h"
#include "tests/engine/reference_engine.h"
#include "tests/support/hard_treatment.h"
#include "tests/support/plugin_host.h"

namespace brindle::test {
namespace {

constexpr float kInf = std::numeric_limits<float>::infinity();

/// Each test runs on every instruction set that Highway compiled and the processor has.
class Bits : public testing::TestWithParam<int64_t> {
  protected:
    void SetUp() override { hwy::SetSupportedTargetsForTest(GetParam()); }
    void TearDown() override { hwy::SetSupportedTargetsForTest(0); }
};

/// A host session that gives both engines the same controls and audio.
class Session {
  public:
    Session(int channels, double rate, uint32_t seed)
        : random(seed), product_(channels, rate), plain_(channels, rate) {
        for (uint32_t number = 2; number <= kTrimPort; ++number) turn(number);
    }

    /// Turns some controls, often none.
    void turn_controls() {
        const uint32_t count = random.one_in(2) ? 0 : random.below(12);
        for (uint32_t i = 0; i < count; ++i) turn(2 + random.below(kTrimPort - 1));
    }

    void set(uint32_t number, float value) {
        product_.port(number) = value;
        plain_.port[number] = value;
    }

    /// Runs `n` samples of noise or silence; fails where the outputs or meters differ.
    void run(uint32_t n) {
        run(noise(product_.channels(), n, random.below(1000), random.one_in(8) ? 0.0f : 1.0f));
    }

    /// Gives the product buffers as hosts do: separate, in place, or in place and crossed.
    void run(const Audio& in) {
        const size_t channels = in.size(), n = in[0].size();
        Audio expected = in, buffers = in;
        plain_.run(in, expected, static_cast<int>(n));
        buffers.resize(2 * channels, std::vector<float>(n, 7.0f));
        const uint32_t layout = random.below(3);
        const auto out_of = [layout, channels](size_t c) {
            return layout == 0 ? channels + c : layout == 1 ? c : channels - 1 - c;
        };
        for (size_t c = 0; c < channels; ++c) {
            const auto number = kFirstAudioPort + 2 * static_cast<uint32_t>(c);
            product_.connect(number, buffers[c].data());
            product_.connect(number + 1, buffers[out_of(c)].data());
        }
        product_.run(static_cast<uint32_t>(n));
        for (size_t c = 0; c < channels; ++c) {
            for (size_t i = 0; i < n; ++i) {
                ASSERT_EQ(buffers[out_of(c)][i], expected[c][i])
                    << "channel " << c << " sample " << i << " of " << n;
            }
        }
        for (uint32_t meter : {kMeterInPort, kMeterOutPort}) {
            ASSERT_EQ(product_.port(meter), plain_.port[meter]) << meter;
        }
    }

    Random random;

  private:
    // The filter, a steep low-pass too, stays below Nyquist.
    void turn(uint32_t number) {
        const auto rate = static_cast<float>(product_.rate());
        set(number, any_value(random, number,
                              number >= section_port(0) ? std::min(15000.0f, 0.3f * rate)
                                                        : std::min(20000.0f, 0.47f * rate)));
    }

    PluginHost product_;
    reference::Engine plain_;
};

TEST_P(Bits, OfThePlainEngine) {
    constexpr uint32_t kLengths[] = {0, 1, 2, 63, 64, 65, 128, 256, 1000, 1024, 4096, 8192};
    uint32_t seed = 0;
    for (double rate : {32000.0, 44100.0, 48000.0, 60000.5, 60001.0, 88200.0, 96000.0, 192000.0}) {
        for (int repeat = 0; repeat < 8; ++repeat, ++seed) {
            SCOPED_TRACE(testing::Message() << rate << " Hz, seed " << seed);
            Session session(seed % 2 == 0 ? 2 : 1, rate, seed);
            for (int block = 0; block < 60; ++block) {
                session.turn_controls();
                Random& random = session.random;
                const uint32_t n = random.one_in(2) ? random.pick(kLengths) : random.below(300);
                ASSERT_NO_FATAL_FAILURE(session.run(n)) << "block " << block;
            }
        }
    }
}

// After 4500 ticks no glide moves, and the product skips its ticks until a control is turned.
TEST_P(Bits, OfThePlainEngineBeyondTheEndOfGlides) {
    constexpr int kResting = 4500 * 64 / 4096;
    for (int channels : {1, 2}) {
        Session session(channels, 48000.0, 99);
        for (uint32_t turned : {kTrimPort, band_port(2) + kGain, kTrimPort}) {
            for (int block = 0; block < kResting + 100; ++block) {
                const uint32_t n = block < kResting ? 4096 : session.random.below(200);
                ASSERT_NO_FATAL_FAILURE(session.run(n));
            }
            session.set(turned, session.random.real(-12.0f, 12.0f));
        }
    }
}

// Shows the effect of the crossfades' tiny addends by a signal far above the dither. A high-pass
// stops the signal but for the share that `dry` has grown to; once the signal ends, a low-pass that
// is long off still sounds with the share that `wet` has fallen to.
TEST_P(Bits, OfThePlainEngineWhereOnlyTheAddendsSound) {
    constexpr float kLoud = 1e15f;
    constexpr uint32_t kBlock = 8192;
    constexpr int kFading = 2200 * 64 / kBlock;  // 0.98 a tick leaves 1e-19 after 2200 ticks
    Session session(1, 48000.0, 0);
    for (int strip = 0; strip < kStripCount; ++strip) {
        session.set(strip_port(strip) + kEnable, strip == 1 ? 1.0f : 0.0f);
        session.set(strip_port(strip) + kType, strip < 2 ? static_cast<float>(strip + 1) : 0.0f);
        session.set(strip_port(strip) + kFrequency, strip == 0 ? 20.0f : 1000.0f);
    }
    for (int block = 0; block <= kFading + 1; ++block) {
        const float level = block <= kFading ? kLoud : 0.0f;
        ASSERT_NO_FATAL_FAILURE(session.run({std::vector<float>(kBlock, level)})) << block;
    }
}

// The input drives the first stage or one in the middle out of the finite numbers, so that stages
// restart at the next tick.
TEST_P(Bits, OfThePlainCascadeAfterBursts) {
    const auto process = [](int channels, float burst, uint32_t block) {
        PluginHost host(channels, 48000.0);
        for (int band = 0; band < kBandCount; ++band) host.set_strip(band, 9, 18.0f, 1000.0f, 0.5f);
        host.settle();
        Audio in = noise(channels, 6000, 5);
        for (size_t start : {1000u, 1060u, 3007u}) in[0][start] = in[0][start + 40] = burst;
        for (size_t i = 4000; i < 4500; i += 7) in[0][i] = burst;
        return host.process(in, block);
    };
    for (int channels : {1, 2}) {
        for (float burst : {kInf, 1e35f}) {
            SCOPED_TRACE(testing::Message() << channels << " channels, " << burst);
            hwy::SetSupportedTargetsForTest(hwy::SupportedAndGeneratedTargets().back());
            const Audio expected = process(channels, burst, 1);
            hwy::SetSupportedTargetsForTest(GetParam());
            const Audio out = process(channels, burst, 777);
            size_t left_the_numbers = 0;
            for (size_t c = 0; c < out.size(); ++c) {
                for (size_t i = 0; i < out[c].size(); ++i) {
                    const bool finite = std::isfinite(expected[c][i]);
                    left_the_numbers += finite ? 0 : 1;
                    ASSERT_EQ(std::isfinite(out[c][i]), finite) << "sample " << i;
                    if (finite) {
                        ASSERT_EQ(out[c][i], expected[c][i]) << "sample " << i;
                    }
                }
            }
            EXPECT_GT(left_the_numbers, 100u);
            EXPECT_LT(left_the_numbers, 1000u);
        }
    }
}

/// Both analysers, which get the same signals.
class Analysers {
  public:
    explicit Analysers(double rate) : plain(rate) { init_analyser(*product, rate); }

    /// Feeds `n` samples of noise, some of which may be no number, to the product in blocks of
    /// random length, often one sample; fails where rows or bins differ.
    void feed(size_t n, float peak, bool bursts = false) {
        std::vector<float> signal = noise(1, n, random_.below(1000), peak)[0];
        for (size_t i = n / 2; bursts && i < n / 2 + 300; ++i) {
            signal[i] = i % 3 == 0 ? std::numeric_limits<float>::quiet_NaN() : kInf;
        }
        for (float x : signal) plain.add(x);
        for (size_t at = 0; at < n;) {
            const size_t wanted = random_.one_in(3) ? 1 : random_.below(701);
            const size_t length = std::min(wanted, n - at);
            analyse(*product, signal.data() + at, static_cast<uint32_t>(length));
            at += length;
        }
        ASSERT_EQ(product->row_index, plain.row_index);
        for (size_t row = 0; row < kPlotRows; ++row) {
            ASSERT_TRUE(std::equal(plain.rows[row].begin(), plain.rows[row].end(),
                                   product->rows[row].begin()))
                << row;
        }
        for (size_t i = 0; i < kPlotBins; ++i) {
            const reference::Bin& bin = plain.bins[i];
            const AnalyserBins& bins = product->bins;
            ASSERT_EQ(std::tuple(bins.re[i], bins.im[i], bins.power[i], bins.re_s1[i]),
                      std::tuple(bin.re, bin.im, bin.power, bin.re_path.s1))
                << i;
        }
    }

    std::unique_ptr<SpectrumAnalyser> product = std::make_unique<SpectrumAnalyser>();
    reference::Analyser plain;

  private:
    Random random_{17};
};

TEST_P(Bits, OfThePlainAnalyser) {
    for (double rate : {22050.0, 44100.0, 64000.9, 64001.0, 192000.0}) {
        SCOPED_TRACE(rate);
        Analysers both(rate);
        for (float peak : {1.0f, 0.0f, 3e38f, 1e-30f}) {
            ASSERT_NO_FATAL_FAILURE(both.feed(5000, peak)) << "peak " << peak;
        }
        ASSERT_NO_FATAL_FAILURE(both.feed(6000, 0.5f, true)) << "bursts count as silence";
        both.product->normalise = both.plain.normalise = false;
        ASSERT_NO_FATAL_FAILURE(both.feed(5000, 0.1f));
    }
}

/// The counter wraps after 65536 samples. There, oscillators that have lost their magnitude
/// restart, and the others continue.
TEST_P(Bits, OfThePlainAnalyserWhereItsCounterWraps) {
    Analysers both(48000.0);
    ASSERT_NO_FATAL_FAILURE(both.feed(65000, 0.5f));
    for (size_t bin : {0u, 100u, 240u}) {
        both.product->bins.re[bin] = both.plain.bins[bin].re = 0.1;
        both.product->bins.im[bin] = both.plain.bins[bin].im = -0.1;
    }
    ASSERT_NO_FATAL_FAILURE(both.feed(537, 0.5f));
    EXPECT_EQ(both.product->bins.re[100], 1.0);
    EXPECT_EQ(both.product->bins.im[100], 0.0);
    both.feed(3000, 0.5f);
}

INSTANTIATE_TEST_SUITE_P(EachInstructionSet, Bits,
                         testing::ValuesIn(hwy::SupportedAndGeneratedTargets()),
                         [](const auto& target) {
                             return std::string(hwy::TargetName(target.param));
                         });

}  // namespace
}  // namespace brindle::test
