// SPDX-License-Identifier: ISC
// Engine and editor with nothing between them but a host that carries their messages.
#include <gtest/gtest.h>
#include <lv2/atom/util.h>

#include <cmath>
#include <numbers>

#include "editor/GLView_StripEqView.h"
#include "editor/editor_instance.h"
#include "tests/support/ui_host.h"

LV2_SYMBOL_EXPORT const LV2UI_Descriptor* lv2ui_descriptor(uint32_t index);

namespace brindle {
namespace {

using test::Audio;
using test::PluginHost;
using test::UiHost;

/// Carries what the editor has written to the engine, runs a block, and carries back what the
/// engine has to say.
class Session {
  public:
    void RunBlock() {
        SendRequests();
        constexpr size_t kFrames = 1024;
        Audio in(1, std::vector<float>(kFrames));
        for (float& sample : in[0]) {
            sample = 0.5f * static_cast<float>(std::sin(phase));
            phase += 2.0 * std::numbers::pi * 1000.0 / plugin.rate();
        }
        plugin.process(in, kFrames);
        if (editor.handle != nullptr) {
            DeliverRows();
        }
    }

    PluginHost plugin{1, 48000.0};
    UiHost editor{lv2ui_descriptor(0), &plugin.map()};
    int rows = 0;

  private:
    void SendRequests() {
        auto* sequence = reinterpret_cast<LV2_Atom_Sequence*>(plugin.control.data());
        lv2_atom_sequence_clear(sequence);
        sequence->atom.type = plugin.map()(LV2_ATOM__Sequence);
        for (; sent < editor.writes.size(); ++sent) {
            const auto& write = editor.writes[sent];
            if (write.port == kControlPort) {
                alignas(8) uint8_t event[64] = {};
                ASSERT_LE(write.bytes.size(), sizeof event - 8);
                std::copy(write.bytes.begin(), write.bytes.end(), event + 8);
                lv2_atom_sequence_append_event(sequence,
                                               static_cast<uint32_t>(plugin.control.size()),
                                               reinterpret_cast<const LV2_Atom_Event*>(event));
            }
        }
    }
    void DeliverRows() {
        const auto* sequence = reinterpret_cast<const LV2_Atom_Sequence*>(plugin.notify.data());
        LV2_ATOM_SEQUENCE_FOREACH(sequence, event) {
            ++rows;
            editor.Deliver(kNotifyPort, plugin.map()(LV2_ATOM__eventTransfer), &event->body,
                           lv2_atom_total_size(&event->body));
        }
    }

    double phase = 0.0;
    size_t sent = 0;
};

TEST(AnalyserLink, RunsWhileTheEditorIsOpen) {
    Session session;
    session.RunBlock();
    session.RunBlock();
    EXPECT_EQ(session.rows, 0);

    ASSERT_TRUE(session.editor.Open());
    const auto& panel = *static_cast<EditorInstance*>(session.editor.handle)->rootView;
    for (int block = 0; block < 64; ++block) {
        session.RunBlock();
        session.editor.Idle();
    }
    EXPECT_GT(session.rows, 30);
    const SpectrumHistory& spectrum = panel.GetSpectrum();
    const auto& newest = spectrum.rows[static_cast<size_t>(spectrum.newest)];
    // 20 Hz x 2^(i/24) comes nearest to 1 kHz at i = 135; the loudest bin of a row reads -10 dB.
    EXPECT_EQ(std::max_element(newest.begin(), newest.end()) - newest.begin(), 135);
    EXPECT_NEAR(newest[135], -10.0f, 0.01f);
    // Rows that were there before are kept, those that are still to come are silent.
    EXPECT_GT(spectrum.rows[static_cast<size_t>(spectrum.newest - 1)][135], -20.0f);
    EXPECT_EQ(spectrum.rows[static_cast<size_t>(spectrum.newest + 1)][135], -120.0f);

    session.editor.Close();
    session.RunBlock();
    session.rows = 0;
    session.RunBlock();
    session.RunBlock();
    EXPECT_EQ(session.rows, 0);
}

TEST(Panel, DrawsAnewForNewsOnly) {
    UiHost host(lv2ui_descriptor(0));
    ASSERT_TRUE(host.Open());
    auto& panel = *static_cast<EditorInstance*>(host.handle)->rootView;
    host.IdleTimes(3);
    const auto draws_anew = [&](uint32_t port, float value) {
        host.IdleTimes(2);
        EXPECT_FALSE(panel.IsStale());
        host.Report(port, value);
        EXPECT_EQ(panel.GetParameter(port), port < 128 ? value : 0.0f);
        return panel.IsStale();
    };
    EXPECT_TRUE(draws_anew(kTrimPort, 0.0f));  // told for the first time
    EXPECT_FALSE(draws_anew(kTrimPort, 0.0f));
    EXPECT_TRUE(draws_anew(kTrimPort, -1.0f));
    EXPECT_TRUE(draws_anew(200, 1.0f));
    EXPECT_FALSE(draws_anew(kMeterInPort, 0.5f));
    EXPECT_FALSE(draws_anew(kMeterOutPort, 0.25f));
}

TEST(Panel, TakesItsWritesAsReportedWhereTheHostIsSilent) {
    UiHost host(lv2ui_descriptor(0));
    ASSERT_TRUE(host.Open());
    auto& panel = *static_cast<EditorInstance*>(host.handle)->rootView;
    panel.SendParameter(kTrimPort, 6.0f);
    panel.SendParameter(4, -12.0f);
    EXPECT_EQ(host.writes.back().port, 4u);
    EXPECT_EQ(host.writes.back().protocol, 0u);
    EXPECT_EQ(host.writes.back().AsFloat(), -12.0f);
    host.Report(4, -11.0f);
    EXPECT_EQ(panel.GetParameter(kTrimPort), 0.0f);
    EXPECT_TRUE(
        WaitFor([&] { return panel.GetParameter(kTrimPort) == 6.0f; }, [&] { host.Idle(); }));
    EXPECT_EQ(panel.GetParameter(4), -11.0f);
}

}  // namespace
}  // namespace brindle
