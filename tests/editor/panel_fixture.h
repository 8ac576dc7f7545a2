// SPDX-License-Identifier: ISC
/// The whole panel in a host, with real pointer events at the controls' visible positions, and the
/// engine that receives its writes.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "contract/ports.h"
#include "editor/GLView_StripEqView.h"
#include "editor/editor_instance.h"
#include "graph/GLView_ParametricEQGrabber.h"
#include "tests/support/ui_host.h"

LV2_SYMBOL_EXPORT const LV2UI_Descriptor* lv2ui_descriptor(uint32_t index);

namespace brindle {

inline constexpr double kRate = 48000.0;
inline constexpr double kLn1000 = 6.9077554;
/// A position on the panel in interface points from its lower left corner.
struct Spot {
    float x;
    float y;
};

/// A position in a strip: strips are 81 wide, 87 apart, with a gap of 15 after each group.
inline Spot InStrip(int strip, float above_middle) {
    const float group = strip < 4 ? 0.0f : strip < 8 ? 1.0f : 2.0f;
    return {125.0f + 87.0f * static_cast<float>(strip) + 15.0f * group + 40.5f,
            134.0f + above_middle};
}
inline Spot KeyOf(int strip) {
    return InStrip(strip, 80.0f);
}
inline Spot ShapeOf(int strip) {
    return InStrip(strip, -77.0f);
}
inline Spot PresetAt(int number) {
    return {159.0f + 111.0f * static_cast<float>(number), 778.0f};
}
inline constexpr Spot kTrim = {1124.0f, 84.0f};

/// A host that passes the editor's writes on to the engine and reports them at once.
struct Panel : testing::Test {
    void SetUp() override {
        host.kind = test::kAtNextIdle;
        ASSERT_TRUE(host.Open());
        host.IdleTimes(2);
        for (int strip = 0; strip < kStripCount; ++strip) {
            for (uint32_t i = 0; i < kControlCount; ++i)
                Report(strip_port(strip) + i, strip_row(strip).defaults[i]);
        }
        Report(kTrimPort, 0.0f);
        Tick();
    }

    void Report(uint32_t port, float value) {
        plugin.port(port) = value;
        host.Report(port, value);
    }
    /// Handles all waiting pointer events, then answers the resulting writes.
    void Tick() {
        host.IdleTimes(1);
        for (uint32_t port = band_port(0); port <= kTrimPort; ++port) {
            plugin.port(port) = host.held[port];
        }
    }
    void MoveTo(const Spot& spot) {
        host.window.MovePointer(static_cast<int>(std::lround(spot.x * 0.75f)),
                                static_cast<int>(std::lround(600.0f - spot.y * 0.75f)));
    }
    /// The writes during a gesture.
    std::vector<test::UiWrite> During(const std::function<void()>& gesture) {
        host.touches.clear();
        const size_t before = host.writes.size();
        gesture();
        Tick();
        return {host.writes.begin() + static_cast<std::ptrdiff_t>(before), host.writes.end()};
    }
    std::vector<test::UiWrite> Click(const Spot& spot) {
        return During([&] {
            MoveTo(spot);
            host.window.Click();
        });
    }
    /// Waits before pressing: presses in quick succession would be a double click.
    void PressAt(const Spot& spot) {
        std::this_thread::sleep_for(std::chrono::milliseconds(210));
        MoveTo(spot);
        host.window.Press();
    }
    /// Drags by whole window pixels.
    std::vector<test::UiWrite> Drag(const Spot& from, int right, int up) {
        return During([&] {
            PressAt(from);
            MoveTo({from.x + static_cast<float>(right) / 0.75f,
                    from.y + static_cast<float>(up) / 0.75f});
            host.window.Release();
        });
    }
    /// Ports and values of control writes.
    static std::vector<std::pair<uint32_t, float>> Values(
        const std::vector<test::UiWrite>& writes) {
        std::vector<std::pair<uint32_t, float>> values;
        for (const auto& write : writes) {
            if (write.protocol == 0) values.emplace_back(write.port, write.AsFloat());
        }
        return values;
    }

    std::vector<double> Response() {
        Tick();  // the curve is computed for a frame
        plugin.settle();
        return plugin.impulse_response(1 << 14);
    }
    GLView_StripEqView& Root() { return *static_cast<EditorInstance*>(host.handle)->rootView; }
    GLView_ParametricEQ& Graph() {
        for (GLView* child = Root().firstChild; child != nullptr; child = child->nextSibling) {
            if (auto* graph = dynamic_cast<GLView_ParametricEQ*>(child)) return *graph;
        }
        throw std::logic_error("no graph");
    }
    /// The position of a handle, or of its marker, in pixels below the graph.
    Spot HandleAt(int number, float marker = 0.0f) {
        Graph().UpdateCurves();
        GLView* child = Graph().firstChild;
        for (; number > 0; --number) child = child->nextSibling;
        GLPoint at = dynamic_cast<GLView_ParametricEQGrabber&>(*child).Place();
        if (marker > 0.0f) at.y = -Graph().hh - marker * Root().GetPixelSize();
        const float s = Root().GetInterfaceScale();
        return {(Graph().x + at.x - Root().GetViewLeft()) / s,
                (Graph().y + at.y - Root().GetViewBottom()) / s};
    }
    /// The level of the drawn curve.
    double CurveDb(double hz) {
        const auto heights = Graph().Heights();
        const auto i = static_cast<size_t>(800.0 * std::log(hz / 20.0) / kLn1000);
        return static_cast<double>(heights[i] / Graph().hh) * 18.0;
    }
    test::PluginHost plugin{1, kRate};
    test::UiHost host{lv2ui_descriptor(0), &plugin.map()};
};

}  // namespace brindle
