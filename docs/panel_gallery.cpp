// SPDX-License-Identifier: ISC
/// Pictures of the whole editor over running audio, one for each state that is worth a look:
/// panel_gallery DIRECTORY, on an X server that has room for 2000 x 1200 pixels.
#include <dlfcn.h>
#include <lv2/atom/util.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <random>
#include <string>

#include "contract/ports.h"
#include "contract/presets.h"
#include "docs/png.h"
#include "tests/support/gl_context.h"
#include "tests/support/plugin_host.h"
#include "tests/support/ui_host.h"

namespace brindle {
namespace {

constexpr int kNoPreset = -1;
constexpr const char* kBool = "http://lv2plug.in/ns/ext/atom#Bool";
constexpr const char* kInt = "http://lv2plug.in/ns/ext/atom#Int";
constexpr const char* kFlat = "http://ardour.org/lv2/theme/#styleFlat";
constexpr const char* kBoxy = "http://ardour.org/lv2/theme/#styleBoxy";

enum class Pointer { kAway, kClicks, kHolds };

struct Exhibit {
    const char* file;
    const char* style = nullptr;
    int width = 1000;  ///< pixels; five thirds of the height
    int preset = kNoPreset;
    Pointer pointer = Pointer::kAway;
    int x = 0;  ///< where the pointer is, in pixels of a window 1000 wide
    int y = 0;
    bool hostColors = false;
};

constexpr Exhibit kExhibits[] = {
    {.file = "start.png"},
    {.file = "dialog.png", .preset = 0},
    {.file = "hot-pocket.png", .preset = 1},
    {.file = "buzz-kill.png", .preset = 2},
    {.file = "push-pull.png", .preset = 3},
    {.file = "kick.png", .preset = 4},
    {.file = "snare.png", .preset = 5},
    {.file = "menu.png", .preset = 4, .pointer = Pointer::kClicks, .x = 734, .y = 557},
    {.file = "search.png", .preset = 5, .pointer = Pointer::kHolds, .x = 343, .y = 358},
    {.file = "flat.png", .style = kFlat, .preset = 5},
    {.file = "boxy.png", .style = kBoxy, .preset = 3},
    {.file = "kick-1500.png", .width = 1500, .preset = 4},
    {.file = "menu-1500.png",
     .width = 1500,
     .preset = 0,
     .pointer = Pointer::kClicks,
     .x = 734,
     .y = 557},
    {.file = "start-2000.png", .width = 2000},
    {.file = "snare-2000.png", .width = 2000, .preset = 5},
    // The colours that a host has given stay with the process.
    {.file = "host-colours.png", .preset = 0, .hostColors = true},
};

const LV2UI_Descriptor* Entry() {
    void* library = dlopen(BRINDLE_BUNDLE "brindle.so", RTLD_NOW);
    return reinterpret_cast<LV2UI_DescriptorFunction>(dlsym(library, "lv2ui_descriptor"))(0);
}

/// Engine and editor, and a host that carries what they have to say.
class Session {
  public:
    explicit Session(const Exhibit& exhibit) : shown_(exhibit) {
        if (exhibit.style != nullptr) editor_.AddOption(exhibit.style, kBool, int32_t{1});
        if (exhibit.hostColors) {
            editor_.AddOption(LV2_UI__backgroundColor, kInt, uint32_t{0x243044ff});
            editor_.AddOption("http://lv2plug.in/ns/extensions/ui#contrastingColor", kInt,
                              uint32_t{0x30c0e0ff});
        }
        const int height = exhibit.width * 6 / 10;
        editor_.Open();
        editor_.window.Resize(exhibit.width, height);
        editor_.window.ResizeWindow(editor_.child, exhibit.width, height);
        editor_.IdleTimes(3);
        for (int strip = 0; strip < kStripCount; ++strip) {
            ReportAll(strip_port(strip), strip_row(strip).defaults);
        }
        Report(kTrimPort, 0.0f);
        if (exhibit.preset != kNoPreset) {
            uint32_t port = kFirstPresetPort;
            for (const float value : kPresets[static_cast<size_t>(exhibit.preset)].values) {
                Report(port++, value);
            }
        }
    }

