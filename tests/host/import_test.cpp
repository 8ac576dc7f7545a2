// SPDX-License-Identifier: ISC
// `brindle import`: lists of filters become settings that sound like them.
#include <gmock/gmock.h>

#include <cmath>
#include <complex>
#include <fstream>
#include <numbers>
#include <string>
#include <vector>

#include "tests/host/program.h"

namespace brindle::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

struct Listed {
    char shape;  ///< Peak, Low shelf, High shelf, Rumble and Treble cut, Notch
    double freq_hz, gain_db, q;
};

/// The level of the cookbook's analogue filters.
double level_db(const std::vector<Listed>& list, double freq_hz) {
    double level = 0.0;
    for (const auto& [shape, centre_hz, gain_db, q] : list) {
        const std::complex<double> s(0.0, freq_hz / centre_hz);
        const double a = std::pow(10.0, gain_db / 40.0);
        const double side = std::sqrt(a) / q;
        const auto response =
            shape == 'P'   ? (s * s + s * a / q + 1.0) / (s * s + s / (a * q) + 1.0)
            : shape == 'L' ? a * (s * s + s * side + a) / (a * s * s + s * side + 1.0)
            : shape == 'H' ? a * (a * s * s + s * side + 1.0) / (s * s + s * side + a)
            : shape == 'R' ? s * s / (s * s + s / q + 1.0)
            : shape == 'T' ? 1.0 / (s * s + s / q + 1.0)
                           : (s * s + 1.0) / (s * s + s / q + 1.0);
        level += 20.0 * std::log10(std::abs(response));
    }
    return level;
}

using ImportCommand = ProgramTest;

// Windows line ends, commas, a shelf without Q, octaves instead of Q, filters that are off.
TEST_F(ImportCommand, TenFiltersSoundAsTheListSays) {
    std::ofstream(path("list.txt"))
        << "Filter Settings file\r\n\r\nNotes: 105 Hz is the door\r\nEqualiser: Generic\r\n"
           "Preamp: -6.2 dB\r\n"
           "Filter  1: ON  PK       Fc    41,50 Hz  Gain -12,4 dB  Q  8,12\r\n"
           "Filter  2: ON  PEQ      Fc   63.00 Hz   Gain  -6.0 dB  Q  4.00\r\n"
           "Filter  3: ON  PK       Fc   124.0 Hz   Gain   3.0 dB  BW Oct 1\r\n"
           "Filter  4: OFF PK       Fc   124.0 Hz   Gain   9.0 dB  Q  3.00\r\n"
           "Filter  5: ON  HP       Fc   25.0 Hz\r\n"
           "Filter  6: ON  None\r\n"
           "Filter  7: ON  LS       Fc   200.0 Hz   Gain  -3.0 dB\r\n"
           "Filter  8: ON  PK       Fc   440.0 Hz   Gain  -8.5 dB  Q  2.00\r\n"
           "Filter  9: ON  HSC      Fc   3.2 kHz    Gain   2.0 dB  Q  0.71\r\n"
           "Filter 10: ON  PK       Fc   12.50 kHz  Gain  -5.0 dB  Q  3.00\r\n"
           "Filter 11: ON  NO       Fc   1000 Hz    Q 30\r\n";
    const std::vector<Listed> filters = {{'P', 41.5, -12.4, 8.12},
                                         {'P', 63, -6, 4},
                                         {'P', 124, 3, std::numbers::sqrt2},
                                         {'R', 25, 0, 1 / std::numbers::sqrt2},
                                         {'L', 200, -3, 1 / std::numbers::sqrt2},
                                         {'P', 440, -8.5, 2},
                                         {'H', 3200, 2, 0.71},
                                         {'P', 12500, -5, 3},
                                         {'N', 1000, 0, 30}};
    const auto expect_sound = [&](const std::vector<Listed>& list, double preamp_db) {
        const Outcome outcome = brindle("import list.txt --force --save s.ttl");
        ASSERT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_THAT(outcome.out, AllOf(HasSubstr(list.size() == 1 ? "(1 filter;" : "(9 filters;"),
                                       HasSubstr("dB RMS")));
        ASSERT_EQ(brindle("response r.csv --force --load s.ttl").status, 0);
        for (const auto& [freq_hz, gain_db] : table("r.csv")) {
            const double wanted_db = preamp_db + level_db(list, freq_hz);
            if (freq_hz > 16000.0) break;
            if (wanted_db < -40.0) continue;  // nobody hears more
            ASSERT_NEAR(gain_db, wanted_db, 0.1) << freq_hz;
        }
    };
    expect_sound(filters, -6.2);
    std::ofstream(path("list.txt")) << "Filter 1: ON LP Fc 150 Hz\n";
    expect_sound({{'T', 150, 0, 1 / std::numbers::sqrt2}}, 0.0);
}

TEST_F(ImportCommand, WhatDoesNotFitIsToldAndLeftOutOnRequest) {
    std::ofstream list(path("list.txt"));
    list << "Preamp: -1 dB\nGraphicEQ: 25 0; 40 -1\nFilter: ON AP Fc 900 Hz Q 1\n"
            "Filter 1: ON PK Fc 1000 Hz Gain 20 dB Q 1\n";
    for (int i = 0; i < 8; ++i)
        list << "Filter: ON PK Fc " << (100 << i) << " Hz Gain 0.1 dB Q 1\n";
    list << "Filter 12: ON PK Fc 5000 Hz Gain 0.05 dB Q 1\nFilter 13: ON HSC Fc 9 kHz Gain -2 dB\n";
    list.close();
    const Outcome refused = brindle("import list.txt --save s.ttl");
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.err, AllOf(HasSubstr("left out: GraphicEQ: 25 0; 40 -1\n"),
                                   HasSubstr("left out: Filter: ON AP Fc 900 Hz Q 1\n"),
                                   HasSubstr("Q 1 (20 is held at 18)\n"),
                                   HasSubstr("Filter 12: ON PK Fc 5000 Hz Gain 0.05 dB Q 1 (no"),
                                   HasSubstr("--partial takes what it can.\n")));
    EXPECT_THAT(files(), testing::ElementsAre("list.txt"));
    const Outcome partial = brindle("import --partial --save s.ttl - <list.txt");
    EXPECT_EQ(partial.status, 0);
    EXPECT_THAT(partial.err, HasSubstr("left out: GraphicEQ"));
    brindle("response r.csv --load s.ttl");
    EXPECT_NEAR(table("r.csv").lower_bound(1000.0)->second, 19.0, 1.0);
    EXPECT_NEAR(table("r.csv").lower_bound(15000.0)->second, -2.8, 1.0);
}

}  // namespace
}  // namespace brindle::test
