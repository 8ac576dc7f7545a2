// SPDX-License-Identifier: ISC
// Analyser rows as a host receives them from the loaded plugin.
#include <gtest/gtest.h>
#include <lv2/atom/util.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <random>
#include <vector>

#include "lv2/brindle.h"
#include "tests/engine/reference_analyser.h"
#include "tests/support/plugin_host.h"

namespace brindle::test {
namespace {

struct RowMessage {
    int32_t sample_rate;
    int32_t id;
    std::vector<float> row;
};

/// A host that passes requests on and decodes what comes back, processing in place.
class RowHost {
  public:
    RowHost(int channels, double rate)
        : host(channels, rate), audio(static_cast<size_t>(channels)), level_(-0.5f, 0.5f) {}

    /// Objects of these types stand on the control port in the next block.
    void request(const std::vector<const char*>& types) {
        const std::vector<uint32_t> head = {0, host.map()(LV2_ATOM__Sequence), 0, 0};
        words_ = head;
        for (const char* type : types) {
            const std::vector<uint32_t> event = {
                0, 0, 8, host.map()(LV2_ATOM__Object), 1, host.map()(type)};
            words_.insert(words_.end(), event.begin(), event.end());
        }
        words_[0] = static_cast<uint32_t>(4 * words_.size() - sizeof(LV2_Atom));
        std::memcpy(host.control.data(), words_.data(), 4 * words_.size());
    }

    /// One block of noise, different in each channel.
    void run(uint32_t n) {
        for (size_t c = 0; c < audio.size(); ++c) {
            audio[c].resize(n);
            std::generate(audio[c].begin(), audio[c].end(), [&] { return level_(random_); });
            const auto number = kFirstAudioPort + 2 * static_cast<uint32_t>(c);
            host.connect(number, audio[c].data());
            host.connect(number + 1, audio[c].data());
        }
        left = audio[0];
        const LV2_Atom room = {host.notify_capacity, host.map()(LV2_ATOM__Chunk)};
        std::memcpy(host.notify.data(), &room, sizeof room);
        host.run(n);
        request({});
    }

    bool notified() { return sequence().atom.type == host.map()(LV2_ATOM__Sequence); }
    bool notified_empty() { return notified() && sequence().atom.size == 8; }

    std::optional<RowMessage> message() {
        RowMessage message = {};
        LV2_ATOM_SEQUENCE_FOREACH(&sequence(), event) {
            const auto* object = reinterpret_cast<const LV2_Atom_Object*>(&event->body);
            const LV2_Atom_Int* rate = nullptr;
            const LV2_Atom_Int* id = nullptr;
            const LV2_Atom_Vector* row = nullptr;
            lv2_atom_object_get(object, host.map()(kSampleRateUri), &rate, host.map()(kPlotIdUri),
                                &id, host.map()(kPlotArrayUri), &row, 0);
            if (rate == nullptr || id == nullptr || row == nullptr) {
                return std::nullopt;
            }
            message = {rate->body, id->body, std::vector<float>(kPlotBins)};
            std::memcpy(message.row.data(), row + 1, kPlotBins * sizeof(float));
            return message;
        }
        return std::nullopt;
    }

    PluginHost host;
    Audio audio;
    std::vector<float> left;  ///< input of the first channel in the last block

  private:
    const LV2_Atom_Sequence& sequence() const {
        return *reinterpret_cast<const LV2_Atom_Sequence*>(host.notify.data());
    }
    std::vector<uint32_t> words_;
    std::mt19937 random_{5};
    std::uniform_real_distribution<float> level_;
};

TEST(Rows, AreThoseOfTheFirstInputAndComeInBlocksWithAMeterTick) {
    for (const auto& [channels, rate, period] :
         {std::tuple{1, 44100.0, 512}, {2, 48000.0, 512}, {2, 96000.9, 1024}}) {
        SCOPED_TRACE(rate);
        RowHost rows(channels, rate);
        reference::Analyser plain(rate);
        std::mt19937 random(6);
        int position = 0;
        rows.request({kEnableUiUri});
        for (int block = 0; block < 300; ++block) {
            const int n = static_cast<int>(random() % 400) + 1;
            rows.run(static_cast<uint32_t>(n));
            for (float x : rows.left) {
                plain.add(x);
            }
            // A tick falls on each sample whose number is a multiple of the period.
            const bool tick = (position + n - 1) / period != (position - 1 + period) / period - 1;
            position += n;
            ASSERT_EQ(rows.notified(), tick) << "block " << block;
            if (tick) {
                const auto message = rows.message();
                ASSERT_TRUE(message);
                ASSERT_EQ(message->sample_rate, static_cast<int>(rate));
                ASSERT_EQ(message->id, plain.row_index);
                ASSERT_EQ(message->row, plain.rows[static_cast<size_t>(plain.row_index)]);
            }
        }
        EXPECT_GT(plain.row_index, 10);
    }
}

TEST(Rows, StandStillWhileNoEditorListens) {
    RowHost rows(2, 48000.0);
    rows.run(4096);
    EXPECT_TRUE(rows.notified_empty());
    rows.request({kEnableUiUri});
    rows.run(4096);
    EXPECT_EQ(rows.message()->id, 2);
    rows.request({kDisableUiUri});
    rows.run(8192);
    EXPECT_TRUE(rows.notified_empty());
    rows.request({kDisableUiUri, kEnableUiUri});
    rows.run(1);
    EXPECT_EQ(rows.message()->id, 3) << "the row that the disabled blocks did not fill";
    rows.request({kEnableUiUri, kDisableUiUri});
    rows.run(512);
    EXPECT_TRUE(rows.notified_empty());
}

TEST(Rows, LeaveTheSoundAsItIs) {
    RowHost with(2, 48000.0);
    RowHost without(2, 48000.0);
    with.request({kEnableUiUri});
    for (int block = 0; block < 20; ++block) {
        with.run(700);
        without.run(700);
        ASSERT_EQ(with.audio, without.audio);
    }
}

TEST(Rows, DoWithoutANotifyPort) {
    RowHost rows(1, 48000.0);
    rows.host.connect(kNotifyPort, nullptr);
    rows.request({kEnableUiUri});
    rows.run(4096);
    EXPECT_FALSE(rows.notified());
    rows.host.connect(kControlPort, nullptr);
    rows.host.connect(kNotifyPort, rows.host.notify.data());
    rows.run(4096);
    EXPECT_EQ(rows.message()->id, 4) << "the request was heard all the same";
}

}  // namespace
}  // namespace brindle::test
