// SPDX-License-Identifier: ISC
// The loaded plugin as hosts run it: engines on threads of their own, editors on another, and
// nothing between them but queues. The thread sanitizer looks on when it is built in.
#include <gtest/gtest.h>
#include <lv2/atom/util.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstring>
#include <memory>
#include <thread>

#include "tests/support/hard_treatment.h"
#include "tests/support/ui_host.h"

namespace brindle::test {
namespace {

/// Sets all controls and runs a block, many times over.
Audio PlayAlone(uint32_t seed) {
    constexpr size_t kFrames = 1000;
    Random random(seed);
    PluginHost host(2, 48000.0);
    Audio all(2);
    for (int block = 0; block < 20; ++block) {
        for (int band = 0; band < kBandCount; ++band) {
            host.set_band(band, random.between(0, 12), random.real(-18.0f, 18.0f),
                          random.real(20.0f, 20000.0f), random.real(0.1f, 10.0f));
        }
        host.set_section(0, random.between(0, 17), random.real(-18.0f, 18.0f), 200.0f, 1.0f);
        Audio in(2, std::vector<float>(kFrames));
        for (auto& channel : in) {
            std::generate(channel.begin(), channel.end(), [&] { return random.real(-1.0f, 1.0f); });
        }
        const Audio out = host.process(in, 256);
        for (size_t c = 0; c < 2; ++c) {
            all[c].insert(all[c].end(), out[c].begin(), out[c].end());
        }
    }
    return all;
}

// Made, run and freed at the same time; the first ones choose the vector code.
TEST(Threads, EnginesDoNotDisturbEachOther) {
    constexpr size_t kEngines = 4;
    std::array<Audio, kEngines> together;
    std::vector<std::thread> threads;
    for (uint32_t i = 0; i < kEngines; ++i) {
        threads.emplace_back([&together, i] { together[i] = PlayAlone(i); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (uint32_t i = 0; i < kEngines; ++i) {
        EXPECT_EQ(together[i], PlayAlone(i)) << "engine " << i;
    }
}

/// A queue with one writer and one reader, of which neither waits.
class Ring {
  public:
    struct Message {
        uint32_t port = 0;
        uint32_t protocol = 0;
        uint32_t size = 0;
        alignas(8) std::array<uint8_t, 1088> bytes{};
    };

    /// Drops what does not fit.
    void Put(uint32_t port, uint32_t protocol, const void* bytes, size_t size) {
        const uint32_t place = written.load(std::memory_order_relaxed);
        Message& message = messages[place % kCount];
        if (place - read.load(std::memory_order_acquire) == kCount || size > message.bytes.size()) {
            return;
        }
        message.port = port;
        message.protocol = protocol;
        message.size = static_cast<uint32_t>(size);
        std::memcpy(message.bytes.data(), bytes, size);
        written.store(place + 1, std::memory_order_release);
    }
    /// Calls `take(message)` for all that is there.
    template <typename Take>
    void TakeAll(Take take) {
        uint32_t place = read.load(std::memory_order_relaxed);
        for (; place != written.load(std::memory_order_acquire); ++place) {
            take(messages[place % kCount]);
            read.store(place + 1, std::memory_order_release);
        }
    }

  private:
    static constexpr uint32_t kCount = 256;
    std::array<Message, kCount> messages;
    std::atomic<uint32_t> written = 0;
    std::atomic<uint32_t> read = 0;
};

/// A plugin that runs on an audio thread of its own, with an editor that may be open.
class Session {
  public:
    Session()
        : atomSequence(plugin.map()(LV2_ATOM__Sequence)),
          eventTransfer(plugin.map()(LV2_ATOM__eventTransfer)),
          audioThread([this] { RunAudio(); }) {}
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() {
        isOver = true;
        audioThread.join();
        editor.reset();
    }

    void Open() {
        editor = std::make_unique<UiHost>(BuiltEditor(), &plugin.map());
        ASSERT_TRUE(editor->Open());
    }
    void Close() {
        editor->Close();
        SendWrites();
        editor.reset();
    }
    /// One turn of the UI thread.
    void Turn() {
        toEditor.TakeAll([this](const Ring::Message& message) {
            rows += message.port == kNotifyPort ? 1 : 0;
            if (editor) {
                editor->Deliver(message.port, message.protocol, message.bytes.data(), message.size);
            }
        });
        if (editor) {
            editor->Idle();
            SendWrites();
        }
    }

    std::unique_ptr<UiHost> editor;
    int rows = 0;                      // that have come from the engine
    std::atomic<int> controlsSet = 0;  // by the editor, as the engine has seen them
    std::atomic<int> blocks = 0;

  private:
    void SendWrites() {
        for (const UiWrite& write : editor->writes) {
            toEngine.Put(write.port, write.protocol, write.bytes.data(), write.bytes.size());
        }
        editor->writes.clear();
    }

    void RunAudio() {
        constexpr uint32_t kFrames = 512;
        Random random(1);
        std::vector<float> in(kFrames);
        std::vector<float> out(kFrames);
        plugin.connect(kFirstAudioPort, in.data());
        plugin.connect(kFirstAudioPort + 1, out.data());
        while (!isOver) {
            std::generate(in.begin(), in.end(), [&] { return random.real(-0.5f, 0.5f); });
            TakeFromEditor();
            const LV2_Atom room = {plugin.notify_capacity, 0};
            std::memcpy(plugin.notify.data(), &room, sizeof room);
            plugin.run(kFrames);
            SendToEditor();
            ++blocks;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }
    void TakeFromEditor() {
        auto* sequence = reinterpret_cast<LV2_Atom_Sequence*>(plugin.control.data());
        lv2_atom_sequence_clear(sequence);
        sequence->atom.type = atomSequence;
        toEngine.TakeAll([&](const Ring::Message& message) {
            if (message.protocol == 0) {
                std::memcpy(&plugin.port(message.port), message.bytes.data(), sizeof(float));
                ++controlsSet;
                return;
            }
            alignas(8) std::array<uint8_t, 64> event{};
            std::memcpy(event.data() + sizeof(int64_t), message.bytes.data(), message.size);
            lv2_atom_sequence_append_event(sequence, static_cast<uint32_t>(plugin.control.size()),
                                           reinterpret_cast<const LV2_Atom_Event*>(event.data()));
        });
    }
    void SendToEditor() {
        for (const uint32_t port : {kMeterInPort, kMeterOutPort}) {
            toEditor.Put(port, 0, &plugin.port(port), sizeof(float));
        }
        const auto* sequence = reinterpret_cast<const LV2_Atom_Sequence*>(plugin.notify.data());
        LV2_ATOM_SEQUENCE_FOREACH(sequence, event) {
            toEditor.Put(kNotifyPort, eventTransfer, &event->body,
                         lv2_atom_total_size(&event->body));
        }
    }

    PluginHost plugin{1, 48000.0};
    LV2_URID atomSequence;  // mapped before the threads part: the map is the UI thread's
    LV2_URID eventTransfer;
    Ring toEngine;
    Ring toEditor;
    std::atomic<bool> isOver = false;
    std::thread audioThread;
};

// The pointer turns and drags whatever is under it, in the editor that was opened last.
TEST(Threads, EnginesAndEditorsMeetInQueuesOnly) {
    live(1, [](Random& random) {
        std::array<Session, 2> sessions;
        for (int turn = 0; turn < 100; ++turn) {
            Session& session = random.pick(sessions);
            if (!session.editor) {
                session.Open();
            } else if (random.one_in(30)) {
                session.Close();
                continue;
            }
            HostWindow& window = session.editor->window;
            window.MovePointer(random.between(0, 999), random.between(0, 599));
            const auto button = random.one_in(2) ? 1u : static_cast<unsigned>(random.between(4, 5));
            window.Press(button);
            window.MovePointer(random.between(0, 999), random.between(0, 599));
            window.Release(button);
            for (Session& each : sessions) {
                each.Turn();
            }
        }
        for (Session& session : sessions) {
            EXPECT_GT(session.rows, 0);
            EXPECT_GT(session.controlsSet, 0);
            if (!session.editor) {
                session.Open();
            }
            session.Close();
            // The engine hears of it in its next block; what was under way before is no news.
            const int closed = session.blocks;
            EXPECT_TRUE(WaitFor([&] { return session.blocks > closed + 2; }, [] {}));
            session.Turn();
            session.rows = 0;
            const int quiet = session.blocks;
            EXPECT_TRUE(WaitFor([&] { return session.blocks > quiet + 4; }, [] {}));
            session.Turn();
            EXPECT_EQ(session.rows, 0) << "rows come without an editor";
        }
    });
}

}  // namespace
}  // namespace brindle::test
