// SPDX-License-Identifier: ISC
/// The whole panel in a host, with real pointer events at the controls' visible positions.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include "contract/ports.h"
#include "editor/GLView_StripEqView.h"
#include "editor/editor_instance.h"
#include "graph/GLView_ParametricEQGrabber.h"
#include "tests/support/ui_host.h"

LV2_SYMBOL_EXPORT const LV2UI_Descriptor* lv2ui_descriptor(uint32_t index);

namespace brindle {

inline constexpr double kLn1000 = 6.9077554;

/// Whether two pictures differ by no more than the rounding of software GL, which is a step of a
/// colour and depends on where the drawn area begins.
inline bool AreAlike(const std::vector<uint32_t>& a, const std::vector<uint32_t>& b) {
    return std::ranges::equal(a, b, [](uint32_t one, uint32_t other) {
        const auto is_near = [&](int shift) {
            return std::abs(static_cast<int>(one >> shift & 0xff) -
                            static_cast<int>(other >> shift & 0xff)) <= 1;
        };
        return is_near(0) && is_near(8) && is_near(16);
    });
}

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
inline constexpr Spot kFlatAll = {2.0f * 800.0f * 5.0f / 6.0f - 23.0f, 778.0f};
inline constexpr Spot kOutside = {-26.0f, 400.0f};

/// A host that reports the editor's writes at the next idle call.
struct Panel : testing::Test {
    using PortValues = std::vector<std::pair<uint32_t, float>>;

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

    void Report(uint32_t port, float value) { host.Report(port, value); }
    /// Handles all waiting pointer events, then answers the resulting writes.
    void Tick() { host.IdleTimes(1); }
    int PixelX(const Spot& spot) const {
        return left + static_cast<int>(std::lround(spot.x * pixelsPerPoint));
    }
    int PixelY(const Spot& spot) const {
        return top +
               static_cast<int>(std::lround(800.0f * pixelsPerPoint - spot.y * pixelsPerPoint));
    }
    void MoveTo(const Spot& spot) { host.window.MovePointer(PixelX(spot), PixelY(spot)); }
    /// The help texts, after the pointer has moved there.
    std::string HelpAt(const Spot& spot) {
        MoveTo(spot);
        return Help();
    }
    std::string Help() {
        Tick();
        return std::string(Root().infoTitle) + "|" + Root().infoText;
    }
    std::vector<uint32_t> Picture() {
        host.IdleTimes(2);
        return host.window.GetPixels(host.child, 1000, 600);
    }
    /// The control writes during a gesture.
    PortValues During(const std::function<void()>& gesture) {
        host.touches.clear();
        size_t next = host.writes.size();
        gesture();
        if (host.handle != nullptr) Tick();
        PortValues values;
        for (; next < host.writes.size(); ++next) {
            const auto& write = host.writes[next];
            if (write.protocol == 0) values.emplace_back(write.port, write.AsFloat());
        }
        return values;
    }
    PortValues Click(const Spot& spot, unsigned button = 1) {
        return During([&] {
            MoveTo(spot);
            host.window.Click(button);
        });
    }
    /// Two presses at these times in ms.
    PortValues PressTwice(const Spot& spot, uint32_t first_ms, uint32_t second_ms) {
        return During([&] {
            MoveTo(spot);
            for (const uint32_t time_ms : {first_ms, second_ms}) {
                host.window.SendPress(host.child, PixelX(spot), PixelY(spot), time_ms);
            }
        });
    }
    /// Presses in quick succession would be a double click; one at another time is between them.
    void PressAt(const Spot& spot) {
        constexpr uint32_t kLongAgo_ms = 0x80000000u;
        host.window.SendPress(host.child, 1, 1, kLongAgo_ms);
        MoveTo(spot);
        host.window.Press();
    }
    /// Drags by whole window pixels.
    PortValues Drag(const Spot& from, int right, int up) {
        return During([&] {
            PressAt(from);
            host.window.MovePointer(PixelX(from) + right, PixelY(from) - up);
            host.window.Release();
        });
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

    test::PluginHost plugin{1, 48000.0};
    test::UiHost host{lv2ui_descriptor(0), &plugin.map()};
    // The panel's place in the window.
    int left = 0;
    int top = 0;
    float pixelsPerPoint = 0.75f;
};

}  // namespace brindle
