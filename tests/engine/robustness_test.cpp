// SPDX-License-Identifier: ISC
// The loaded plugin in hosts that misbehave, with values and calls that it should never get.
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "contract/brindle.h"
#include "tests/support/plugin_host.h"

namespace brindle::test {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

bool all_finite(const Audio& audio) {
    return std::all_of(audio.begin(), audio.end(), [](const std::vector<float>& channel) {
        return std::all_of(channel.begin(), channel.end(),
                           [](float v) { return std::isfinite(v); });
    });
}

void set_usual_controls(PluginHost& host) {
    host.set_strip(kBandCount, 2, 0.0f, 40.0f, 1.0f);
    host.set_strip(kBandCount + 1, 17, 0.0f, 3000.0f, 2.0f);
    for (int band = 0; band < kBandCount; ++band) {
        host.set_strip(band, 5 + band % 5, 6.0f - 2.0f * static_cast<float>(band),
                       80.0f * std::exp2(static_cast<float>(band)), 0.8f);
    }
    host.port(kTrimPort) = -3.0f;
}

/// Two instances with the usual controls, one of which is disturbed.
struct Twins {
    PluginHost host, undisturbed;

    explicit Twins(int channels = 2) : host(channels, 48000.0), undisturbed(channels, 48000.0) {
        set_usual_controls(host);
        set_usual_controls(undisturbed);
    }
    void expect_same(const Audio& in) {
        EXPECT_EQ(host.process(in), undisturbed.process(in));
        EXPECT_EQ(host.port(kMeterOutPort), undisturbed.port(kMeterOutPort));
    }
};

TEST(Entry, OffersTheTwoVariantsOnly) {
    ASSERT_NE(descriptor(0), nullptr);
    ASSERT_NE(descriptor(1), nullptr);
    EXPECT_STREQ(descriptor(0)->URI, kMonoUri);
    EXPECT_STREQ(descriptor(1)->URI, kStereoUri);
    EXPECT_EQ(descriptor(2), nullptr);
    EXPECT_EQ(descriptor(0xffffffffu), nullptr);
    EXPECT_EQ(descriptor(0)->extension_data(LV2_CORE__InputPort), nullptr);
}

TEST(Entry, RefusesAHostWithoutUridMapInOneLine) {
    LV2_URID_Map no_function{};
    const LV2_Feature unusable[] = {{LV2_CORE__hardRTCapable, nullptr},
                                    {LV2_URID__map, nullptr},
                                    {LV2_URID__map, &no_function},
                                    {nullptr, nullptr}};
    for (const LV2_Feature& other : unusable) {
        const LV2_Feature* features[] = {&other, nullptr};
        testing::internal::CaptureStderr();
        EXPECT_EQ(descriptor(0)->instantiate(descriptor(0), 48000.0, "", features), nullptr);
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "Brindle error: Host does not support urid:map\n");
    }
}

TEST(Entry, TakesTheLaterOfTwoMapsAndAsksForItsKeysInOrder) {
    UridMap first, second;
    const LV2_Feature* features[] = {first.feature(), second.feature(), nullptr};
    LV2_Handle handle = descriptor(1)->instantiate(descriptor(1), 48000.0, "", features);
    ASSERT_NE(handle, nullptr);
    descriptor(1)->cleanup(handle);
    EXPECT_TRUE(first.order().empty());
    const std::vector<std::string> keys = {
        LV2_ATOM__eventTransfer, kEnableUiUri, kDisableUiUri, kMessageUri,
        kSampleRateUri,          kPlotIdUri,   kPlotArrayUri};
    const std::vector<std::string>& all = second.order();
    ASSERT_GT(all.size(), keys.size()) << "the forge's types come before";
    EXPECT_EQ(std::vector(all.end() - static_cast<long>(keys.size()), all.end()), keys);
}

TEST(Entry, TakesRatesThatNoHostHas) {
    for (double rate : {0.0, -48000.0, 1e-300, static_cast<double>(kNan), static_cast<double>(kInf),
                        -static_cast<double>(kInf), 1e12}) {
        SCOPED_TRACE(rate);
        PluginHost host(2, rate);
        set_usual_controls(host);
        EXPECT_TRUE(all_finite(host.process(noise(2, 4096, 19))));
        EXPECT_TRUE(std::isfinite(host.port(kMeterOutPort)));
    }
}

TEST(Entry, IgnoresPortsOutsideTheTableAndOnesWithoutABuffer) {
    for (int channels : {1, 2}) {
        Twins twins(channels);
        PluginHost& host = twins.host;
        float beyond = 1.0f;
        for (uint32_t number : {kStereoPortCount, kStereoPortCount + 1, 1u << 16, 0xffffffffu}) {
            host.connect(number, &beyond);
        }
        const Audio in = noise(channels, 2048, 3);
        twins.expect_same(in);
        for (uint32_t number = 0; number < kFirstAudioPort; ++number) host.connect(number, nullptr);
        EXPECT_TRUE(all_finite(host.process(in)));
        std::vector<float> buffer(512);
        for (uint32_t number = kFirstAudioPort; number < kStereoPortCount; ++number) {
            for (uint32_t other = kFirstAudioPort; other < kStereoPortCount; ++other) {
                host.connect(other, other == number ? nullptr : buffer.data());
            }
            host.run(512);
        }
        EXPECT_EQ(beyond, 1.0f);
    }
}

