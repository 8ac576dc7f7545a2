// SPDX-License-Identifier: ISC
// The plugin as the program runs it: engines on their own threads, editors on another one, and only
// queues between them. The thread sanitizer watches if it is built in, as where many files are
// rendered side by side.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

#include "contract/brindle.h"
#include "host/editor.h"
#include "host/live_plugin.h"
#include "host/top_window.h"
#include "tests/support/hard_treatment.h"
#include "tests/support/host_window.h"

namespace brindle::test {
namespace {

/// A plugin that plays on its own audio thread, with an editor that may be open.
struct Session {
    void Open() {
        window = std::make_unique<TopWindow>("Session", PixelSize{1000, 600}, TopWindow::kBare);
        editor = std::make_unique<Editor>(bundle, live, *window, engine.channels(), engine.rate());
        window->show();
    }
    void Close() {
        editor.reset();
        window.reset();
    }
    std::vector<float> Controls() const {
        std::vector<float> values;
        for (uint32_t port = 2; port <= kTrimPort; ++port) values.push_back(live.get(port));
        return values;
    }
    int TakeRows() {
        int rows = 0;
        live.read_messages([&](uint32_t, const LV2_Atom&) { ++rows; });
        return rows;
    }
    /// The number of rows that the engine sends in some blocks. The engine reads the editor's
    /// request in its next block; rows from before that are not counted.
    int RowsFromNowOn() {
        int rows = 0;
        for (int times = 0; times < 2; ++times) {
            const int played = blocks;
            EXPECT_TRUE(WaitFor([&] { return blocks > played + 4; }, [] {}));
            rows = TakeRows();
        }
        return rows;
    }

    Bundle bundle{BRINDLE_BUNDLE};
    Plugin engine{bundle, 2, 48000.0, LivePlugin::kBlock};
    PinkNoise noise;
    LivePlugin live{bundle, engine, noise};
    std::unique_ptr<TopWindow> window;
    std::unique_ptr<Editor> editor;
    std::atomic<int> blocks = 0;
    std::jthread audioThread{[this](const std::stop_token& over) {
        std::array<float, size_t{2} * LivePlugin::kBlock> out{};
        for (; !over.stop_requested(); ++blocks) {
            live.play(out.data(), LivePlugin::kBlock);
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }};
};

// The pointer scrolls and drags whatever is under it, in the editor opened last.
TEST(Threads, EnginesAndEditorsMeetInQueuesOnly) {
    live(1, [](Random& random) {
        HostWindow pointer(1, 1);
        const auto wander = [&] {
            pointer.MovePointer(random.between(-60, 939), random.between(-40, 559));
        };
        std::array<Session, 2> sessions;
        const auto before = sessions[0].Controls();
        for (int turn = 0; turn < 100; ++turn) {
            Session& session = random.pick(sessions);
            if (!session.editor) {
                session.Open();
            } else if (random.one_in(30)) {
                session.Close();
                continue;
            }
            wander();
            const auto button = random.one_in(2) ? 1u : static_cast<unsigned>(random.between(4, 5));
            pointer.Press(button);
            wander();
            pointer.Release(button);
            for (Session& each : sessions) {
                if (each.editor) {
                    each.editor->tick();
                } else {
                    each.TakeRows();
                }
            }
        }
        // The window on top hides the other one from the pointer.
        EXPECT_TRUE(sessions[0].Controls() != before || sessions[1].Controls() != before);
        for (Session& session : sessions) {
            if (!session.editor) session.Open();
            EXPECT_GT(session.RowsFromNowOn(), 0);
            session.Close();
            EXPECT_EQ(session.RowsFromNowOn(), 0) << "rows come without an editor";
        }
    });
}

}  // namespace
}  // namespace brindle::test
