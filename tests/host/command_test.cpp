// SPDX-License-Identifier: ISC
// What the program says: its lists, and its one sentence where it cannot do what is asked.
#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>

#include "tests/host/program.h"

namespace brindle::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

constexpr int kShortWav = SF_FORMAT_WAV | SF_FORMAT_PCM_16;

using Program = ProgramTest;

TEST_F(Program, WhatCannotBeDoneIsSaidInOneSentenceAndLeavesNothingBehind) {
    save("in.wav", noise(0.5, 1000, 48000, 1, kShortWav));
    save("six.wav", noise(0.5, 1000, 48000, 6, kShortWav));
    save("odd.wav", noise(0.5, 1000, 47999, 1, kShortWav));
    save("empty.wav", noise(0.5, 0, 48000, 2, kShortWav));
    std::ofstream(path("text.wav")) << "no sound at all\n";
    std::ofstream(path("there.wav")) << "precious\n";
    std::ofstream(path("there.ttl")) << "<> a <urn:nothing> .\n";
    std::ofstream(path("list.txt")) << "Filter 1: ON PK Fc 105 Hz Gain 2.5 dB Q 0.70\n";
    std::filesystem::create_directory(path("folder"));
    save("long.wav", noise(0.5, 200000, 48000, 2, kShortWav));
    shell("cp -r \"$BRINDLE_FOLDER/brindle.lv2\" broken && rm broken/brindle.so");
    struct Case {
        const char* arguments;
        const char* reason;
        int status = 1;
        const char* prelude = ":";
    };
    // 8 blocks of 512 bytes. A coverage build's counts would be cut too, so they go elsewhere.
    constexpr const char* kSmallDisk = "export GCOV_PREFIX=$PWD/folder; ulimit -f 8";
    // A request to stop that is pending across exec comes before the first block for certain.
    constexpr const char* kStop =
        "brindle() { python3 -c 'import os, signal, sys; "
        "signal.pthread_sigmask(signal.SIG_BLOCK, [signal.SIGTERM]); "
        "os.kill(os.getpid(), signal.SIGTERM); os.execvp(\"brindle\", sys.argv)' \"$@\"; }";
    const Case cases[] = {
        {"render none.wav out.wav", "cannot read none.wav: No such file or directory."},
        {"render text.wav out.wav", "cannot read text.wav: it is no sound file"},
        {"render - out.wav <text.wav", "cannot read standard input: it is no sound file"},
        {"render folder out.wav", "cannot read folder: "},
        {"render six.wav out.wav", "it has 6 channels, the plugin takes one or two."},
        {"render in.wav there.wav", "cannot write there.wav: it exists already; --force"},
        {"render in.wav folder/", "cannot write folder/: its name has to end in one of .wav, "},
        {"render in.wav out", "cannot write out: its name has to end in one of .wav, .flac, "},
        {"render odd.wav out.opus",
         ".opus does not hold this sound (1 channels at 47999 Hz); it "
         "fits .wav, .flac, .ogg, .oga, .aiff, "},
        {"render in.wav /dev/full", "cannot write /dev/full: No space left on device."},
        {"render in.wav /proc/out.wav", "cannot write /proc/out.wav: "},
        {"render in.wav out.wav --preset Nothing", "no preset \"Nothing\", only 60Hz Buzz Kill,"},
        {"render in.wav out.wav --set b9_gain=1", "no control \"b9_gain\""},
        {"render in.wav out.wav --set meter_in=1", "no control \"meter_in\""},
        {"render in.wav out.wav --set trim", "\"trim\" does not have the form SYMBOL=VALUE."},
        {"render in.wav out.wav --set trim=", "\"\" is no value for trim"},
        {"render in.wav out.wav --set trim=20.1", "from -20 to 20 dB."},
        {"render in.wav out.wav --set 'trim=3 Hz'", "\"3 Hz\" is no value for trim"},
        {"render in.wav out.wav --set b1_q=nan", "from 0.1 to 100."},
        {"render in.wav out.wav --set b1_freq=21k", "from 20 to 20000 Hz."},
        {"render in.wav out.wav --set b1_type=2.5", "a whole number from 0 to 12 or one of Flat,"},
        {"render in.wav out.wav --set b1_type=Bel", "\"Bel\" is no value for b1_type"},
        {"response out.pdf", "has to end in .csv, .txt, .json, .png or .svg."},
        {"response none/out.csv", "cannot write none/out.csv: "},
        {"--bundle folder render in.wav out.wav", "there is no LV2 bundle at folder."},
        {"info >/dev/full", "cannot write standard output: No space left on device."},
        {"open six.wav", "it has 6 channels, the plugin takes one or two."},
        {"open empty.wav", "cannot play empty.wav: it is empty."},
        {"open --save there.ttl", "cannot write there.ttl: it exists already; --force"},
        {"open --load none.ttl", "cannot read none.ttl: No such file or directory."},
        {"open --load there.ttl", "cannot read there.ttl: it holds no state of this plugin."},
        {"open --silent --save s.ttl", "there is no display to open a window on"},
        {"import none.txt --save s.ttl", "cannot read none.txt: No such file or directory."},
        {"import text.wav --save s.ttl", "cannot read text.wav: it holds no line such as \"Filter"},
        {"import list.txt", "--save is required;", 2},
        {"screenshot out.jpg", "cannot write out.jpg: its name has to end in .png."},
        {"screenshot out.png --size 1000", "\"1000\" is no size from 500x300 to 7680x4320"},
        {"screenshot out.png --size 499x600", "is no size"},
        {"screenshot out.png --size 99999999999x600", "is no size"},
        {"--verbose", "a command is missing; \"brindle --help\" lists them.", 2},
        {"rendr in.wav", "there is no command \"rendr\"; the nearest is \"render\".", 2},
        {"--loud", "there is no option \"--loud\"", 2},
        {"render in.wav", "IN and OUT are required, or --into and files; \"brindle render --help\"",
         2},
        {"render in.wav folder/in.wav --into out",
         "in.wav and folder/in.wav would both become out"},
        {"render in.wav --into there.wav", "cannot make there.wav: "},
        {"render in.wav --into none/out", "cannot make none/out: No such file or directory."},
        {"render a b --block 0", "Value 0 not in range 1 to 65536;", 2},
        {"render a b --block many", "--block: ", 2},
        {"render a b --preset ''", "--preset: the name is empty;", 2},
        {"response a.csv --rate 7999", "Value 7999 not in range", 2},
        {"open in.wav --input", "FILE excludes --input;", 2},
        {"open --device x", "--device requires --input;", 2},
        {"open in.wav --signal sweep", "FILE excludes --signal;", 2},
        {"--bundle broken response out.csv", "/broken/ cannot be loaded."},
        {"response out.csv", "cannot write out.csv: File too large.", 1, kSmallDisk},
        {"response out.png", "cannot write out.png: File too large.", 1, kSmallDisk},
        {"response out.svg", "cannot write out.svg: File too large.", 1, kSmallDisk},
        {"render long.wav out.wav", "cannot write out.wav: File too large.", 1, kSmallDisk},
        {"render long.wav out.flac", "cannot write out.flac: File too large.", 1, kSmallDisk},
        {"render long.wav out.ogg", "cannot write out.ogg: File too large.", 1, kSmallDisk},
        {"render long.wav out.wav", "interrupted.", 128 + SIGTERM, kStop},
        {"render long.wav --into out", "interrupted.", 128 + SIGTERM, kStop},
        {"screenshot out.png", "the editor cannot be opened on this display.", 1,
         "export LIBGL_DRIVERS_PATH=/none"},
        {"screenshot out.png", "there is no display, and Xvfb, which would stand in, cannot be st",
         1, "PATH=$BRINDLE_FOLDER"},
    };
    const auto before = files();
    for (const Case& each : cases) {
        SCOPED_TRACE(each.arguments);
        const Outcome outcome =
            shell(std::string("unset DISPLAY; ") + each.prelude + "; brindle " + each.arguments);
        EXPECT_EQ(outcome.status, each.status);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err, AllOf(StartsWith("brindle: "), HasSubstr(each.reason)));
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        EXPECT_EQ(files(), before);
    }
    EXPECT_EQ(text_of("there.wav"), "precious\n");
}

