// SPDX-License-Identifier: ISC
// Runs the loaded plugin with random hosts, controls, messages and signals. docs/testing.md says
// how to run it for hours.
#include <gtest/gtest.h>
#include <lv2/atom/atom.h>
#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "contract/brindle.h"
#include "tests/support/atom_sequence.h"
#include "tests/support/call_guard.h"
#include "tests/support/hard_treatment.h"
#include "tests/support/plugin_host.h"

namespace brindle::test {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr uint32_t kMaxBlock = 4096;

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

/// A host's memory whose end is followed by a page that may not be touched: a read or write beyond
/// a buffer that ends there ends the program.
class Fenced {
  public:
    Fenced()
        : bytes_(static_cast<uint8_t*>(mmap(nullptr, kRoom + kPage, PROT_READ | PROT_WRITE,
                                            MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
        mprotect(bytes_ + kRoom, kPage, PROT_NONE);
    }
    Fenced(const Fenced&) = delete;
    Fenced& operator=(const Fenced&) = delete;
    ~Fenced() { munmap(bytes_, kRoom + kPage); }

    /// The last `count` values.
    template <typename T>
    T* last(size_t count) const {
        return reinterpret_cast<T*>(bytes_ + kRoom - count * sizeof(T));
    }

  private:
    static constexpr size_t kPage = 4096, kRoom = kMaxBlock * sizeof(float);
    uint8_t* bytes_;
};

/// One instance and its host.
class Life {
  public:
    Life(Random& random, int channels, double rate)
        : random_(random),
          host_(channels, rate),
          tick_(static_cast<uint32_t>(rate) < 60001 ? 64 : 128) {}

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

  private:
    size_t channels() const { return static_cast<size_t>(host_.channels()); }

    void shake_controls() {
        const float kAnything[] = {0.0f,  1.0f,    -1.0f,    0.4f,   0.95f,    2.5f,     17.0f,
                                   18.0f, 40.0f,   1e-30f,   1e-45f, 20000.0f, 96000.0f, 1e9f,
                                   1e30f, 3.4e38f, -3.4e38f, kNan,   kInf,     -kInf};
        const uint32_t kShares[] = {1, 3, 20};
        const uint32_t share = random_.pick(kShares);
        for (uint32_t port = 2; port <= kTrimPort; ++port) {
            if (!random_.one_in(share)) continue;
            host_.port(port) =
                random_.one_in(2) ? random_.pick(kAnything) : any_value(random_, port);
        }
    }

    /// Puts requests, foreign objects, events with wrong sizes and junk on the control port.
    void send_messages() {
        const char* kTypes[] = {kEnableUiUri, kDisableUiUri, kEnableUiUri, "urn:x:other"};
        AtomSequence sequence(host_.map());
        const int events = random_.one_in(4) ? random_.between(1, 5) : 0;
        for (int i = 0; i < events; ++i) {
            const bool is_wrong = random_.one_in(8);
            const uint32_t size = is_wrong ? random_.below(0xffffffffu) : 8;
            const uint32_t type = random_.one_in(8) ? 77 : host_.map()(LV2_ATOM__Object);
            sequence.event(type, {1, host_.map()(random_.pick(kTypes))}, size);
        }
        const auto most = static_cast<uint32_t>(sequence.size()) - 7;
        if (random_.one_in(4)) sequence.cut(random_.below(most));
        auto* bytes = control_.last<uint8_t>(sequence.size());
        sequence.write(bytes);
        for (size_t i = 8; i < sequence.size(); ++i) {
            if (random_.one_in(64)) bytes[i] = static_cast<uint8_t>(random_.below(256));
        }
        host_.connect(kControlPort, bytes);
    }

    /// Runs one block, in place or not, and checks what always holds.
    void play(const Signal& signal, uint32_t n, bool in_place) {
        std::vector<float*> outputs;
        for (size_t c = 0; c < channels(); ++c) {
            auto* in = buffers_[2 * c].last<float>(n);
            outputs.push_back(buffers_[2 * c + (in_place ? 0 : 1)].last<float>(n));
            for (uint32_t i = 0; i < n; ++i) in[i] = signal.sample(random_, i);
            host_.connect(kFirstAudioPort + 2 * static_cast<uint32_t>(c), in);
            host_.connect(kFirstAudioPort + 2 * static_cast<uint32_t>(c) + 1, outputs[c]);
        }
        const uint32_t since_bad = since_bad_;
        note_bad_input(n);
        const uint32_t capacity = 8 * random_.below(250);
        const LV2_Atom room = {capacity, host_.map()(LV2_ATOM__Chunk)};
        auto* notify = notify_.last<uint8_t>(std::max<size_t>(capacity, sizeof room));
        std::memcpy(notify, &room, sizeof room);
        host_.connect(kNotifyPort, notify);
        {
            const CallGuard guard;
            host_.run(n);
            ASSERT_EQ(guard.calls(), 0);
        }
        const uint32_t sent = reinterpret_cast<LV2_Atom*>(notify)->size;
        EXPECT_TRUE(sent == 8 || sent == 1072 || sent == capacity) << sent << " of " << capacity;
        EXPECT_TRUE(std::isfinite(host_.port(kMeterInPort)));
        EXPECT_TRUE(std::isfinite(host_.port(kMeterOutPort)));
        for (const float* out : outputs) {
            // A burst ends at the next control tick.
            for (uint32_t i = 0; &signal != &kSignals[kHarmless] && i < n; ++i) {
                ASSERT_TRUE(std::isfinite(out[i]) || since_bad + i < tick_) << "sample " << i;
            }
        }
    }

    void note_bad_input(uint32_t n) {
        since_bad_ = std::min(since_bad_ + n, 1u << 20);
        for (size_t c = 0; c < channels(); ++c) {
            const auto* in = buffers_[2 * c].last<float>(n);
            for (uint32_t i = 0; i < n; ++i) {
                if (!std::isfinite(in[i])) since_bad_ = std::min(since_bad_, n - 1 - i);
            }
        }
    }

    Random& random_;
    PluginHost host_;
    uint32_t tick_;                  // samples between control ticks
    uint32_t since_bad_ = 1u << 20;  // samples since the last one that was not finite
    std::array<Fenced, 4> buffers_;  // input and output of each channel
    Fenced notify_, control_;
};

TEST(Soak, KeepsFiniteInputFinite) {
    live(150, [](Random& random) {
        const int channels = random.between(1, 2);
        const double rate = random.pick(kRates);
        SCOPED_TRACE(testing::Message() << channels << " channels at " << rate << " Hz");
        Life(random, channels, rate).go_wild(random.between(40, 400));
    });
}

}  // namespace
}  // namespace brindle::test
