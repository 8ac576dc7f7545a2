// SPDX-License-Identifier: ISC
// The product's analyser yields the plain analyser's bits on every available instruction set.
#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "engine/analyser.h"
#include "tests/engine/reference_analyser.h"
#include "tests/support/hard_treatment.h"
#include "tests/support/plugin_host.h"

namespace brindle {
namespace {

/// Each test runs on every instruction set that Highway compiled and the processor has.
class AnalyserBits : public testing::TestWithParam<int64_t> {
  protected:
    void SetUp() override { hwy::SetSupportedTargetsForTest(GetParam()); }
    void TearDown() override { hwy::SetSupportedTargetsForTest(0); }

    std::unique_ptr<SpectrumAnalyser> make(double rate) {
        auto analyser = std::make_unique<SpectrumAnalyser>();
        init_analyser(*analyser, rate);
        return analyser;
    }
};

::testing::AssertionResult same_bits(const SpectrumAnalyser& product,
                                     const reference::Analyser& plain) {
    if (product.row_index != static_cast<uint32_t>(plain.row_index)) {
        return ::testing::AssertionFailure()
               << "row " << product.row_index << " for " << plain.row_index;
    }
    for (size_t row = 0; row < kPlotRows; ++row) {
        if (std::memcmp(product.rows[row].data(), plain.rows[row].data(),
                        kPlotBins * sizeof(float)) != 0) {
            return ::testing::AssertionFailure() << "row " << row;
        }
    }
    for (size_t i = 0; i < kPlotBins; ++i) {
        const reference::Bin& bin = plain.bins[i];
        const double expected[] = {bin.re,         bin.im,         bin.magnitude2, bin.power,
                                   bin.re_path.s1, bin.re_path.s2, bin.im_path.s1, bin.im_path.s2};
        const AnalyserBins& bins = product.bins;
        const double got[] = {bins.re[i],    bins.im[i],    bins.magnitude2[i], bins.power[i],
                              bins.re_s1[i], bins.re_s2[i], bins.im_s1[i],      bins.im_s2[i]};
        if (std::memcmp(expected, got, sizeof got) != 0) {
            return ::testing::AssertionFailure() << "state of bin " << i;
        }
    }
    return ::testing::AssertionSuccess();
}

/// Feeds `signal` to both analysers, to the product in blocks of random length, often one sample.
void feed(SpectrumAnalyser& product, reference::Analyser& plain, const std::vector<float>& signal,
          test::Random& random) {
    for (size_t at = 0; at < signal.size();) {
        const size_t wanted = random.one_in(3) ? 1 : random.below(701);
        const size_t length = std::min(wanted, signal.size() - at);
        analyse(product, signal.data() + at, static_cast<uint32_t>(length));
        at += length;
    }
    for (float x : signal) plain.add(x);
}

TEST_P(AnalyserBits, AreThoseOfThePlainAnalyser) {
    test::Random random(17);
    for (double rate : {22050.0, 44100.0, 64000.9, 64001.0, 192000.0}) {
        SCOPED_TRACE(rate);
        auto product = make(rate);
        reference::Analyser plain(rate);
        for (float peak : {1.0f, 0.0f, 3e38f, 1e-30f}) {
            feed(*product, plain, test::noise(1, 5000, random.below(1000), peak)[0], random);
            ASSERT_TRUE(same_bits(*product, plain)) << "peak " << peak;
        }
        product->normalise = plain.normalise = false;
        feed(*product, plain, test::noise(1, 5000, random.below(1000), 0.1f)[0], random);
        ASSERT_TRUE(same_bits(*product, plain));
    }
}

/// The counter wraps after 65536 samples. There, oscillators that have lost their magnitude
/// restart, and the others continue.
TEST_P(AnalyserBits, StayTheSameWhereTheCounterWraps) {
    test::Random random(18);
    auto product = make(48000.0);
    reference::Analyser plain(48000.0);
    feed(*product, plain, test::noise(1, 65000, random.below(1000), 0.5f)[0], random);
    for (size_t bin : {0u, 100u, 240u}) {
        product->bins.re[bin] = plain.bins[bin].re = 0.1;
        product->bins.im[bin] = plain.bins[bin].im = -0.1;
    }
    feed(*product, plain, test::noise(1, 537, random.below(1000), 0.5f)[0], random);
    EXPECT_EQ(product->bins.re[100], 1.0);
    EXPECT_EQ(product->bins.im[100], 0.0);
    feed(*product, plain, test::noise(1, 3000, random.below(1000), 0.5f)[0], random);
    EXPECT_TRUE(same_bits(*product, plain));
}

TEST_P(AnalyserBits, SamplesThatAreNotFiniteCountAsSilence) {
    test::Random random(19);
    auto product = make(48000.0);
    reference::Analyser plain(48000.0);
    std::vector<float> signal = test::noise(1, 6000, random.below(1000), 0.5f)[0];
    const float bad[] = {std::numeric_limits<float>::quiet_NaN(),
                         std::numeric_limits<float>::infinity(),
                         -std::numeric_limits<float>::infinity()};
    for (size_t i = 0; i < 300; ++i) signal[2500 + 3 * i] = bad[i % 3];
    feed(*product, plain, signal, random);
    EXPECT_TRUE(same_bits(*product, plain));
    EXPECT_TRUE(std::isfinite(product->rows[product->row_index][0]));
}

INSTANTIATE_TEST_SUITE_P(EachInstructionSet, AnalyserBits,
                         testing::ValuesIn(hwy::SupportedAndGeneratedTargets()),
                         [](const auto& target) {
                             return std::string(hwy::TargetName(target.param));
                         });

}  // namespace
}  // namespace brindle
