// SPDX-License-Identifier: ISC
// The plugin's run with sixteen active stages, none of them Flat: the tests' plain engine, then the
// built plugin on each instruction set of the processor. In stereo, a sample is one of both
// channels.
#include <benchmark/benchmark.h>
#include <hwy/highway.h>
#include <lv2/atom/util.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "contract/brindle.h"
#include "contract/types.h"
#include "engine/eq_instance.h"
#include "tests/engine/reference_analyser.h"
#include "tests/engine/reference_engine.h"
#include "tests/support/plugin_host.h"

namespace brindle {
namespace {

constexpr double kRate = 48000.0;

// A busy mix: steep passes at both ends, shelves, bells of several widths.
template <typename SetPort>
void set_busy_controls(SetPort&& set) {
    const auto set_five = [&set](uint32_t first, float type, float gain_db, float hz, float q) {
        const float values[] = {1.0f, type, gain_db, hz, q};
        for (uint32_t i = 0; i < kControlCount; ++i) set(first + i, values[i]);
    };
    set_five(section_port(0), static_cast<float>(SectionType::HighPass48), 0.0f, 30.0f, 1.0f);
    set_five(section_port(1), static_cast<float>(SectionType::LowPass48), 0.0f, 12000.0f, 1.0f);
    for (int band = 0; band < kBandCount; ++band) {
        const BandType type = band == 0   ? BandType::LoShelf
                              : band == 7 ? BandType::HiShelf
                                          : BandType::Bell;
        set_five(band_port(band), static_cast<float>(type), band % 2 == 0 ? 4.0f : -3.0f,
                 63.0f * std::exp2(static_cast<float>(band)), 0.71f + static_cast<float>(band));
    }
    set(kTrimPort, -1.0f);
}

test::Audio noise(size_t channels, size_t n) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> level(-0.5f, 0.5f);
    test::Audio audio(channels, std::vector<float>(n));
    for (auto& channel : audio) {
        std::generate(channel.begin(), channel.end(), [&] { return level(random); });
    }
    return audio;
}

/// What is measured: block length in samples, channels, whether an editor is open.
struct Shape {
    int64_t block;
    int channels;
    bool analysing;
    auto operator<=>(const Shape&) const = default;
};

/// Least time for a sample [ns] of the plain engine, measured first, and of each instruction set
/// with controls at rest, for comparison with the others.
std::map<Shape, double> plain_ns;
std::map<std::pair<Shape, int64_t>, double> rest_ns;

/// Least time of `block` for a sample [ns] among many short spans, so that no other program had the
/// processor meanwhile. Not inlined, so that valgrind can count its instructions by name.
template <typename Block>
[[gnu::noinline]] double measure(benchmark::State& state, int64_t samples, Block block) {
    const int64_t calls = std::max<int64_t>(1, 2048 / samples);
    double least = std::numeric_limits<double>::infinity();
    for ([[maybe_unused]] auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        for (int64_t i = 0; i < calls; ++i) block();
        const std::chrono::duration<double, std::nano> span =
            std::chrono::steady_clock::now() - start;
        least = std::min(least, span.count() / static_cast<double>(calls * samples));
    }
    state.counters["ns"] = least;
    return least;
}

void plain(benchmark::State& state, Shape shape) {
    reference::Engine engine(shape.channels, kRate);
    reference::Analyser analyser(kRate);
    set_busy_controls([&engine](uint32_t number, float value) { engine.port[number] = value; });
    test::Audio in = noise(static_cast<size_t>(shape.channels), static_cast<size_t>(shape.block));
    test::Audio out = in;
    for (int64_t settled = 0; settled < 100000; settled += shape.block) {
        engine.run(in, out, static_cast<int>(shape.block));
    }
    plain_ns[shape] = measure(state, shape.block, [&] {
        if (shape.analysing) {
            for (float x : in[0]) analyser.add(x);
        }
        engine.run(in, out, static_cast<int>(shape.block));
        benchmark::DoNotOptimize(analyser.row_index);
        benchmark::ClobberMemory();
    });
}

/// A plugin that filters noise with all stages.
class BusyHost {
  public:
    /// Instances of different numbers have different frequencies.
    BusyHost(Shape shape, int64_t target, size_t number = 0)
        : shape_(shape), host_(make(shape, target)) {
        set_busy_controls([this](uint32_t port, float value) { host_->port(port) = value; });
        for (int band = 0; band < kBandCount; ++band) {
            host_->port(band_port(band) + kFrequency) *= 1.0f + 0.002f * static_cast<float>(number);
        }
        host_->settle();
        if (shape.analysing) ask_for_rows();
        in_ = out_ = noise(static_cast<size_t>(shape.channels), static_cast<size_t>(shape.block));
        for (size_t c = 0; c < in_.size(); ++c) {
            const auto port = kFirstAudioPort + 2 * static_cast<uint32_t>(c);
            host_->connect(port, in_[c].data());
            host_->connect(port + 1, out_[c].data());
        }
    }