    void Show() {
        UsePointer();
        for (int block = 0; block < 120; ++block) RunBlock();
        editor_.Report(kMeterInPort, plugin_.port(kMeterInPort));
        editor_.Report(kMeterOutPort, plugin_.port(kMeterOutPort));
        editor_.IdleTimes(40);  // until menus have darkened what is behind them
    }
    bool Save(const std::string& path) {
        Picture picture{shown_.width, shown_.width * 6 / 10, {}};
        for (const uint32_t word :
             editor_.window.GetPixels(editor_.child, picture.width, picture.height)) {
            picture.pixels.push_back({static_cast<uint8_t>(word >> 16),
                                      static_cast<uint8_t>(word >> 8), static_cast<uint8_t>(word),
                                      255});
        }
        editor_.window.Release();
        return WritePng(picture, path);
    }

  private:
    void ReportAll(uint32_t firstPort, const std::array<float, kControlCount>& values) {
        for (uint32_t i = 0; i < kControlCount; ++i) Report(firstPort + i, values[i]);
    }
    void Report(uint32_t port, float value) {
        plugin_.port(port) = value;
        editor_.Report(port, value);
    }
    void UsePointer() {
        editor_.IdleTimes(2);
        if (shown_.pointer == Pointer::kAway) return;
        editor_.window.MovePointer(shown_.x * shown_.width / 1000, shown_.y * shown_.width / 1000);
        editor_.window.Press();
        if (shown_.pointer == Pointer::kClicks) editor_.window.Release();
        editor_.IdleTimes(2);
    }
    /// The editor's writes reach the engine, a block of noise runs, its rows reach the editor.
    void RunBlock() {
        auto* requests = reinterpret_cast<LV2_Atom_Sequence*>(plugin_.control.data());
        lv2_atom_sequence_clear(requests);
        requests->atom.type = plugin_.map()(LV2_ATOM__Sequence);
        for (; sent_ < editor_.writes.size(); ++sent_) {
            const auto& write = editor_.writes[sent_];
            if (write.port != kControlPort) {
                Report(write.port, write.AsFloat());
                continue;
            }
            alignas(8) std::array<uint8_t, 64> event{};
            std::copy_n(write.bytes.begin(), std::min<size_t>(write.bytes.size(), 56),
                        event.begin() + 8);
            lv2_atom_sequence_append_event(requests, static_cast<uint32_t>(plugin_.control.size()),
                                           reinterpret_cast<const LV2_Atom_Event*>(event.data()));
        }
        plugin_.process(Noise(), 2048);
        const auto* rows = reinterpret_cast<const LV2_Atom_Sequence*>(plugin_.notify.data());
        LV2_ATOM_SEQUENCE_FOREACH(rows, row) {
            editor_.Deliver(kNotifyPort, plugin_.map()(LV2_ATOM__eventTransfer), &row->body,
                            lv2_atom_total_size(&row->body));
        }
    }
    /// White noise with the lows raised.
    test::Audio Noise() {
        test::Audio noise(2, std::vector<float>(2048));
        for (size_t i = 0; i < noise[0].size(); ++i) {
            low_ = 0.98f * low_ + 0.1f * spread_(random_);
            noise[0][i] = noise[1][i] = low_ + 0.3f * spread_(random_);
        }
        return noise;
    }

    const Exhibit& shown_;
    test::PluginHost plugin_{2, 48000.0};
    test::UiHost editor_{Entry(), &plugin_.map()};
    size_t sent_ = 0;
    std::minstd_rand random_{1};
    std::uniform_real_distribution<float> spread_{-0.5f, 0.5f};
    float low_ = 0.0f;
};

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: panel_gallery DIRECTORY\n", stderr);
        return 2;
    }
    for (const auto& exhibit : brindle::kExhibits) {
        brindle::Session session(exhibit);
        session.Show();
        if (!session.Save(std::string(argv[1]) + "/" + exhibit.file)) {
            std::fprintf(stderr, "cannot write %s\n", exhibit.file);
            return 1;
        }
    }
    return 0;
}
