// SPDX-License-Identifier: ISC
// The plain analyser, then the product's on each instruction set of the processor.
#include <benchmark/benchmark.h>
#include <hwy/highway.h>

#include <ctime>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "engine/analyser.h"
#include "tests/engine/reference_analyser.h"

namespace {

using namespace brindle;

constexpr double kRate = 48000.0;

std::vector<float> test_signal(size_t length) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> level(-0.5f, 0.5f);
    std::vector<float> signal(length);
    for (float& x : signal) x = level(random);
    return signal;
}

/// The plain analyser's time, measured first and compared with the others.
double plain_ns = 0.0;

/// Runs `block` on test signals of the benchmark's argument in samples. Reports the processor time
/// for a sample and how many times faster than the plain analyser it is.
template <typename Block>
double measure(benchmark::State& state, Block block) {
    const auto signal = test_signal(static_cast<size_t>(state.range(0)));
    const std::clock_t start = std::clock();
    for (auto _ : state) block(signal);
    const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    const double ns = 1e9 * seconds / static_cast<double>(state.iterations() * state.range(0));
    state.counters["ns_per_sample"] = ns;
    if (plain_ns > 0.0) state.counters["times_plain"] = plain_ns / ns;
    return ns;
}

void plain(benchmark::State& state) {
    reference::Analyser analyser(kRate);
    plain_ns = measure(state, [&](const std::vector<float>& signal) {
        for (float x : signal) analyser.add(x);
        benchmark::DoNotOptimize(analyser.row_index);
    });
}

void product(benchmark::State& state, int64_t target) {
    hwy::SetSupportedTargetsForTest(target);
    auto analyser = std::make_unique<SpectrumAnalyser>();
    init_analyser(*analyser, kRate);
    hwy::SetSupportedTargetsForTest(0);
    measure(state, [&](const std::vector<float>& signal) {
        analyse(*analyser, signal.data(), static_cast<uint32_t>(signal.size()));
        benchmark::DoNotOptimize(analyser->row_index);
    });
}

void start(benchmark::State& state) {
    auto analyser = std::make_unique<SpectrumAnalyser>();
    for (auto _ : state) {
        init_analyser(*analyser, kRate);
        benchmark::DoNotOptimize(analyser->row_index);
    }
    state.counters["bytes"] = sizeof(SpectrumAnalyser);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RegisterBenchmark("analyser/plain", plain)->Arg(1024);
    for (const int64_t target : hwy::SupportedAndGeneratedTargets()) {
        const std::string name = std::string("analyser/") + hwy::TargetName(target);
        benchmark::RegisterBenchmark(name.c_str(), product, target)
            ->ArgName("block")
            ->Arg(16)
            ->Arg(64)
            ->Arg(256)
            ->Arg(1024)
            ->Arg(4096);
    }
    benchmark::RegisterBenchmark("analyser/start", start);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
