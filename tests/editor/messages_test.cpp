// SPDX-License-Identifier: ISC
#include "editor/messages.h"

#include <gmock/gmock.h>

#include <numeric>

#include "editor/pending_writes.h"
#include "tests/support/plot_message.h"

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST(Messages, AreReadWhereTheyAreWholeRows) {
    test::UridMap map;
    const EqUris uris = map_urids(map.get(), UridOrder::MessageFirst);
    std::vector<float> row(kPlotBins + 3);
    std::iota(row.begin(), row.end(), 0.0f);
    const auto read = [&](const std::vector<uint32_t>& words, size_t bytes = 0) {
        const auto size = static_cast<uint32_t>(bytes != 0 ? bytes : 4 * words.size());
        return ReadPlotMessage(uris, words.data(), size);
    };
    EXPECT_TRUE(read(test::PlotMessage(map, 0, row)));
    row.resize(kPlotBins - 1);
    EXPECT_FALSE(read(test::PlotMessage(map, 0, row)));
    row.push_back(kPlotBins - 1.0f);
    const std::vector<uint32_t> valid = test::PlotMessage(map, kPlotRows - 1, row);
    std::vector<uint32_t> words = valid;
    for (const LV2_URID type : {uris.atom_object, uris.atom_blank}) {
        words[1] = type;
        const auto plot = read(words);
        ASSERT_TRUE(plot);
        EXPECT_EQ(plot->id, kPlotRows - 1);
        EXPECT_EQ(plot->values[0], 0.0f);
        EXPECT_EQ(plot->values[kPlotBins - 1], kPlotBins - 1.0f);
    }
    for (const size_t size : {sizeof(LV2_Atom), 4 * valid.size() - 8}) {
        EXPECT_FALSE(read(valid, size)) << size << " bytes";
    }
    const struct {
        const char* what;
        size_t word;
        uint32_t value;
    } wrong[] = {{"size", 0, valid[0] - 8},
                 {"type", 1, map(LV2_ATOM__Tuple)},
                 {"object type", 3, uris.enable_ui},
                 {"no rate", 4, uris.enable_ui},
                 {"rate's type", 7, uris.atom_float},
                 {"id's type", 13, uris.atom_float},
                 {"id below 0", 14, static_cast<uint32_t>(-1)},
                 {"id above the last", 14, kPlotRows},
                 {"no row", 16, uris.enable_ui},
                 {"row beyond the end", 18, valid[18] + 8},
                 {"row's type", 19, map(LV2_ATOM__Tuple)},
                 {"bins' size", 20, 8},
                 {"bins' type", 21, uris.atom_int}};
    for (const auto& [what, word, value] : wrong) {
        words = valid;
        words[word] = value;
        EXPECT_FALSE(read(words)) << what;
    }
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

}  // namespace
}  // namespace brindle
