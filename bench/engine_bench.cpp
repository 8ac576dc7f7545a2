// SPDX-License-Identifier: ISC
// Nanoseconds that run takes for a sample (of both channels in stereo), all sixteen stages active
// and none Flat, controls at rest: the built plugin beside the plain engine of the tests.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "engine/band_types.h"
#include "lv2/brindle.h"
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

void report(benchmark::State& state, size_t block) {
    const double samples = static_cast<double>(state.iterations()) * static_cast<double>(block);
    state.counters["per_sample"] =
        benchmark::Counter(samples, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void plugin(benchmark::State& state) {
    const auto channels = static_cast<int>(state.range(0));
    const auto block = static_cast<size_t>(state.range(1));
    test::PluginHost host(channels, kRate);
    set_busy_controls([&host](uint32_t number, float value) { host.port(number) = value; });
    host.settle();
    test::Audio in = noise(static_cast<size_t>(channels), block), out = in;
    for (size_t c = 0; c < in.size(); ++c) {
        const auto number = kFirstAudioPort + 2 * static_cast<uint32_t>(c);
        host.connect(number, in[c].data());
        host.connect(number + 1, out[c].data());
    }
    for ([[maybe_unused]] auto _ : state) {
        host.run(static_cast<uint32_t>(block));
        benchmark::ClobberMemory();
    }
    report(state, block);
}

void plain(benchmark::State& state) {
    const auto channels = static_cast<int>(state.range(0));
    const auto block = static_cast<size_t>(state.range(1));
    reference::Engine engine(channels, kRate);
    set_busy_controls([&engine](uint32_t number, float value) { engine.port[number] = value; });
    test::Audio in = noise(static_cast<size_t>(channels), block), out = in;
    for (size_t settled = 0; settled < 100000; settled += block) {
        engine.run(in, out, static_cast<int>(block));
    }
    for ([[maybe_unused]] auto _ : state) {
        engine.run(in, out, static_cast<int>(block));
        benchmark::ClobberMemory();
    }
    report(state, block);
}

const std::vector<std::vector<int64_t>> kShapes = {{1, 2}, {64, 256, 1024}};
BENCHMARK(plain)->ArgNames({"channels", "block"})->ArgsProduct(kShapes);
BENCHMARK(plugin)->ArgNames({"channels", "block"})->ArgsProduct(kShapes);

}  // namespace
}  // namespace brindle
