// SPDX-License-Identifier: ISC
// Opening and frames of the editor with software GL. Run it by tests/support/with_display.
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <lv2/atom/util.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <thread>

#include "editor/GLView_StripEqView.h"
#include "editor/editor_instance.h"
#include "editor/pugl_window.h"
#include "gl/settings.h"
#include "tests/support/ui_host.h"

namespace brindle {
namespace {

LV2UI_DescriptorFunction Entry() {
    void* library = dlopen(BRINDLE_BUNDLE "brindle.so", RTLD_NOW | RTLD_LOCAL);
    return reinterpret_cast<LV2UI_DescriptorFunction>(dlsym(library, "lv2ui_descriptor"));
}

/// The panel of the loaded library; only its data can be reached.
GLView_BaseView& Root(const test::UiHost& host) {
    return *static_cast<EditorInstance*>(host.handle)->rootView;
}

/// From instantiate until the first frame is on the screen, and the shares of window and context,
/// textures, layers and a frame. Textures are what the first frame takes longer than one that
/// redraws everything, so with the programs that GL compiles at first use. In ms, the least of all.
void BM_OpenToFirstFrame(benchmark::State& state) {
    test::UiHost host(Entry()(0));
    const auto timed = [&host](double& least_ms, auto&& work) {
        const auto begin = std::chrono::steady_clock::now();
        work();
        host.GetPixel(0, 0);  // waits for the X server
        const std::chrono::duration<double, std::milli> span =
            std::chrono::steady_clock::now() - begin;
        least_ms = std::min(least_ms, span.count());
    };
    double window_ms = 1e9, first_ms = 1e9, layers_ms = 1e9, frame_ms = 1e9;
    for (auto _ : state) {
        timed(window_ms, [&host] { host.Open(); });
        timed(first_ms, [&host] { host.Idle(); });
        state.PauseTiming();
        timed(layers_ms, [&host] {
            host.Report(kMeterInPort, 0.25f);  // the first report redraws everything
            host.Idle();
        });
        timed(frame_ms, [&host] {
            host.Report(kMeterInPort, 0.5f);
            host.Idle();
        });
        host.Close();
        state.ResumeTiming();
    }
    state.counters["window"] = window_ms;
    state.counters["textures"] = first_ms - layers_ms;
    state.counters["layers"] = layers_ms - frame_ms;
    state.counters["frame"] = frame_ms;
}
BENCHMARK(BM_OpenToFirstFrame)->Unit(benchmark::kMillisecond)->UseRealTime();

/// A frame of an empty tree at 1000 x 600, until the X server shows it. The argument says whether
/// the layers are redrawn.
void BM_Frame(benchmark::State& state) {
    resourceDirectory = BRINDLE_BUNDLE;
    HostWindow host;
    host.Sync();
    const auto window = PuglWindow::Create(host.GetId(), "Bench", 1000, 600);
    GLView_BaseView root(1000, 600);
    window->SetRoot(root);
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

/// A frame of the whole panel at 1000 x 600 with moving meters, until the X server shows it. The
/// argument says what else changes: nothing (0), a gain (1), a band's switch (2), all switches and
/// gains, as by a preset (3), or everything (4).
void BM_PanelFrame(benchmark::State& state) {
    test::UiHost host(Entry()(0));
    host.Open();
    for (int strip = 0; strip < kBandCount; ++strip) {
        const float values[] = {1.0f, 9.0f, 6.0f, 63.0f * static_cast<float>(1 << strip), 1.0f};
        for (uint32_t i = 0; i < kControlCount; ++i) host.Report(band_port(strip) + i, values[i]);
    }
    host.IdleTimes(3);
    int frame = 0;
    for ([[maybe_unused]] auto _ : state) {
        ++frame;
        host.Report(kMeterInPort, 0.01f * static_cast<float>(frame % 50));
        if (state.range(0) == 1) {
            host.Report(band_port(3) + kGain, 0.1f * static_cast<float>(frame % 100));
        } else if (state.range(0) == 2) {
            host.Report(band_port(3) + kEnable, static_cast<float>(frame % 2));
        } else if (state.range(0) == 3) {
            for (uint32_t port = band_port(0); port < kTrimPort; port += kControlCount) {
                host.Report(port + kEnable, static_cast<float>(frame % 2));
                host.Report(port + kGain, 0.1f * static_cast<float>(frame % 100));
            }
        } else if (state.range(0) == 4) {
            Root(host).redrawNeeded = true;
        }
        host.Idle();
        host.GetPixel(0, 0);
    }
}
BENCHMARK(BM_PanelFrame)
    ->ArgName("change")
    ->DenseRange(0, 4)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

/// A host's timer tick in an open editor in which nothing moves: processor time of all threads. The
/// argument says whether the engine runs silence through meanwhile and its rows and meters arrive.
void BM_Still(benchmark::State& state) {
    constexpr auto kTick = std::chrono::milliseconds(33);
    constexpr double kRate = 48000.0;
    test::PluginHost plugin(1, kRate);
    test::UiHost host(Entry()(0), &plugin.map());
    host.Open();
    host.Report(kTrimPort, 0.0f);
    host.IdleTimes(5);
    plugin.send_request(kEnableUiUri);
    const test::Audio silence(1, std::vector<float>(static_cast<size_t>(kRate * 0.033)));
    for ([[maybe_unused]] auto _ : state) {
        if (state.range(0) != 0) plugin.process(silence, 4096);
        std::this_thread::sleep_for(kTick);
        const std::clock_t begin = std::clock();
        if (state.range(0) != 0) {
            LV2_ATOM_SEQUENCE_FOREACH(reinterpret_cast<LV2_Atom_Sequence*>(plugin.notify.data()),
                                      event) {
                host.Deliver(kNotifyPort, host.map(LV2_ATOM__eventTransfer), &event->body,
                             lv2_atom_total_size(&event->body));
            }
            for (const uint32_t meter : {kMeterInPort, kMeterOutPort}) {
                host.Report(meter, plugin.port(meter));
            }
        }
        host.Idle();
        state.SetIterationTime(static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
    }
}
BENCHMARK(BM_Still)
    ->ArgName("silence")
    ->DenseRange(0, 1)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(150);

}  // namespace
}  // namespace brindle

BENCHMARK_MAIN();
