// SPDX-License-Identifier: ISC
// What the program says: its lists, and its one sentence where it cannot do what is asked.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/host/program.h"

namespace brindle::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

constexpr int kShortWav = SF_FORMAT_WAV | SF_FORMAT_PCM_16;

using Program = ProgramTest;

TEST_F(Program, InfoListsControlsAndPresets) {
    const Outcome outcome = brindle("info");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.out,
                AllOf(HasSubstr("b1_enable"), HasSubstr("secb_q"), HasSubstr("trim"),
                      HasSubstr("12 Notch"), HasSubstr("17 Wide Notch"), HasSubstr("Dialog"),
                      HasSubstr("Push+Pull Tone"), HasSubstr("Brindle Console EQ (Stereo)")));
}

TEST_F(Program, WhatCannotBeDoneIsSaidInOneSentenceAndLeavesNothingBehind) {
    save("in.wav", noise(0.5, 1000, 48000, 1, kShortWav));
    save("six.wav", noise(0.5, 1000, 48000, 6, kShortWav));
    std::ofstream(path("text.wav")) << "no sound at all\n";
    std::ofstream(path("there.wav")) << "precious\n";
    std::filesystem::create_directory(path("folder"));
    struct Case {
        const char* arguments;
        const char* reason;
    };
    const Case cases[] = {
        {"render none.wav out.wav", "cannot read none.wav: No such file or directory."},
        {"render text.wav out.wav", "cannot read text.wav: it is no sound file"},
        {"render folder out.wav", "cannot read folder: "},
        {"render six.wav out.wav", "it has 6 channels, the plugin takes one or two."},
        {"render in.wav there.wav", "cannot write there.wav: it exists already."},
        {"render in.wav in.wav", "cannot write in.wav: it exists already."},
        {"render in.wav folder", "cannot write folder: it exists already."},
        {"render in.wav /dev/full", "cannot write /dev/full: it exists already."},
        {"render in.wav none/out.wav", "cannot write none/out.wav: No such file or directory."},
        {"render in.wav /proc/out.wav", "cannot write /proc/out.wav: "},
        {"render in.wav out.wav --preset Nothing", "no preset \"Nothing\", only 60Hz Buzz Kill,"},
        {"render in.wav out.wav --set b9_gain=1", "no control \"b9_gain\""},
        {"render in.wav out.wav --set meter_in=1", "no control \"meter_in\""},
        {"render in.wav out.wav --set trim", "\"trim\" does not have the form SYMBOL=VALUE."},
        {"render in.wav out.wav --set trim=loud", "\"loud\" is no value for trim"},
        {"render in.wav out.wav --set trim=", "\"\" is no value for trim"},
        {"render in.wav out.wav --set trim=20.1", "from -20 to 20 dB."},
        {"render in.wav out.wav --set b1_q=nan", "from 0.1 to 100."},
        {"render in.wav out.wav --set b1_freq=inf", "from 20 to 20000 Hz."},
        {"render in.wav out.wav --set b1_type=2.5", "a whole number from 0 to 12 or one of Flat,"},
        {"render in.wav out.wav --set b1_type=Bel", "\"Bel\" is no value for b1_type"},
        {"response out.pdf", "has to end in .csv, .txt, .png or .svg."},
        {"response none/out.csv", "cannot write none/out.csv: "},
        {"response out.csv --preset ''x", "no preset \"x\""},
        {"--bundle none info", "there is no LV2 bundle at none."},
        {"--bundle folder render in.wav out.wav", "there is no LV2 bundle at folder."},
    };
    const auto before = files();
    for (const Case& each : cases) {
        SCOPED_TRACE(each.arguments);
        const Outcome outcome = brindle(each.arguments);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err, AllOf(StartsWith("brindle: "), HasSubstr(each.reason)));
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        EXPECT_EQ(files(), before);
    }
    EXPECT_EQ(text_of("there.wav"), "precious\n");
}

TEST_F(Program, WrongUsageIsRefused) {
    for (const char* arguments :
         {"", "polish in.wav", "render in.wav", "render a b c", "render a b --block 0",
          "render a b --block many", "response a.csv --rate 7999", "render a b --loud"}) {
        SCOPED_TRACE(arguments);
        const Outcome outcome = brindle(arguments);
        EXPECT_NE(outcome.status, 0);
        EXPECT_NE(outcome.err, "");
        EXPECT_TRUE(files().empty());
    }
}

TEST_F(Program, AFullDiskLeavesNoTableOrPlotBehind) {
    for (const char* name : {"out.csv", "out.png", "out.svg"}) {
        const Outcome outcome = brindle(std::string("response ") + name, "ulimit -f 8");
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.err,
                  std::string("brindle: cannot write ") + name + ": File too large.\n");
        EXPECT_TRUE(files().empty());
    }
}

TEST_F(Program, TheBundleIsFoundBesideTheProgramOrOnTheSearchPath) {
    const std::string copy = "cp " BRINDLE_PROGRAM " program; ";
    const std::string search = "LV2_PATH=$(dirname " BRINDLE_PROGRAM ") ./program info";
    EXPECT_THAT(shell(copy + search).out, HasSubstr("Brindle Console EQ (Mono)"));
    const Outcome lost = shell(copy + "LV2_PATH=/none ./program info");
    EXPECT_EQ(lost.status, 1);
    EXPECT_THAT(lost.err, HasSubstr("give its bundle with --bundle"));
}

// A bundle whose library cannot be loaded.
TEST_F(Program, ABrokenBundleIsSaidToBeOne) {
    shell("cp -r $(dirname " BRINDLE_PROGRAM ")/brindle.lv2 broken && rm broken/brindle.so");
    const Outcome outcome = brindle("--bundle broken response out.csv");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("brindle: the plugin in "));
    EXPECT_THAT(outcome.err, HasSubstr("/broken/ cannot be loaded."));
}

}  // namespace
}  // namespace brindle::test