TEST_F(Program, WithoutArgumentsItHelpsAndFails) {
    const Outcome outcome = brindle("");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, brindle("--help").out);
    EXPECT_THAT(brindle("--version").out, testing::MatchesRegex("brindle [0-9.]+\n"));
}

// The plugin announces the host's rate on standard output when its editor opens.
TEST_F(Program, StandardOutputCarriesWhatWasAskedForAndNothingElse) {
    EXPECT_THAT(brindle("response - --set trim=2").out, StartsWith("frequency_hz,gain_db,"));
    EXPECT_THAT(brindle("response - --set trim=2").err, "");
    const Outcome quiet = brindle("screenshot -", "unset DISPLAY");
    EXPECT_THAT(quiet.out, StartsWith("\x89PNG"));
    EXPECT_EQ(quiet.err, "");
    const Outcome verbose = brindle("screenshot - --verbose", "unset DISPLAY");
    EXPECT_THAT(verbose.out, StartsWith("\x89PNG"));
    EXPECT_THAT(verbose.err, HasSubstr("HOST SAMPLE RATE"));
}

/// What stands in a text, by a pattern's first group.
std::set<std::string> all_of(const std::string& text, const std::string& pattern) {
    const std::regex expression(pattern);
    std::set<std::string> found;
    for (std::sregex_iterator i(text.begin(), text.end(), expression); i != std::sregex_iterator();
         ++i) {
        found.insert((*i)[1]);
    }
    return found;
}