    void run() {
        host_->run(static_cast<uint32_t>(shape_.block));
        benchmark::ClobberMemory();
    }

    /// Gives every gain, frequency and Q a new value.
    void turn_all() {
        const float up = static_cast<float>(++turns_ % 1000) / 1000.0f;
        for (uint32_t first = band_port(0); first < kTrimPort; first += kControlCount) {
            host_->port(first + kGain) = -18.0f + 36.0f * up;
            host_->port(first + kFrequency) = 100.0f + 10000.0f * up;
            host_->port(first + kQ) = 0.5f + 9.0f * up;
        }
        host_->port(kTrimPort) = -6.0f * up;
    }

    /// Sets the input to `level` with the signs of noise and runs ten seconds of it.
    void hush(float level) {
        for (auto& channel : in_) {
            for (float& sample : channel) sample = std::copysign(level, sample);
        }
        for (double n = 0.0; n < 10.0 * kRate; n += static_cast<double>(shape_.block)) run();
    }

  private:
    static std::unique_ptr<test::PluginHost> make(Shape shape, int64_t target) {
        hwy::SetSupportedTargetsForTest(target);
        auto host = std::make_unique<test::PluginHost>(shape.channels, kRate);
        hwy::SetSupportedTargetsForTest(0);
        return host;
    }

    // The editor's request stays on the port; repeating it changes nothing.
    void ask_for_rows() {
        struct {
            LV2_Atom_Sequence head;
            LV2_Atom_Event event;
            LV2_Atom_Object_Body body;
        } message{};
        message.head.atom = {sizeof message - sizeof(LV2_Atom), host_->map()(LV2_ATOM__Sequence)};
        message.event.body = {sizeof message.body, host_->map()(LV2_ATOM__Object)};
        message.body.otype = host_->map()(kEnableUiUri);
        std::memcpy(host_->control.data(), &message, sizeof message);
    }

