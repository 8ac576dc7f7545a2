// SPDX-License-Identifier: ISC
// Runs the loaded plugin with random hosts, controls, messages and signals. docs/testing.md says
// how to run it for hours.
#include <gtest/gtest.h>
#include <lv2/atom/atom.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "contract/brindle.h"
#include "contract/ports.h"
#include "tests/support/call_guard.h"
#include "tests/support/hard_treatment.h"
#include "tests/support/plugin_host.h"

namespace brindle::test {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr float kFence = 12345.0f;  // follows each buffer
constexpr uint32_t kMaxBlock = 4096;
constexpr double kDitherPeak = 1e-6;  // what the plugin adds to its input

constexpr double kRates[] = {4000.0,  8000.0,  11025.5, 22050.0, 44100.0,  48000.0,
                             59999.9, 60001.0, 88200.0, 96000.0, 176400.0, 192000.0};

struct Signal {
    const char* name;
    float (*sample)(Random& random, uint32_t i);
};
// clang-format off
constexpr Signal kSignals[] = {
    {"silence",   [](Random&, uint32_t)          { return 0.0f; }},
    {"noise",     [](Random& random, uint32_t)   { return random.real(-1.0f, 1.0f); }},
    {"denormals", [](Random& random, uint32_t)   { return random.real(-1e-38f, 1e-38f); }},
    {"DC",        [](Random&, uint32_t)          { return 1.0f; }},
    {"Nyquist",   [](Random&, uint32_t i)        { return i % 2 == 0 ? 1.0f : -1.0f; }},
    {"impulses",  [](Random&, uint32_t i)        { return i % 397 == 0 ? -1.0f : 0.0f; }},
    {"square",    [](Random&, uint32_t i)        { return i % 100 < 50 ? 1.0f : -1.0f; }},
    {"burst",     [](Random& random, uint32_t i) { return i % 40 != 0 ? 0.5f
                                                        : random.one_in(2) ? kNan
                                                        : random.one_in(2) ? kInf : -kInf; }},
};
// clang-format on
constexpr size_t kHarmless = std::size(kSignals) - 1;

/// One instance and its host.
class Life {
  public:
    Life(Random& random, int channels, double rate)
        : random_(random),
          host_(channels, rate),
          tick_(static_cast<uint32_t>(rate) < 60001 ? 64 : 128),
          buffers_(2 * static_cast<size_t>(channels), std::vector<float>(kMaxBlock + 1)) {}

    /// Puts anything on any port at any time: finite input must give finite output.
    void go_wild(int blocks) {
        const bool every_block = random_.one_in(2);
        for (int i = 0; i < blocks && !testing::Test::HasFailure(); ++i) {
            if (every_block || random_.one_in(10)) shake_controls();
            send_messages();
            const uint32_t lengths[] = {0, 1, tick_ - 1, tick_, 512, random_.below(kMaxBlock + 1)};
            const Signal& signal = random_.pick(kSignals);
            SCOPED_TRACE(signal.name);
            play(signal, random_.pick(lengths), random_.one_in(3));
        }
    }

    /// Keeps the controls at rest. Over any stretch, the output then has at most the input's energy
    /// times the largest gain (Parseval), the product of the stages' largest boosts, plus the
    /// energy that the stages held before the stretch.
    void keep_within_gains() {
        const double gain = set_sane_controls();
        const double quiet_rms = 2.0 * kDitherPeak * gain;
        come_to_rest(quiet_rms);
        const Signal& signal = kSignals[1 + random_.below(kHarmless - 1)];
        SCOPED_TRACE(signal.name);
        std::vector<double> in(channels()), out(channels());
        double samples = 0;
        for (int i = 0; i < 20 && !testing::Test::HasFailure(); ++i) {
            const uint32_t n = 1 + random_.below(kMaxBlock);
            play(signal, n, false);
            for (size_t c = 0; c < channels(); ++c) {
                in[c] += energy(buffers_[2 * c], n);
                out[c] += energy(buffers_[2 * c + 1], n);
            }
            samples += n;
        }
        constexpr double kRounding = 1.05;  // of 16 stages in single precision
        for (size_t c = 0; c < channels(); ++c) {
            EXPECT_LE(std::sqrt(out[c]),
                      kRounding * gain * std::sqrt(in[c]) + 2.0 * quiet_rms * std::sqrt(samples))
                << "gain " << gain << " channel " << c << " rate " << host_.rate();
        }
    }

