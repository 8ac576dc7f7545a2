// SPDX-License-Identifier: ISC
// The editor's window with software GL: opening, and frames. Run it by tests/support/with_display.
#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <cstdlib>

#include "editor/GLView_BaseView.h"
#include "editor/window_events.h"
#include "gl/settings.h"
#include "tests/support/ui_host.h"

namespace brindle {
namespace {

/// From instantiate until the first frame is on the screen.
void BM_OpenToFirstFrame(benchmark::State& state) {
    void* library = dlopen(BRINDLE_BUNDLE "brindle.so", RTLD_NOW | RTLD_LOCAL);
    const auto entry =
        reinterpret_cast<LV2UI_DescriptorFunction>(dlsym(library, "lv2ui_descriptor"));
    test::UiHost host(entry(0));
    for (auto _ : state) {
        host.Open();
        host.Idle();
        host.GetPixel(0, 0);  // waits for the X server
        state.PauseTiming();
        host.Close();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_OpenToFirstFrame)->Unit(benchmark::kMillisecond)->UseRealTime();

/// A frame of an empty tree at 1000 x 600, until the X server shows it. Argument: whether what
/// stands still is drawn anew.
void BM_Frame(benchmark::State& state) {
    resourceDirectory = BRINDLE_BUNDLE;
    HostWindow host;
    host.Sync();
    const auto window = PuglWindow::Create(host.GetId(), "Bench", 1000, 600);
    GLView_BaseView root(1000, 600);
    ConnectWindow(*window, root);
    window->ProcessEvents();
    for (auto _ : state) {
        root.redrawNeeded = state.range(0) != 0;
        window->PostRedisplay();
        window->ProcessEvents();
        host.GetPixel(window->GetNativeWindow(), 0, 0);
    }
    window->MakeCurrent();
}
BENCHMARK(BM_Frame)->ArgName("dirty")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace brindle

BENCHMARK_MAIN();
