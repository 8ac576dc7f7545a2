// SPDX-License-Identifier: ISC
// What it costs to bring the response curves up to date.
#include <benchmark/benchmark.h>

#include <array>

#include "graph/response_kernel.h"
#include "graph/type_curves.h"

namespace {

using namespace brindle;

constexpr CurveSettings kSettings = {6.0f, 997.0f, 2.0f};

FrequencyGrid DrawnGrid() {
    FrequencyGrid grid;
    SetFrequencyGrid(grid, 800, 20.0f, 20000.0f);
    return grid;
}

/// One band of the type given as argument: clear and evaluate.
void BandCurve(benchmark::State& state) {
    const FrequencyGrid grid = DrawnGrid();
    Curve curve;
    for (auto _ : state) {
        ClearCurve(grid, curve);
        AddBandCurve(grid, curve, static_cast<float>(state.range(0)), kSettings);
        benchmark::DoNotOptimize(curve);
    }
    state.SetItemsProcessed(state.iterations() * 800);
}
BENCHMARK(BandCurve)->ArgName("type")->Arg(1)->Arg(5)->Arg(9)->Arg(12);

/// One section: the steepest filter and the steepest shelf have four factors each.
void SectionCurve(benchmark::State& state) {
    const FrequencyGrid grid = DrawnGrid();
    Curve curve;
    for (auto _ : state) {
        ClearCurve(grid, curve);
        AddSectionCurve(grid, curve, static_cast<float>(state.range(0)), kSettings);
        benchmark::DoNotOptimize(curve);
    }
    state.SetItemsProcessed(state.iterations() * 800);
}
BENCHMARK(SectionCurve)->ArgName("type")->Arg(4)->Arg(12);

/// The loop of one evaluator with one factor or four, by vectors and point by point.
template <void (*kAdd)(const Response&, const float*, float*, size_t) noexcept>
void Kernel(benchmark::State& state) {
    const FrequencyGrid grid = DrawnGrid();
    Response response{.count = static_cast<size_t>(state.range(0)), .factors = {}};
    response.factors.fill({{1.0, 4e7, 1e5, 0.0}, {1.0, 4e7, 1e7, 0.0}});
    Curve curve = {};
    for (auto _ : state) {
        kAdd(response, grid.hz.data(), curve.data(), 800);
        benchmark::DoNotOptimize(curve);
    }
    state.SetItemsProcessed(state.iterations() * 800);
}
BENCHMARK(Kernel<AddResponse>)->ArgName("factors")->Arg(1)->Arg(4);
BENCHMARK(Kernel<AddResponseScalar>)->ArgName("factors")->Arg(1)->Arg(4);

}  // namespace