// Filters ring, controls glide and the counters stand between two ticks.
TEST(LifeCycle, StateSurvivesDeactivateAndActivate) {
    Twins twins;
    twins.expect_same(noise(2, 5000, 29));
    twins.host.restart();
    twins.expect_same(noise(2, 5000, 30));
}

// As PipeWire connects the message ports: to one empty atom.
TEST(LifeCycle, AnEmptyAtomOnBothMessagePortsStaysEmpty) {
    PluginHost host(1, 48000.0);
    host.send_request(kEnableUiUri);
    host.process(noise(1, 1024, 31));
    LV2_Atom atom = {0, 0};
    host.connect(kControlPort, &atom);
    host.connect(kNotifyPort, &atom);
    host.process(noise(1, 4096, 32));
    EXPECT_EQ(atom.size, 0u);
}

TEST(LifeCycle, InstancesLeaveNothingBehind) {
    const auto used_bytes = [] {
        const auto used = mallinfo2();
        return used.uordblks + used.hblkhd;
    };
    size_t before = 0;
    for (int i = 0; i < 21; ++i) {
        if (i == 1) before = used_bytes();  // with what is kept for all of them
        const PluginHost host(2, 48000.0);
    }
    EXPECT_LT(used_bytes(), before + 10000);
}

TEST(Controls, ThatAreNoNumberLeaveTheLastValueInForce) {
    for (float bad : {kNan, kInf, -kInf}) {
        SCOPED_TRACE(bad);
        Twins twins;
        twins.expect_same(noise(2, 30000, 5));
        for (uint32_t number = 2; number <= kTrimPort; ++number) twins.host.port(number) = bad;
        twins.expect_same(noise(2, 30000, 6));
    }
}

// Bursts that end inside a block, between ticks. The other channel must not change.
TEST(Bursts, EndWithinOneControlTickAndLeaveTheOtherChannelAlone) {
    constexpr size_t kTick = 64, kStart = 2000, kEnd = 2500;
    for (float bad : {kNan, kInf, -kInf}) {
        for (size_t channel : {0u, 1u}) {
            SCOPED_TRACE(testing::Message() << bad << " on channel " << channel);
            Twins twins;
            PluginHost& host = twins.host;
            host.settle();
            twins.undisturbed.settle();
            Audio in = noise(2, 24000, 17);
            // Silence before the tick that ends the burst, where the other channel clears nothing.
            std::fill_n(in[channel].begin(), kEnd + kTick, 0.0f);
            const Audio expected = twins.undisturbed.process(in, 480);
            for (size_t i = kStart; i < kEnd; i += 3) in[channel][i] = bad;
            const Audio out = host.process(in, 480);

            EXPECT_EQ(out[1 - channel], expected[1 - channel]);
            for (size_t i = kEnd + kTick; i < out[channel].size(); ++i) {
                ASSERT_NEAR(out[channel][i], expected[channel][i], 1e-4f) << "sample " << i;
            }
        }
    }
}

// Nor may squares beyond a float's range, before or after the cascade, or values that a host left
// in the ports.
TEST(Bursts, DoNotHoldTheMeters) {
    const std::pair<float, float> bursts[] = {
        {kNan, 0.0f}, {kInf, 0.0f}, {1e30f, 0.0f}, {1e20f, -40.0f}, {1e18f, 40.0f}};
    for (const auto& [sample, trim_db] : bursts) {
        SCOPED_TRACE(testing::Message() << sample << " with " << trim_db << " dB");
        PluginHost host(1, 48000.0);
        host.port(kTrimPort) = trim_db;
        host.settle();
        host.process({std::vector<float>(4096, sample)});
        host.port(kTrimPort) = 0.0f;
        host.port(kMeterInPort) = kNan;
        host.port(kMeterOutPort) = kInf;
        host.process({std::vector<float>(192000, 0.5f)});
        EXPECT_TRUE(all_finite({{host.port(kMeterInPort), host.port(kMeterOutPort)}}));
        host.port(kMeterInPort) = host.port(kMeterOutPort) = 0.0f;
        host.process({std::vector<float>(4096, 0.5f)});
        EXPECT_NEAR(host.port(kMeterInPort), 0.25f, 0.01f);
        EXPECT_NEAR(host.port(kMeterOutPort), 0.25f, 0.01f);
    }
}

}  // namespace
}  // namespace brindle::test
