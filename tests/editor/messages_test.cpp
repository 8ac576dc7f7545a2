// SPDX-License-Identifier: ISC
#include "editor/messages.h"

#include <gmock/gmock.h>

#include <vector>

#include "editor/host_connection.h"
#include "editor/host_options.h"
#include "editor/pending_writes.h"
#include "tests/support/urid_map.h"

namespace brindle {
namespace {

using test::UridMap;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

/// A plot message, and the fields that a test makes invalid.
struct Plot {
    int32_t id = 5;
    uint32_t bins = kPlotBins;
    LV2_URID type = 0;  // 0 in these means the valid one
    LV2_URID objectType = 0;
    LV2_URID rateType = 0;
    LV2_URID idType = 0;
    LV2_URID childType = 0;
    bool withRate = true;
    bool withRow = true;
};

class Messages : public testing::Test {
  protected:
    /// The message's bytes in memory of exactly its size, so that reads beyond it are detected.
    std::vector<uint64_t> Build(const Plot& plot) {
        alignas(8) uint8_t buffer[4096] = {};
        LV2_Atom_Forge forge;
        lv2_atom_forge_init(&forge, map.get());
        lv2_atom_forge_set_buffer(&forge, buffer, sizeof buffer);
        const auto number = [&](const char* key, LV2_URID type, int32_t value) {
            lv2_atom_forge_key(&forge, map(key));
            lv2_atom_forge_int(&forge, value);
            // The type just written is before the value's padded 4 bytes.
            *reinterpret_cast<uint32_t*>(buffer + forge.offset - 12) =
                type != 0 ? type : uris.atom_int;
        };
        LV2_Atom_Forge_Frame frame;
        lv2_atom_forge_object(&forge, &frame, 1,
                              plot.objectType != 0 ? plot.objectType : uris.message);
        if (plot.withRate) number(kSampleRateUri, plot.rateType, 48000);
        number(kPlotIdUri, plot.idType, plot.id);
        if (plot.withRow) {
            std::vector<float> row(plot.bins + 1);  // data() must not be null
            for (size_t i = 0; i < row.size(); ++i) row[i] = -static_cast<float>(i);
            lv2_atom_forge_key(&forge, map(kPlotArrayUri));
            lv2_atom_forge_vector(&forge, sizeof(float),
                                  plot.childType != 0 ? plot.childType : uris.atom_float, plot.bins,
                                  row.data());
        }
        lv2_atom_forge_pop(&forge, &frame);
        if (plot.type != 0) reinterpret_cast<LV2_Atom*>(buffer)->type = plot.type;
        size = reinterpret_cast<LV2_Atom*>(buffer)->size + static_cast<uint32_t>(sizeof(LV2_Atom));
        const auto* words = reinterpret_cast<const uint64_t*>(buffer);
        return {words, words + (size + 7) / 8};
    }
    bool IsRead(const Plot& plot) {
        const auto bytes = Build(plot);
        return ReadPlotMessage(uris, bytes.data(), size).has_value();
    }