TEST_F(Program, TheManualPageAndTheCompletionKnowWhatHelpTells) {
    const std::string help = brindle("--help").out;
    std::set<std::string> options = all_of(help, "\n  [-h,]*--([a-z-]+)");
    const auto commands = all_of(help.substr(help.find("\nSubcommands:")), "\n  ([a-z]+) ");
    EXPECT_GE(commands.size(), 5u);
    for (const std::string& command : commands) {
        options.merge(all_of(brindle(command + " --help").out, "\n  [-h,]*--([a-z-]+)"));
    }
    std::string manual = text_of(BRINDLE_PACKAGING "/brindle.1");
    manual = std::regex_replace(manual, std::regex("\\\\-"), "-");
    EXPECT_EQ(all_of(manual, "\n\\.BI? --([a-z-]+)"), options);
    EXPECT_EQ(all_of(manual, "\n\\.B brindle ([a-z]+)"), commands);
    EXPECT_EQ(all_of(manual.substr(0, manual.find(".SH SETTINGS")), "\n\\.TP\n\\.B ([a-z]+)"),
              commands);

    const Outcome completed =
        shell("cat >try <<'END'\n. '" BRINDLE_PACKAGING
              "/brindle.bash'\n"
              "try() { COMP_WORDS=(\"$@\") COMP_CWORD=$(($#-1)); _brindle brindle; "
              "echo \"${COMPREPLY[*]}\"; }\n"
              "try brindle re; try brindle render --no; try brindle info --preset H; "
              "try brindle open --set b8_\nEND\nbash try");
    EXPECT_EQ(completed.out,
              "render response\n--no-settle\nHot\\ Pocket\n"
              "b8_enable= b8_type= b8_gain= b8_freq= b8_q=\n");
}

TEST_F(Program, JsonTellsTheSame) {
    const Outcome outcome = shell(
        "brindle info --json >info; brindle response - --json --set trim=3 >response; "
        "brindle doctor --json >doctor; python3 -c 'import json; "
        "info = json.load(open(\"info\")); control = info[\"controls\"][3]; "
        "point = json.load(open(\"response\"))[0]; doctor = json.load(open(\"doctor\")); "
        "print(info[\"presets\"][1], len(info[\"controls\"]), control[\"symbol\"], "
        "control[\"default\"], info[\"controls\"][1][\"choices\"][12][\"label\"]); "
        "print(point[\"frequency_hz\"], round(point[\"gain_db\"], 3)); "
        "print(*[each[\"subject\"] for each in doctor], sep=\", \")'");
    EXPECT_EQ(outcome.out,
              "Dialog 51 b1_freq 63 Notch\n20.0 3.0\n"
              "plugin, installed bundles, session, display, sound, processor\n")
        << outcome.err;
}

TEST_F(Program, TheDoctorFindsDoubledBundlesAndMissingLibraries) {
    shell(
        "mkdir .lv2 other; for copy in .lv2/brindle.lv2 other/old.lv2 broken; do "
        "cp -r \"$BRINDLE_FOLDER/brindle.lv2\" $copy; done; echo >broken/brindle.so");
    const Outcome healthy =
        brindle("doctor", "export HOME=$PWD LV2_PATH=$PWD/.lv2; unset DISPLAY XDG_SESSION_TYPE");
    EXPECT_EQ(healthy.status, 0);
    EXPECT_THAT(healthy.out,
                AllOf(HasSubstr("good   installed bundles: ~/.lv2/brindle.lv2; hosts take ~/.lv2/"),
                      HasSubstr("note   display: none. To do: set DISPLAY"),
                      HasSubstr("good   processor: ")));
    const Outcome doubled = brindle("doctor", "export HOME=$PWD LV2_PATH=$PWD/.lv2:$PWD/other");
    EXPECT_THAT(doubled.out,
                HasSubstr("note   installed bundles: ~/.lv2/brindle.lv2, ~/other/old.lv2"));
    const Outcome broken = brindle("doctor --bundle broken");
    EXPECT_EQ(broken.status, 1);
    EXPECT_THAT(broken.out, HasSubstr("FAULT  plugin: "));
    EXPECT_EQ(broken.err, "brindle: there is a fault.\n");
}

TEST_F(Program, ValuesMayBeWrittenAsTheEditorShowsThem) {
    brindle(
        "response asked.csv --set b1_type=6 --set b1_freq=1200 --set b1_gain=2.5 --set "
        "b2_enable=0");
    brindle(
        "response shown.csv --set b1_type='Hi Shelf' --set 'b1_freq=1.2 kHz' --set b1_gain=+2.5dB "
        "--set b2_enable=Off");
    EXPECT_EQ(text_of("shown.csv"), text_of("asked.csv"));
    EXPECT_NE(text_of("asked.csv"), "");
}

TEST_F(Program, TheBundleIsFoundBesideTheProgramOrOnTheSearchPath) {
    const std::string alone = "cp \"$BRINDLE_FOLDER/brindle\" program; LV2_PATH=";
    const std::string found = shell(alone + "\"$BRINDLE_FOLDER\" ./program info").out;
    EXPECT_THAT(found, AllOf(HasSubstr("Brindle Console EQ (Mono)"), HasSubstr("12 Notch"),
                             HasSubstr("secb_q"), HasSubstr("Push+Pull Tone")));
    EXPECT_EQ(brindle("info").out, found);
    const Outcome lost = shell(alone + "/none ./program info");
    EXPECT_EQ(lost.status, 1);
    EXPECT_THAT(lost.err, HasSubstr("give its bundle with --bundle"));
}

}  // namespace
}  // namespace brindle::test
