// SPDX-License-Identifier: ISC
/// An editor, opened as a host opens it: with parent window, features and options, and records of
/// its calls to the host.
#pragma once

#include <dlfcn.h>
#include <lv2/atom/atom.h>
#include <lv2/options/options.h>
#include <lv2/ui/ui.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "contract/brindle.h"
#include "contract/ports.h"
#include "tests/support/host_window.h"
#include "tests/support/plugin_host.h"

namespace brindle::test {

/// The built bundle's editor descriptors. The library is loaded on first use.
inline const LV2UI_Descriptor* BuiltEditor(uint32_t index = 0) {
    static const auto entry = [] {
        void* library = dlopen(BRINDLE_BUNDLE "brindle.so", RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) throw std::runtime_error(dlerror());
        return reinterpret_cast<LV2UI_DescriptorFunction>(dlsym(library, "lv2ui_descriptor"));
    }();
    return entry(index);
}

/// One call of the write function.
struct UiWrite {
    uint32_t port = 0;
    uint32_t protocol = 0;
    std::vector<uint8_t> bytes;

    float AsFloat() const {
        float value = 0.0f;
        if (bytes.size() == sizeof value) std::memcpy(&value, bytes.data(), sizeof value);
        return value;
    }
};

/// How a host takes and reports the editor's control writes.
struct HostKind {
    enum Reports { Never, InTheWrite, Each, Newest, Reversed };

    const char* name = "never reports";
    Reports reports = Never;
    int64_t after_ms = 0;  ///< from the write to its report
    int64_t every_ms = 1;  ///< a timer's period: reports wait for its next tick
    float (*takes)(uint32_t port, float held, float wanted) = Accept;  ///< the port's next value

    static float Accept(uint32_t, float, float wanted) { return wanted; }
    static float Refuse(uint32_t, float held, float) { return held; }
    /// Holds gains at 12 dB.
    static float Hold(uint32_t port, float, float wanted) {
        return port % kControlCount == band_port(0) + kGain ? std::min(wanted, 12.0f) : wanted;
    }
    /// Keeps gains as factors.
    static float Round(uint32_t port, float, float wanted) {
        const bool isGain = port % kControlCount == band_port(0) + kGain;
        return isGain ? 20.0f * std::log10(std::pow(10.0f, wanted / 20.0f)) : wanted;
    }
};
inline constexpr HostKind kAtNextIdle = {"reports at the next idle call", HostKind::Each};
inline const HostKind kHostKinds[] = {
    {},
    kAtNextIdle,
    {"reports inside the write", HostKind::InTheWrite},
    {"reports after 200 ms", HostKind::Each, 200},
    {"rounds and reports late", HostKind::Each, 30, 1, HostKind::Round},
    {"reports the newest late", HostKind::Newest, 150, 50},
    {"reports in another order", HostKind::Reversed, 20, 60},
    {"refuses late", HostKind::Each, 50, 1, HostKind::Refuse},
    {"holds at once", HostKind::InTheWrite, 0, 1, HostKind::Hold},
    {"holds late", HostKind::Each, 50, 1, HostKind::Hold},
};

class UiHost {
  public:
    /// Does not open the editor. `map` may be shared with the plugin's host.
    explicit UiHost(const LV2UI_Descriptor* newDescriptor, UridMap* sharedMap = nullptr)
        : map(sharedMap != nullptr ? *sharedMap : ownMap), descriptor(newDescriptor) {
        window.Sync();
    }
    UiHost(const UiHost&) = delete;
    UiHost& operator=(const UiHost&) = delete;
    ~UiHost() { Close(); }

    // The host's features; change them before opening.
    bool hasMap = true;
    bool hasParent = true;
    bool hasTouch = true;
    bool hasTouchData = true;  ///< without it, the touch feature has null data
    bool hasResize = true;
    bool failsWrites = false;  ///< its write function throws
    uintptr_t parent = 0;      ///< 0: the host's own window
    LV2UI_Touch touch = {
        this, [](void* self, uint32_t port, bool on) { Of(self).touches.emplace_back(port, on); }};
    LV2UI_Resize resize = {this, [](void* self, int width, int height) {
                               Of(self).resizes.emplace_back(width, height);
                               return 0;
                           }};

    template <typename Value>
    void AddOption(const char* key, const char* type, Value value, bool ofInstance = true) {
        static_assert(sizeof value <= 8);
        LV2_Options_Option option{};
        option.context = ofInstance ? LV2_OPTIONS_INSTANCE : LV2_OPTIONS_PORT;
        option.key = map(key);
        option.size = sizeof value;
        option.type = map(type);
        std::memcpy(AddValue(), &value, sizeof value);
        options.push_back(option);
    }