    UridMap map;
    EqUris uris = map_urids(map.get(), UridOrder::MessageFirst);
    uint32_t size = 0;
};

TEST_F(Messages, ReadRowsOfBothObjectTypes) {
    for (const LV2_URID type : {uris.atom_object, uris.atom_blank}) {
        const auto bytes = Build({.id = 127, .type = type});
        const auto plot = ReadPlotMessage(uris, bytes.data(), size);
        ASSERT_TRUE(plot);
        EXPECT_EQ(plot->id, 127);
        EXPECT_EQ(plot->values[0], 0.0f);
        EXPECT_EQ(plot->values[240], -240.0f);
    }
    EXPECT_TRUE(IsRead({.bins = kPlotBins + 3}));
}

TEST_F(Messages, IgnoreAllThatIsNotAPlot) {
    const Plot wrong[] = {
        {.id = -1},
        {.id = kPlotRows},
        {.bins = kPlotBins - 1},
        {.bins = 0},
        {.type = map(LV2_ATOM__Tuple)},
        {.objectType = map(kEnableUiUri)},
        {.rateType = uris.atom_float},
        {.idType = uris.atom_float},
        {.childType = uris.atom_int},
        {.withRate = false},
        {.withRow = false},
    };
    for (size_t i = 0; i < std::size(wrong); ++i) EXPECT_FALSE(IsRead(wrong[i])) << "case " << i;
    EXPECT_TRUE(IsRead({}));
}

TEST(PendingWrites, CountAsShownAfterAWhileOnly) {
    PendingWrites writes;
    std::vector<std::pair<uint32_t, float>> taken;
    const auto take_at = [&](int64_t now_ms) {
        taken.clear();
        writes.ForEachUnshown(now_ms, 100,
                              [&](uint32_t port, float value) { taken.emplace_back(port, value); });
        return taken;
    };
    writes.Written(4, 1.0f, 1000);
    writes.Written(7, 2.0f, 1010);
    writes.Written(4, 1.5f, 1090);
    EXPECT_THAT(take_at(1099), IsEmpty());
    EXPECT_THAT(take_at(1100), ElementsAre(Pair(4u, 1.5f)));
    EXPECT_THAT(take_at(1109), IsEmpty());
    writes.Reported(7, 0.0f, 1109);
    EXPECT_THAT(take_at(2000), IsEmpty());
    writes.Written(7, 3.0f, 3000);
    EXPECT_THAT(take_at(3100), ElementsAre(Pair(7u, 3.0f)));
    EXPECT_THAT(take_at(9000), IsEmpty());
}

TEST(PendingWrites, AreShownAsTheNewestOneUntilTheHostReportsItsOwn) {
    struct Row {
        int64_t now_ms;
        float reported;
        float shown;
    };
    const std::vector<Row> cases[] = {
        {{10, 1.0f, 3.0f}, {20, 2.0f, 3.0f}, {30, 3.0f, 3.0f}, {40, 1.0f, 1.0f}},  // in order
        {{10, 3.0f, 3.0f}, {20, 1.0f, 3.0f}, {30, 2.0f, 3.0f}, {40, 3.0f, 3.0f}},  // in another
        {{10, 1.0f, 3.0f}, {20, 1.0f, 1.0f}, {30, 2.0f, 2.0f}},  // the second is the host's own
        {{10, 1.5f, 1.5f}, {20, 3.0f, 3.0f}, {30, 1.0f, 1.0f}},
        {{10, 1.000001f, 3.0f}, {20, 2.0001f, 2.0001f}},  // rounded, and not
        {{499, 1.0f, 3.0f}, {510, 2.0f, 2.0f}},           // late, and too late
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        PendingWrites writes;
        for (const float value : {1.0f, 2.0f, 3.0f}) writes.Written(9, value, 0);
        writes.Written(8, 1.5f, 0);  // another port
        for (const Row& row : cases[i]) {
            EXPECT_EQ(writes.Reported(9, row.reported, row.now_ms), row.shown)
                << "case " << i << ", " << row.now_ms << " ms";
        }
    }
}

TEST(HostColors, AreTakenWhenOpaqueOnly) {
    GLColor color = kAmber;
    ApplyHostColor(color, 0x20406080u);
    ApplyHostColor(color, 0x204060feu);
    ApplyHostColor(color, 0);
    EXPECT_EQ(color.red, kAmber.red);
    ApplyHostColor(color, 0x204060ffu);
    EXPECT_FLOAT_EQ(color.red, 32.0f / 255.0f);
    EXPECT_FLOAT_EQ(color.green, 64.0f / 255.0f);
    EXPECT_FLOAT_EQ(color.blue, 96.0f / 255.0f);
    EXPECT_EQ(color.alpha, 1.0f);
}

TEST(HostOptions, KeepTheirDefaultsWhereNoneIsGiven) {
    UridMap map;
    const LV2_Options_Option none[] = {{}};
    const HostOptions options = ReadHostOptions(none, map.get());
    EXPECT_EQ(options.sampleRate, 46000.0f);
    EXPECT_EQ(options.backgroundColor, 0u);
    EXPECT_FALSE(options.boxy);
}

}  // namespace
}  // namespace brindle