  private:
    size_t channels() const { return static_cast<size_t>(host_.channels()); }

    static double energy(const std::vector<float>& buffer, uint32_t n) {
        double sum = 0.0;
        for (uint32_t i = 0; i < n; ++i) {
            sum += static_cast<double>(buffer[i]) * static_cast<double>(buffer[i]);
        }
        return sum;
    }

    void shake_controls() {
        const float kAnything[] = {0.0f,  1.0f,    -1.0f,    0.4f,   0.95f,    2.5f,     17.0f,
                                   18.0f, 40.0f,   1e-30f,   1e-45f, 20000.0f, 96000.0f, 1e9f,
                                   1e30f, 3.4e38f, -3.4e38f, kNan,   kInf,     -kInf};
        const uint32_t kShares[] = {1, 3, 20};
        const uint32_t share = random_.pick(kShares);
        for (uint32_t port = 2; port <= kTrimPort; ++port) {
            if (!random_.one_in(share)) continue;
            host_.port(port) = random_.one_in(2) ? random_.pick(kAnything) : likely(port);
        }
    }

    /// A value that a host may send, including fractions of types and switches.
    float likely(uint32_t port) {
        if (port == kTrimPort) return random_.real(-20.0f, 20.0f);
        switch ((port - 2) % kControlCount) {
            case kEnable:
                return random_.real(0.0f, 1.2f);
            case kType:
                return random_.real(0.0f, 19.0f);
            case kGain:
                return random_.real(-18.0f, 18.0f);
            case kFrequency:
                return 20.0f * std::exp2(random_.real(0.0f, 10.0f));
            default:
                return 0.1f * std::pow(1000.0f, random_.real(0.0f, 1.0f));
        }
    }

    /// Sets controls within their ranges; returns the largest gain that they allow.
    double set_sane_controls() {
        for (uint32_t port = 2; port <= kTrimPort; ++port) host_.port(port) = likely(port);
        double gain_db = host_.port(kTrimPort);
        for (int strip = 0; strip < kStripCount; ++strip) {
            const uint32_t first = strip_port(strip);
            const auto types = static_cast<uint32_t>(strip_types(strip).size());
            const auto type = static_cast<float>(random_.below(types));
            const bool on = random_.one_in(2);
            host_.port(first + kEnable) = on ? 1.0f : 0.0f;
            host_.port(first + kType) = type;
            if (on && strip_type(strip, type).heeds_gain) {
                gain_db += std::max(0.0f, host_.port(first + kGain));
            }
        }
        return std::pow(10.0, gain_db / 20.0);
    }

    /// Runs silence until the glides have ended and the stages no longer ring.
    void come_to_rest(double quiet_rms) {
        for (uint32_t n = 0; n < 2000 * tick_; n += kMaxBlock) play(kSignals[0], kMaxBlock, false);
        const double seconds = 300.0;  // a bell at 20 Hz, Q 100, +18 dB falls 14 dB in 10 seconds
        for (double n = 0; n < seconds * host_.rate(); n += 8 * kMaxBlock) {
            double loudest = 0.0;
            for (int block = 0; block < 8; ++block) {
                play(kSignals[0], kMaxBlock, false);
                for (size_t c = 0; c < channels(); ++c) {
                    loudest = std::max(loudest, energy(buffers_[2 * c + 1], kMaxBlock));
                }
            }
            if (std::sqrt(loudest / kMaxBlock) <= quiet_rms) return;
        }
        FAIL() << "still sounding after " << seconds << " seconds of silence";
    }