    bool Open(const char* bundle = BRINDLE_BUNDLE) {
        for (size_t i = 0; i < options.size(); ++i) options[i].value = values[i].data();
        options.push_back({});
        const LV2_Feature parentFeature = {
            LV2_UI__parent, reinterpret_cast<void*>(parent != 0 ? parent : window.GetId())};
        const LV2_Feature touchFeature = {LV2_UI__touch, hasTouchData ? &touch : nullptr};
        const LV2_Feature resizeFeature = {LV2_UI__resize, &resize};
        const LV2_Feature optionsFeature = {LV2_OPTIONS__options, options.data()};
        const LV2_Feature idle = {LV2_UI__idleInterface, nullptr};
        const LV2_Feature nameless = {nullptr, nullptr};
        std::vector<const LV2_Feature*> features = {&idle, &nameless, &optionsFeature};
        const auto offer = [&](bool has, const LV2_Feature* feature) {
            if (has) features.push_back(feature);
        };
        offer(hasResize, &resizeFeature);
        offer(hasParent, &parentFeature);
        offer(hasMap, map.feature());
        offer(hasTouch, &touchFeature);
        features.push_back(nullptr);
        LV2UI_Widget widget = nullptr;
        handle = descriptor->instantiate(descriptor, kStereoUri, bundle, Write, this, &widget,
                                         features.data());
        child = reinterpret_cast<uintptr_t>(widget);
        options.pop_back();
        return handle != nullptr;
    }
    void Close() {
        if (handle != nullptr) {
            descriptor->cleanup(handle);
            handle = nullptr;
        }
        reports.clear();
    }
    /// Idles, then reports what is due.
    int Idle() {
        const auto* idle = static_cast<const LV2UI_Idle_Interface*>(
            descriptor->extension_data(LV2_UI__idleInterface));
        const int ended = idle->idle(handle);
        const int64_t now = Now();
        const auto later = std::stable_partition(reports.begin(), reports.end(),
                                                 [&](const auto& each) { return each.due <= now; });
        std::vector<Waiting> due(reports.begin(), later);
        if (kind.reports == HostKind::Reversed) std::ranges::reverse(due);
        reports.erase(reports.begin(), later);
        for (const auto& report : due) Send(report.port, report.value);
        return ended;
    }
    void IdleTimes(int times) {
        for (int i = 0; i < times; ++i) {
            Idle();
            window.Sync();
        }
    }
    /// Reports a value of the host's own.
    void Report(uint32_t port, float value) {
        if (port < held.size()) held[port] = value;
        Send(port, value);
    }
    void Deliver(uint32_t port, uint32_t format, const void* buffer, uint32_t size) {
        descriptor->port_event(handle, port, size, format, buffer);
    }
    uint32_t GetPixel(int x, int y) { return window.GetPixel(child, x, y); }

  private:
    UridMap ownMap;

  public:
    HostWindow window;
    UridMap& map;
    LV2UI_Handle handle = nullptr;
    uintptr_t child = 0;  ///< the editor's X window

    // The editor's calls, in order.
    std::vector<UiWrite> writes;
    std::vector<std::pair<uint32_t, bool>> touches;
    std::vector<std::pair<int, int>> resizes;

    HostKind kind;
    std::array<float, 128> held{};  ///< the ports' values
    struct Waiting {
        uint32_t port;
        float value;
        int64_t due;
    };
    std::vector<Waiting> reports;  ///< to come

  private:
    static int64_t Now() {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
    }
    void Send(uint32_t port, float value) {
        descriptor->port_event(handle, port, sizeof value, 0, &value);
    }
    void Take(uint32_t port, float value) {
        value = held[port] = kind.takes(port, held[port], value);
        if (kind.reports == HostKind::InTheWrite) Send(port, value);
        if (kind.reports == HostKind::Never || kind.reports == HostKind::InTheWrite) return;
        const int64_t due =
            (Now() + kind.after_ms + kind.every_ms - 1) / kind.every_ms * kind.every_ms;
        if (kind.reports == HostKind::Newest) {
            std::erase_if(reports,
                          [&](const auto& each) { return each.port == port && each.due == due; });
        }
        reports.push_back({port, value, due});
    }
    static UiHost& Of(void* self) { return *static_cast<UiHost*>(self); }
    static void Write(LV2UI_Controller self, uint32_t port, uint32_t size, uint32_t protocol,
                      const void* buffer) {
        if (Of(self).failsWrites) throw std::runtime_error("a write fails");
        const auto* bytes = static_cast<const uint8_t*>(buffer);
        Of(self).writes.push_back({port, protocol, {bytes, bytes + size}});
        const float value = Of(self).writes.back().AsFloat();
        if (protocol == 0 && port < Of(self).held.size()) Of(self).Take(port, value);
    }
    uint8_t* AddValue() { return values.emplace_back().data(); }

    const LV2UI_Descriptor* descriptor;
    std::vector<LV2_Options_Option> options;
    std::vector<std::array<uint8_t, 8>> values;
};

}  // namespace brindle::test