    Shape shape_;
    std::unique_ptr<test::PluginHost> host_;
    test::Audio in_, out_;
    uint32_t turns_ = 0;
};

void at_rest(benchmark::State& state, Shape shape, int64_t target) {
    BusyHost host(shape, target);
    const double ns = measure(state, shape.block, [&host] { host.run(); });
    rest_ns[{shape, target}] = ns;
    state.counters["times_plain"] = plain_ns[shape] / ns;
}

void moving(benchmark::State& state, Shape shape, int64_t target) {
    BusyHost host(shape, target);
    const double ns = measure(state, shape.block, [&host] {
        host.turn_all();
        host.run();
    });
    state.counters["of_rest"] = ns / rest_ns[{shape, target}];
}

/// The longest call in ten minutes of audio with all controls moving. Ten minutes are run five
/// times, and each call counts with its shortest time, so that only the plugin's own delays remain.
void longest_call(benchmark::State& state, Shape shape) {
    constexpr int kPasses = 5;
    const auto calls = static_cast<size_t>(600.0 * kRate) / static_cast<size_t>(shape.block);
    std::vector<double> least(calls, std::numeric_limits<double>::infinity());
    double longest_raw = 0.0;
    for ([[maybe_unused]] auto _ : state) {
        for (int pass = 0; pass < kPasses; ++pass) {
            BusyHost host(shape, 0);
            double longest = 0.0;
            for (double& call : least) {
                host.turn_all();
                const auto start = std::chrono::steady_clock::now();
                host.run();
                const std::chrono::duration<double, std::micro> span =
                    std::chrono::steady_clock::now() - start;
                longest = std::max(longest, span.count());
                call = std::min(call, span.count());
            }
            longest_raw = pass == 0 ? longest : std::min(longest_raw, longest);
        }
    }
    std::sort(least.begin(), least.end());
    const double median = least[calls / 2];
    state.counters["median_us"] = median;
    state.counters["longest"] = least.back() / median;
    state.counters["longest_raw"] = longest_raw / median;
}

/// A block after ten seconds of silence or denormal samples and a block of noise, by turns.
/// Denormal numbers in the filters would make the first many times slower.
void after_silence(benchmark::State& state, Shape shape, float level) {
    BusyHost quiet(shape, 0);
    BusyHost noisy(shape, 0);
    quiet.hush(level);
    const auto time_of = [](BusyHost& host, double& least) {
        const auto begin = std::chrono::steady_clock::now();
        host.run();
        const std::chrono::duration<double, std::nano> span =
            std::chrono::steady_clock::now() - begin;
        least = std::min(least, span.count());
    };
    double quiet_ns = std::numeric_limits<double>::infinity();
    double noisy_ns = quiet_ns;
    for ([[maybe_unused]] auto _ : state) {
        time_of(quiet, quiet_ns);
        time_of(noisy, noisy_ns);
    }
    state.counters["of_noise"] = quiet_ns / noisy_ns;
}

/// Stereo plugins with different settings, `watched` of them by editors, which run a block each in
/// turn, as in a host. Reports the time for an instance's sample, and for loading the library (once
/// a process) and making an instance.
void session(benchmark::State& state, Shape shape, size_t count, size_t watched) {
    const auto begin = std::chrono::steady_clock::now();
    std::vector<std::unique_ptr<test::PluginHost>> idle(count);
    for (auto& host : idle) host = std::make_unique<test::PluginHost>(2, kRate);
    const std::chrono::duration<double, std::micro> made = std::chrono::steady_clock::now() - begin;
    state.counters["make_us"] = made.count() / static_cast<double>(count);
    idle.clear();

    std::vector<std::unique_ptr<BusyHost>> hosts(count);
    for (size_t i = 0; i < count; ++i) {
        hosts[i] = std::make_unique<BusyHost>(Shape{shape.block, 2, i < watched}, 0, i);
    }
    measure(state, shape.block * static_cast<int64_t>(count), [&hosts] {
        for (auto& host : hosts) host->run();
    });
}

void start(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        test::PluginHost host(2, kRate);
        benchmark::DoNotOptimize(&host);
    }
    state.counters["bytes"] = sizeof(EqInstance);
}

void register_all() {
    const auto add = [](const std::string& name, Shape shape, auto... rest) {
        const std::string full = name + (shape.channels == 1 ? "/mono" : "/stereo") +
                                 (shape.analysing ? "/analysing/" : "/") +
                                 std::to_string(shape.block);
        return benchmark::RegisterBenchmark(full.c_str(), rest..., shape);
    };
    for (bool analysing : {false, true}) {
        for (int channels : {1, 2}) {
            for (int64_t block : {16, 64, 256, 1024, 4096}) {
                const Shape shape = {block, channels, analysing};
                add("plain", shape, plain);
                for (const int64_t target : hwy::SupportedAndGeneratedTargets()) {
                    const std::string name = hwy::TargetName(target);
                    add(name, shape,
                        [target](benchmark::State& state, Shape s) { at_rest(state, s, target); });
                    add(name + "/moving", shape,
                        [target](benchmark::State& state, Shape s) { moving(state, s, target); });
                }
            }
        }
    }
    for (bool analysing : {false, true}) {
        for (int channels : {1, 2}) {
            add("longest_call", {64, channels, analysing}, longest_call)->Iterations(1);
        }
    }
    const std::pair<const char*, float> levels[] = {{"silence", 0.0f}, {"denormals", 1e-39f}};
    for (const auto& [name, level] : levels) {
        add(std::string("after_") + name, {1024, 2, false},
            [level = level](benchmark::State& state, Shape s) { after_silence(state, s, level); });
    }
    for (int64_t block : {64, 256}) {
        for (const auto& [count, watched] :
             {std::pair{1, 0}, {10, 0}, {100, 0}, {1, 1}, {100, 10}}) {
            add("session/" + std::to_string(count) + "/watched/" + std::to_string(watched),
                {block, 2, false}, [count = count, watched = watched](auto& state, Shape s) {
                    session(state, s, static_cast<size_t>(count), static_cast<size_t>(watched));
                });
        }
    }
    benchmark::RegisterBenchmark("start", start);
}

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    brindle::register_all();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
