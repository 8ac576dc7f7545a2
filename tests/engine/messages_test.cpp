// SPDX-License-Identifier: ISC
// Messages between editor and engine as a host forwards them: requests on the loaded plugin's
// control port, analyser rows on its notify port.
#include <gtest/gtest.h>
#include <lv2/atom/atom.h>

#include <cstring>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "contract/brindle.h"
#include "tests/engine/reference_analyser.h"
#include "tests/support/atom_sequence.h"
#include "tests/support/hard_treatment.h"
#include "tests/support/plot_message.h"
#include "tests/support/plugin_host.h"

namespace brindle::test {
namespace {

using Words = AtomSequence::Words;
constexpr uint32_t kJunk = 0xdeadbeef;

/// A host with an editor. It processes noise in place and reads the plugin's messages.
class EditorHost : public PluginHost {
  public:
    using PluginHost::PluginHost;

    LV2_URID urid(const std::string& uri) { return map()(uri); }
    AtomSequence sequence() { return AtomSequence(map()); }
    AtomSequence request(const char* uri) { return sequence().request(uri); }

    /// Runs `n` samples, different in each channel; returns the first channel's input. Requests lie
    /// `shift` bytes off alignment at the end of their memory, so that sanitizers detect reads
    /// beyond it.
    std::vector<float> play(uint32_t n, const AtomSequence& requests, size_t shift = 0) {
        Audio audio = noise(channels(), n, seed_++, 0.5f);
        std::vector<float> first = audio[0];
        for (size_t c = 0; c < audio.size(); ++c) {
            const auto number = kFirstAudioPort + 2 * static_cast<uint32_t>(c);
            connect(number, audio[c].data());
            connect(number + 1, audio[c].data());
        }
        const Words room(notify.size() / 4, kJunk);
        std::memcpy(notify.data(), room.data(), notify.size());
        std::memcpy(notify.data(), &notify_capacity, sizeof notify_capacity);
        const std::unique_ptr<uint8_t[]> memory(new uint8_t[shift + requests.size()]);
        requests.write(memory.get() + shift);
        connect(kControlPort, memory.get() + shift);
        run(n);
        connect(kControlPort, nullptr);
        return first;
    }
    void play(uint32_t n) { play(n, sequence()); }

    Words notify_words(size_t count) const {
        Words words(count);
        std::memcpy(words.data(), notify.data(), 4 * count);
        return words;
    }
    /// What the notify port holds before junk where no row was sent.
    Words empty_sequence() { return {8, urid(LV2_ATOM__Sequence), 0, 0, kJunk}; }
    bool notified() const { return notify_words(3)[2] != kJunk; }
    /// The number of the row that was sent.
    uint32_t row_id() const { return notify_words(21)[20]; }

    /// Whether rows come after `requests`, with rows coming before or not.
    bool rows_after(const AtomSequence& requests, bool before, size_t shift = 0) {
        play(1, request(before ? kEnableUiUri : kDisableUiUri));
        play(512, requests, shift);
        return notified() && notify_words(5) != empty_sequence();
    }