    /// Writes requests, foreign objects and events with wrong sizes into a sequence of correct
    /// size.
    void send_messages() {
        const char* kTypes[] = {kEnableUiUri, kDisableUiUri, kEnableUiUri, "urn:x:other"};
        std::vector<uint32_t> words = {0, host_.map()(LV2_ATOM__Sequence), 0, 0};
        const int events = random_.one_in(8) ? random_.between(1, 5) : 0;
        for (int i = 0; i < events; ++i) {
            const uint32_t size = random_.one_in(8) ? random_.below(0xffffffffu) : 8;
            words.insert(words.end(), {0, 0, size, host_.map()(LV2_ATOM__Object), 1,
                                       host_.map()(random_.pick(kTypes))});
        }
        words[0] = static_cast<uint32_t>(4 * words.size() - sizeof(LV2_Atom));
        std::memcpy(host_.control.data(), words.data(), 4 * words.size());
    }

    /// Runs one block, in place or not, and checks what always holds.
    void play(const Signal& signal, uint32_t n, bool in_place) {
        for (size_t c = 0; c < channels(); ++c) {
            std::vector<float>& in = buffers_[2 * c];
            std::vector<float>& out = buffers_[2 * c + (in_place ? 0 : 1)];
            for (uint32_t i = 0; i < n; ++i) in[i] = signal.sample(random_, i);
            out[n] = kFence;
            host_.connect(kFirstAudioPort + 2 * static_cast<uint32_t>(c), in.data());
            host_.connect(kFirstAudioPort + 2 * static_cast<uint32_t>(c) + 1, out.data());
        }
        const uint32_t since_bad = since_bad_;
        note_bad_input(n);
        const uint32_t capacity = random_.below(2000);
        const LV2_Atom room = {capacity, host_.map()(LV2_ATOM__Chunk)};
        std::memcpy(host_.notify.data(), &room, sizeof room);
        host_.notify[std::max<size_t>(capacity, sizeof room)] = 0xa5;
        {
            const CallGuard guard;
            host_.run(n);
            ASSERT_EQ(guard.calls(), 0);
        }
        EXPECT_EQ(host_.notify[std::max<size_t>(capacity, sizeof room)], 0xa5) << capacity;
        EXPECT_TRUE(std::isfinite(host_.port(kMeterInPort)));
        EXPECT_TRUE(std::isfinite(host_.port(kMeterOutPort)));
        for (size_t c = 0; c < channels(); ++c) {
            const float* out = buffers_[2 * c + (in_place ? 0 : 1)].data();
            EXPECT_EQ(out[n], kFence);
            // A burst ends at the next control tick.
            for (uint32_t i = 0; &signal != &kSignals[kHarmless] && i < n; ++i) {
                ASSERT_TRUE(std::isfinite(out[i]) || since_bad + i < tick_) << "sample " << i;
            }
        }
    }

    void note_bad_input(uint32_t n) {
        since_bad_ = std::min(since_bad_ + n, 1u << 20);
        for (size_t c = 0; c < channels(); ++c) {
            const std::vector<float>& in = buffers_[2 * c];
            for (uint32_t i = 0; i < n; ++i) {
                if (!std::isfinite(in[i])) since_bad_ = std::min(since_bad_, n - 1 - i);
            }
        }
    }

    Random& random_;
    PluginHost host_;
    uint32_t tick_;                            // samples between control ticks
    uint32_t since_bad_ = 1u << 20;            // samples since the last one that was not finite
    std::vector<std::vector<float>> buffers_;  // input and output of each channel
};

TEST(Soak, KeepsFiniteInputFiniteAndWithinTheGains) {
    live(30, [](Random& random) {
        const int channels = random.between(1, 2);
        const double rate = random.pick(kRates);
        SCOPED_TRACE(testing::Message() << channels << " channels at " << rate << " Hz");
        Life life(random, channels, rate);
        for (int phase = 0; phase < 2 && !testing::Test::HasFailure(); ++phase) {
            life.go_wild(random.between(20, 200));
            life.keep_within_gains();
        }
    });
}

}  // namespace
}  // namespace brindle::test
