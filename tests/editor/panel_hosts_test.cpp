// SPDX-License-Identifier: ISC
// The gestures of a hand in hosts that report early, late, in part, not at all or other values.
#include <cmath>

#include "contract/presets.h"
#include "tests/editor/panel_fixture.h"

namespace brindle {
namespace {

struct PanelInHost : Panel, testing::WithParamInterface<test::HostKind> {
    /// Moves the pointer in steps of 10 pixels to the right and up: no write falls, unless the host
    /// has not taken a value.
    void Move(const Spot& from, int right, int up) {
        const auto writes = During([&] {
            const int steps = std::max(std::abs(right), std::abs(up)) / 10;
            for (int i = 1; i <= steps; ++i) {
                const float share = static_cast<float>(i) / static_cast<float>(steps) / 0.75f;
                MoveTo({from.x + share * static_cast<float>(right),
                        from.y + share * static_cast<float>(up)});
                Tick();
            }
        });
        std::array<float, kTrimPort + 1> last;
        last.fill(-20.0f);
        for (const auto& [port, value] : writes) {
            const bool isTaken = GetParam().takes(port, -20.0f, value) > value - 1e-4f;
            EXPECT_TRUE(value > last[port] - 1e-4f || !isTaken) << port;
            last[port] = value;
        }
    }
    void Release() {
        host.window.Release();
        Tick();
    }
    void Turn(const Spot& spot, int notches) {
        MoveTo(spot);
        for (; notches > 0; --notches) {
            host.window.Click(4);
            Tick();
        }
    }
    /// Waits until the host has reported everything, and expects the editor to show what it holds.
    void Settle() {
        const auto shows = [&] {
            for (uint32_t port = band_port(0); port <= kTrimPort; ++port) {
                if (std::abs(Root().GetParameter(port) - host.held[port]) > 1e-4f) return false;
            }
            return host.reports.empty();
        };
        EXPECT_TRUE(WaitFor(shows, [&] { Tick(); }));
    }
    /// Expects values where the host has taken them.
    void ExpectSettled(const std::array<float, 128>& before, const std::array<float, 128>& wanted) {
        Settle();
        for (uint32_t port = band_port(0); port <= kTrimPort; ++port) {
            const float value = GetParam().takes(port, before[port], wanted[port]);
            EXPECT_NEAR(host.held[port], value, 1e-4f * std::max(10.0f, value)) << port;
        }
    }
};

TEST_P(PanelInHost, GesturesEndWhereTheHandEnds) {
    Report(section_port(0) + kGain, -6.0f);
    const auto before = host.held;
    auto wanted = before;
    Tick();
    host.kind = GetParam();

    // A handle is taken again before its drag is reported.
    Spot handle = HandleAt(4);
    for (int times = 0; times < 2; ++times) {
        MoveTo(handle);
        host.window.Press();
        Move(handle, 60, 50);
        Release();
        handle = {handle.x + 80.0f, handle.y + 50.0f / 0.75f};
    }
    wanted[band_port(4) + kFrequency] = 1000.0f * std::exp(6.9077554f * 120.0f * 0.003f * 0.36f);
    wanted[band_port(4) + kGain] = 36.0f * 100.0f * 0.004f;

    // Searches and a drag in quick succession.
    handle = HandleAt(2);
    for (const bool drags : {false, false, true, false}) {
        MoveTo(drags ? handle : HandleAt(2, 42.0f));
        host.window.Press();
        Tick();
        if (drags) Move(handle, 0, 30);
        Release();
    }
    wanted[band_port(2) + kGain] = 36.0f * 30.0f * 0.004f;

    Settle();  // the handle is shown again
    Turn(HandleAt(7), 10);
    wanted[band_port(7) + kQ] *= std::pow(1000.0f, 0.5f);

    const auto knob = [](int strip) { return InStrip(strip, 40.0f); };
    PressAt(kTrim);
    Move(kTrim, 50, 0);
    Release();
    wanted[kTrimPort] = 40.0f * 0.003f * 50.0f;

    PressAt(knob(1));
    Move(knob(1), 0, 70);
    host.window.Key(XK_Shift_L, true);
    Move({knob(1).x, knob(1).y + 70.0f / 0.75f}, 0, 70);
    host.window.Key(XK_Shift_L, false);
    Release();
    wanted[band_port(1) + kGain] = 36.0f * 0.003f * 77.0f;

    Turn(knob(3), 20);
    wanted[band_port(3) + kGain] = 36.0f * 0.02f * 20.0f;

    PressAt(knob(8));
    host.window.Release();
    host.window.Press(1, 10);  // a double click
    Tick();
    Move(knob(8), 0, 50);
    Release();
    wanted[section_port(0) + kGain] = 36.0f * 0.003f * 50.0f;

    for (int times = 0; times < 3; ++times) Click(KeyOf(6));
    wanted[band_port(6) + kEnable] = 0.0f;
    Click(ShapeOf(7));
    Click({ShapeOf(7).x, ShapeOf(7).y + 36.0f});
    wanted[band_port(7) + kType] = 3.0f;
    ExpectSettled(before, wanted);

    const auto held = host.held;
    Click(PresetAt(4));
    auto preset = host.held;
    std::ranges::copy(kPresets[4].values, preset.begin() + kFirstPresetPort);
    ExpectSettled(held, preset);

    // A value of the host's own is shown, whatever was written before.
    Report(band_port(2) + kGain, 1.5f);
    EXPECT_EQ(Root().GetParameter(band_port(2) + kGain), 1.5f);
}

INSTANTIATE_TEST_SUITE_P(Kinds, PanelInHost, testing::ValuesIn(test::kHostKinds),
                         [](const auto& kind) {
                             std::string name = kind.param.name;
                             std::ranges::replace(name, ' ', '_');
                             return name;
                         });

}  // namespace
}  // namespace brindle