  private:
    uint32_t seed_ = 5;
};

TEST(Requests, SwitchRowsOnAndOff) {
    EditorHost host(1, 48000.0);
    const LV2_URID object = host.urid(LV2_ATOM__Object);
    const Words enable = {1, host.urid(kEnableUiUri)};
    const Words disable = {1, host.urid(kDisableUiUri)};
    for (size_t shift : {0u, 1u, 4u, 7u}) {
        SCOPED_TRACE(shift);
        for (const char* type : {LV2_ATOM__Object, LV2_ATOM__Blank}) {
            const LV2_URID urid = host.urid(type);
            EXPECT_TRUE(host.rows_after(host.sequence().event(urid, enable), false, shift));
            EXPECT_FALSE(host.rows_after(host.sequence().event(urid, disable), true, shift));
        }
        const auto on_off = host.sequence().event(object, enable).event(object, disable);
        EXPECT_FALSE(host.rows_after(on_off, false, shift));
        const auto off_on = host.sequence().event(object, disable).event(object, enable);
        EXPECT_TRUE(host.rows_after(off_on, true, shift));
        // Foreign events of any length lie between requests; properties may follow the type.
        const auto among_others = host.sequence()
                                      .event(host.urid(LV2_ATOM__Int), {7})
                                      .event(77, {0x00643c90}, 3)
                                      .event(object, {1, host.urid(kEnableUiUri), 5, 0, 4, 2, 1})
                                      .event(object, {1, host.urid(kMessageUri)})
                                      .event(77, {1, 2, 3});
        EXPECT_TRUE(host.rows_after(among_others, false, shift));
    }
}

TEST(Requests, ThatAreMalformedChangeNothing) {
    EditorHost host(1, 48000.0);
    const LV2_URID object = host.urid(LV2_ATOM__Object);
    const Words enable = {1, host.urid(kEnableUiUri)};
    const Words disable = {1, host.urid(kDisableUiUri)};
    std::vector<std::pair<AtomSequence, AtomSequence>> cases = {
        {host.sequence(), host.sequence()},
        {host.sequence().event(host.urid(LV2_ATOM__Vector), enable),
         host.sequence().event(0, disable)},
        {host.sequence().event(object, {enable[1], 0}),
         host.sequence().event(object, {disable[1], 0})},
        // Events after a broken one are not read: their place is unknown.
        {host.sequence().event(77, {}, 4096).event(object, enable),
         host.sequence().event(77, {}, 4096).event(object, disable)}};
    // Too short for a type, one byte past the end, and as far past the end as a size can say.
    for (uint32_t size : {4u, 9u, 0xfffffff9u, 0xffffffffu}) {
        cases.emplace_back(host.sequence().event(object, enable, size),
                           host.sequence().event(object, disable, size));
    }
    for (size_t cut = 1; cut <= 32; ++cut) {
        cases.emplace_back(host.sequence().event(object, enable).cut(cut),
                           host.sequence().event(object, disable).cut(cut));
    }
    for (size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_FALSE(host.rows_after(cases[i].first, false));
        EXPECT_TRUE(host.rows_after(cases[i].second, true));
    }
}

TEST(Rows, AreLeftOutWhereTheyDoNotFit) {
    EditorHost host(1, 48000.0);
    host.play(1, host.request(kEnableUiUri));
    for (uint32_t capacity : {16u, 24u, 104u, 1024u, 1072u, 1079u}) {
        SCOPED_TRACE(capacity);
        host.notify_capacity = capacity;
        host.play(512);
        EXPECT_EQ(host.notify_words(5), host.empty_sequence());
    }
    for (uint32_t capacity : {0u, 7u, 8u, 15u}) {
        SCOPED_TRACE(capacity);
        host.notify_capacity = capacity;
        host.play(512);
        EXPECT_EQ(host.notify_words(3), (Words{capacity, kJunk, kJunk}));
    }
    host.connect(kNotifyPort, nullptr);
    host.play(512);
}

TEST(Rows, AreThoseOfTheFirstInputToTheByteAndComeInBlocksWithAMeterTick) {
    for (const auto& [channels, rate, period] :
         {std::tuple{1, 44100.0, 512}, {2, 48000.0, 512}, {2, 96000.9, 1024}}) {
        SCOPED_TRACE(rate);
        EditorHost host(channels, rate);
        host.notify_capacity = 1080;
        reference::Analyser plain(rate);
        Random random(6);
        int ticks = 0;
        int position = 0;
        for (int block = 0; block < 300; ++block) {
            const int n = random.between(1, 400);
            const auto left = host.play(static_cast<uint32_t>(n), host.request(kEnableUiUri));
            for (float x : left) plain.add(x);
            position += n;
            // A tick falls on every sample whose number is a multiple of the period.
            const int ticks_before = ticks;
            ticks = (position + period - 1) / period;
            ASSERT_EQ(host.notified(), ticks > ticks_before) << "block " << block;
            if (!host.notified()) continue;
            // Size, type, unit and padding, the event's time, the row, and what lay there before.
            Words expected = {1072, host.urid(LV2_ATOM__Sequence), 0, 0, 0, 0};
            const Words row = PlotMessage(host.map(), static_cast<int>(plain.row_index),
                                          plain.rows[plain.row_index], static_cast<uint32_t>(rate));
            expected.insert(expected.end(), row.begin(), row.end());
            expected.push_back(kJunk);
            ASSERT_EQ(host.notify_words(271), expected);
        }
        EXPECT_GT(plain.row_index, 10u);
    }
}

TEST(Rows, StandStillWhileNoEditorListens) {
    EditorHost host(2, 48000.0);
    host.play(4096);
    EXPECT_EQ(host.notify_words(5), host.empty_sequence());
    host.play(4096, host.request(kEnableUiUri));
    EXPECT_EQ(host.row_id(), 2u);
    host.play(8192, host.request(kDisableUiUri));
    EXPECT_EQ(host.notify_words(5), host.empty_sequence());
    host.play(1, host.request(kEnableUiUri));
    EXPECT_EQ(host.row_id(), 3u) << "the row that the disabled blocks did not fill";
}

}  // namespace
}  // namespace brindle::test
