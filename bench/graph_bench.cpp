// SPDX-License-Identifier: ISC
// Updating the response curves, and drawing the graph with software GL.
#include <benchmark/benchmark.h>

#include <array>
#include <vector>

#include "gl/GLResources.h"
#include "gl/settings.h"
#include "graph/curves/response_kernel.h"
#include "graph/curves/type_curves.h"
#include "tests/graph/graph_fixture.h"
#include "tests/support/gl_context.h"

namespace {

using namespace brindle;

constexpr CurveSettings kSettings = {6.0f, 997.0f, 2.0f};

FrequencyGrid DrawnGrid() {
    FrequencyGrid grid;
    SetFrequencyGrid(grid, 800, 20.0f, 20000.0f);
    return grid;
}

/// Clears and evaluates one band of the argument's type.
void BandCurve(benchmark::State& state) {
    const FrequencyGrid grid = DrawnGrid();
    Curve curve;
    for (auto _ : state) {
        ClearCurve(grid, curve);
        AddBandCurve(grid, curve, static_cast<BandType>(state.range(0)), kSettings);
        benchmark::DoNotOptimize(curve);
    }
    state.SetItemsProcessed(state.iterations() * 800);
}
BENCHMARK(BandCurve)->ArgName("type")->Arg(1)->Arg(5)->Arg(9)->Arg(12);

/// Evaluates one section; the steepest pass and shelf have four factors each.
void SectionCurve(benchmark::State& state) {
    const FrequencyGrid grid = DrawnGrid();
    Curve curve;
    for (auto _ : state) {
        ClearCurve(grid, curve);
        AddSectionCurve(grid, curve, static_cast<SectionType>(state.range(0)), kSettings);
        benchmark::DoNotOptimize(curve);
    }
    state.SetItemsProcessed(state.iterations() * 800);
}
BENCHMARK(SectionCurve)->ArgName("type")->Arg(4)->Arg(12);

/// One evaluator's loop with one factor or four, by vectors and point by point.
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

/// The whole update after a change of one band: its curve, those of the bands above it (none above
/// the last, seven above the first) and the total.
void UpdateAfterBand(benchmark::State& state) {
    GraphFixture fixture;
    const uint32_t port = band_port(static_cast<int>(state.range(0))) + kGain;
    for (auto _ : state) {
        fixture.graph->ParameterChanged(port);
        fixture.graph->UpdateCurves();
        benchmark::ClobberMemory();
    }
}
BENCHMARK(UpdateAfterBand)->ArgName("band")->Arg(7)->Arg(0);

/// Updates sections and total, but no band.
void UpdateAfterSection(benchmark::State& state) {
    GraphFixture fixture;
    fixture.Set(8, {1.0f, 4.0f, 0.0f, 40.0f, 1.0f});
    fixture.Set(9, {1.0f, 12.0f, 6.0f, 9000.0f, 1.0f});
    for (auto _ : state) {
        fixture.graph->ParameterChanged(section_port(0));
        fixture.graph->UpdateCurves();
        benchmark::ClobberMemory();
    }
}
BENCHMARK(UpdateAfterSection);

/// Draws one pass of the graph and its handles at the layers' size. Back and main pass are drawn
/// when something has changed, the front pass in each frame.
template <void (GLView::*kPass)()>
void Pass(benchmark::State& state) {
    GLContext gl(2000, 1200);
    resourceDirectory = BRINDLE_BUNDLE "/";
    GraphFixture fixture;
    GLResources resources(fixture.page.interfaceScale);
    fixture.page.resources = &resources;
    const std::vector<float> levels_db(kPlotBins, -20.0f);
    for (int32_t row = 0; row < kPlotRows; ++row) {
        fixture.graph->AddSpectrumRow(row, levels_db.data());
    }
    for (int band = 0; band < kBandCount; ++band) {
        fixture.Set(band, {1.0f, 9.0f, band % 2 == 0 ? 9.0f : -9.0f,
                           60.0f * static_cast<float>(1 << band), 2.0f});
    }
    fixture.graph->selectedHandle = 2;
    gl.Clear();
    glScalef(600.0f, 600.0f, 1.0f);
    for (auto _ : state) {
        glPushMatrix();
        (fixture.graph->*kPass)();
        glPopMatrix();
        glFinish();
    }
}
BENCHMARK(Pass<&GLView::DrawBack>)->Unit(benchmark::kMicrosecond)->MeasureProcessCPUTime();
BENCHMARK(Pass<&GLView::Draw>)->Unit(benchmark::kMicrosecond)->MeasureProcessCPUTime();
BENCHMARK(Pass<&GLView::DrawFront>)->Unit(benchmark::kMicrosecond)->MeasureProcessCPUTime();

}  // namespace
