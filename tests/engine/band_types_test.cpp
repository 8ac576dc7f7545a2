// SPDX-License-Identifier: ISC
#include "engine/band_types.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "lv2/brindle.h"

namespace brindle {
namespace {

template <typename Table>
void expect_distinct(const Table& table) {
    std::set<std::string> names;
    std::set<std::string> short_names;
    for (const TypeLabel& label : table) {
        names.insert(label.name);
        short_names.insert(label.short_name);
    }
    EXPECT_EQ(names.size(), table.size());
    EXPECT_EQ(short_names.size(), table.size());
}

TEST(BandTypes, EachTypeHasALabelOfItsOwn) {
    expect_distinct(kBandTypeLabels);
    expect_distinct(kSectionTypeLabels);
}

TEST(PortLayout, BandsSectionsAndTrimFollowEachOtherWithoutGap) {
    EXPECT_EQ(band_port(0), kNotifyPort + 1);
    EXPECT_EQ(band_port(kBandCount), section_port(0));
    EXPECT_EQ(section_port(kSectionCount), kTrimPort);
}

}  // namespace
}  // namespace brindle
