// SPDX-License-Identifier: ISC
#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "tests/host/program.h"

namespace brindle::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr int kFloatWav = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
constexpr int kShortWav = SF_FORMAT_WAV | SF_FORMAT_PCM_16;

double db(double ratio) {
    return 20.0 * std::log10(ratio);
}

using RenderCommand = ProgramTest;

TEST_F(RenderCommand, KeepsFormatAndLengthUnlessTheEndingTellsAnother) {
    struct Case {
        const char *in, *out;
        int source, target;
        int rate_hz = 48000, channels = 1;
    };
    const Case cases[] = {
        {"a.wav", "o.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_24, SF_FORMAT_WAV | SF_FORMAT_PCM_24,
         96000, 2},
        {"b.wav", "o.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, SF_FORMAT_WAV | SF_FORMAT_PCM_U8,
         8000},
        {"c.wav", "o.wav", SF_FORMAT_WAVEX | SF_FORMAT_FLOAT, SF_FORMAT_WAVEX | SF_FORMAT_FLOAT,
         192000, 2},
        {"d.wav", "o.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_32, SF_FORMAT_WAV | SF_FORMAT_PCM_32,
         768000},
        {"e.wav", "o.FLAC", kShortWav, SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 44100, 2},
        {"f.wav", "o.ogg", kShortWav, SF_FORMAT_OGG | SF_FORMAT_VORBIS, 44100, 2},
        {"g.wav", "o.opus", kShortWav, SF_FORMAT_OGG | SF_FORMAT_OPUS},
        {"h.wav", "o.mp3", kShortWav, SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III},
        {"i.flac", "o.wav", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, SF_FORMAT_WAV | SF_FORMAT_PCM_24},
        {"j.mp3", "o.wav", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, kFloatWav},
        {"k.ogg", "o.aiff", SF_FORMAT_OGG | SF_FORMAT_VORBIS, SF_FORMAT_AIFF | SF_FORMAT_FLOAT},
        {"l.wav", "o.flac", kFloatWav, SF_FORMAT_FLAC | SF_FORMAT_PCM_24},
        {"m.wav", "o.flac", SF_FORMAT_WAV | SF_FORMAT_ULAW, SF_FORMAT_FLAC | SF_FORMAT_PCM_16},
        {"n.wav", "o.flac", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, SF_FORMAT_FLAC | SF_FORMAT_PCM_S8},
        {"p.au", "o.caf", SF_FORMAT_AU | SF_FORMAT_DOUBLE, SF_FORMAT_CAF | SF_FORMAT_DOUBLE},
        {"q.wav", "o.w64", kShortWav, SF_FORMAT_W64 | SF_FORMAT_PCM_16},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.in + std::string(" to ") + each.out);
        save(each.in, tone(1000.0, 0.5, 1.2, each.rate_hz, each.channels, each.source));
        const Outcome outcome =
            brindle(std::string("render --force --set trim=-6 ") + each.in + ' ' + each.out);
        ASSERT_EQ(outcome.status, 0) << outcome.err;
        const Sound before = load(each.in);
        const Sound after = load(each.out);
        EXPECT_EQ(after.info.format, each.target);
        EXPECT_EQ(after.info.samplerate, each.rate_hz);
        EXPECT_EQ(after.info.channels, each.channels);
        EXPECT_EQ(after.info.frames, before.info.frames);
        EXPECT_NEAR(db(level_at(after, 1000.0, 0) / level_at(before, 1000.0, 0)), -6.0, 0.1);
    }
}

// Dither and rounding stay below half a 16-bit step, so default settings give the file itself.
TEST_F(RenderCommand, StreamsBeginAndEndWhereOneLikes) {
    save("in.wav", noise(0.999, 30011, 44100, 2, kShortWav));
    const Outcome piped = shell("cat in.wav | " BRINDLE_PROGRAM " render - - >piped.wav");
    EXPECT_EQ(piped.err, "");
    EXPECT_EQ(load("piped.wav").samples, load("in.wav").samples);
    EXPECT_EQ(brindle("render in.wav /dev/null").status, 0);
    EXPECT_EQ(brindle("render in.wav piped.wav --set trim=-6").status, 1);
    EXPECT_EQ(brindle("render in.wav piped.wav --set trim=-6 --force").status, 0);
    EXPECT_NE(load("piped.wav").samples, load("in.wav").samples);
    EXPECT_THAT(files(), ElementsAre("in.wav", "piped.wav"));
}

TEST_F(RenderCommand, ACutFileIsRenderedWithAWarning) {
    save("whole.wav", noise(0.5, 1000, 48000, 1, kShortWav));
    shell("head -c 1044 whole.wav >cut.wav");
    const Outcome outcome = brindle("render cut.wav out.wav");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.err, HasSubstr("brindle: cut.wav ends before its header says"));
    EXPECT_EQ(load("out.wav").info.frames, 500);
    EXPECT_EQ(brindle("render whole.wav again.wav").err, "");
    save("empty.wav", noise(0.5, 0, 48000, 1, kShortWav));
    EXPECT_EQ(brindle("render empty.wav nothing.wav").status, 0);
    EXPECT_EQ(load("nothing.wav").info.frames, 0);
}

TEST_F(RenderCommand, TheBlockLengthDoesNotMatter) {
    save("in.wav", noise(0.5, 10007, 48000, 2, kFloatWav));
    for (const char* block : {"1", "64", "1000", "65536"}) {
        const std::string arguments =
            std::string("render in.wav ") + block + ".wav --preset Snare --block " + block;
        ASSERT_EQ(brindle(arguments).status, 0);
        EXPECT_EQ(load(std::string(block) + ".wav").samples, load("1.wav").samples) << block;
    }
}

TEST_F(RenderCommand, TheGlidesEndBeforeTheFirstSampleUnlessToldNotTo) {
    save("in.wav", tone(1000.0, 0.5, 0.01, 48000, 1, kFloatWav));
    // Sections start switched on and glide to off; flat ones do so unheard.
    const std::string settings = " --set trim=-20 --set seca_type=Flat --set secb_type=Flat ";
    ASSERT_EQ(brindle("render in.wav settled.wav" + settings).status, 0);
    ASSERT_EQ(brindle("render in.wav gliding.wav --no-settle" + settings).status, 0);
    const Sound in = load("in.wav");
    const Sound settled = load("settled.wav");
    const Sound gliding = load("gliding.wav");
    for (size_t i = 0; i < in.samples.size(); ++i) {
        ASSERT_NEAR(settled.samples[i], 0.1f * in.samples[i], 3e-6f) << i;
    }
    // The first step of 2 % of the way is all that has happened in the first 64 samples.
    EXPECT_NEAR(gliding.samples[12], (0.98f + 0.02f * 0.1f) * in.samples[12], 3e-6f);
}

TEST_F(RenderCommand, SamplesBeyondFullScaleAreClippedAndReported) {
    save("in.wav", tone(1000.0, 0.5, 1.0, 48000, 1, kShortWav));
    const Outcome outcome = brindle("render in.wav out.wav --set trim=12");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.err, AllOf(HasSubstr("clipped"), HasSubstr("6.0 dB")));
    const Sound in = load("in.wav");
    const Sound out = load("out.wav");
    for (size_t i = 0; i < in.samples.size(); ++i) {
        const float wanted = std::clamp(in.samples[i] * std::pow(10.0f, 0.6f), -1.0f, 1.0f);
        ASSERT_NEAR(out.samples[i], wanted, 1e-4f) << i;
    }
    // Dither takes a full-scale sample above full scale, which is no clipping.
    Sound full = tone(0.0, 0.0, 1.0, 48000, 1, kFloatWav);
    for (size_t i = 0; i < full.samples.size(); ++i) full.samples[i] = i % 2 == 0 ? 1.0f : -1.0f;
    save("full.wav", full);
    EXPECT_EQ(brindle("render full.wav full.flac").err, "");
    save("float.wav", tone(1000.0, 0.5, 1.0, 48000, 1, kFloatWav));
    EXPECT_THAT(brindle("render float.wav loud.wav --set trim=12").err, Not(HasSubstr("clipped")));
    EXPECT_NEAR(db(level_at(load("loud.wav"), 1000.0, 0) / 0.5), 12.0, 0.01);
}

TEST_F(RenderCommand, OnlyATerminalSeesProgress) {
    save("in.wav", noise(0.5, 48000, 48000, 1, kShortWav));
    const Outcome piped = brindle("render in.wav piped.wav");
    EXPECT_EQ(piped.err, "");
    const Outcome terminal =
        shell(std::string("script -qec '") + BRINDLE_PROGRAM + " render in.wav out.wav' /dev/null");
    EXPECT_THAT(terminal.out, AllOf(HasSubstr("Rendering ["), HasSubstr("100 %, 0 s left")));
}

TEST_F(RenderCommand, AFullDiskLeavesNothingBehind) {
    save("in.wav", noise(0.5, 200000, 48000, 2, kShortWav));
    for (const char* name : {"out.wav", "out.flac", "out.ogg"}) {
        SCOPED_TRACE(name);
        const Outcome outcome =
            brindle(std::string("render in.wav ") + name, "ulimit -f 20");  // blocks of 512 bytes
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.err,
                  std::string("brindle: cannot write ") + name + ": File too large.\n");
        EXPECT_THAT(files(), ElementsAre("in.wav"));
    }
}

TEST_F(RenderCommand, ManyFilesAreRenderedSideBySideAndBadOnesSpoilNothing) {
    shell("mkdir in; echo text >in/text.wav; touch in/nothing.flac");
    save("in/six.wav", noise(0.5, 1000, 48000, 6, kShortWav));
    std::string inputs = "in/none.wav in/text.wav in/nothing.flac in/six.wav";
    const std::vector<std::string> names = {"a.wav", "b.flac", "c.ogg"};
    const std::vector<int> formats = {
        kShortWav,
        SF_FORMAT_FLAC | SF_FORMAT_PCM_24,
        SF_FORMAT_OGG | SF_FORMAT_VORBIS,
    };
    for (size_t i = 0; i < names.size(); ++i) {
        const int rate_hz = i % 2 == 0 ? 44100 : 48000;
        save("in/" + names[i], noise(0.2, 20000 + 100 * i, rate_hz, 1 + i % 2, formats[i]));
        inputs += " in/" + names[i];
    }
    const Outcome outcome = brindle("render --into out --preset Kick " + inputs);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "Wrote 3 of 7 files into out.\n");
    EXPECT_THAT(outcome.err, AllOf(HasSubstr("brindle: cannot read in/none.wav: No such"),
                                   HasSubstr("brindle: cannot read in/text.wav: it is no sound"),
                                   HasSubstr("brindle: cannot read in/nothing.flac: it is no"),
                                   HasSubstr("brindle: cannot process in/six.wav: it has 6"),
                                   HasSubstr("brindle: 4 of 7 files could not be rendered.\n")));
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        brindle("render --preset Kick in/" + name + ' ' + name);
        EXPECT_EQ(load("out/" + name).info.format, load("in/" + name).info.format);
        EXPECT_EQ(load("out/" + name).info.samplerate, load("in/" + name).info.samplerate);
        EXPECT_EQ(load("out/" + name).samples, load(name).samples);
    }
    EXPECT_EQ(shell("ls -A out").out, "a.wav\nb.flac\nc.ogg\n");
}

TEST_F(RenderCommand, KeepsTags) {
    SF_INFO info = {0, 48000, 1, kShortWav, 0, 0};
    SF_BROADCAST_INFO broadcast = {};
    std::strcpy(broadcast.originator, "stage box");
    broadcast.time_reference_low = 4711;
    SNDFILE* file = sf_open(path("in.wav").c_str(), SFM_WRITE, &info);
    sf_set_string(file, SF_STR_TITLE, "A song");
    sf_set_string(file, SF_STR_ARTIST, "A band");
    sf_command(file, SFC_SET_BROADCAST_INFO, &broadcast, sizeof broadcast);
    sf_close(file);
    ASSERT_EQ(brindle("render in.wav out.wav").status, 0);
    broadcast = {};
    file = sf_open(path("out.wav").c_str(), SFM_READ, &info);
    EXPECT_STREQ(sf_get_string(file, SF_STR_TITLE), "A song");
    EXPECT_STREQ(sf_get_string(file, SF_STR_ARTIST), "A band");
    EXPECT_EQ(sf_command(file, SFC_GET_BROADCAST_INFO, &broadcast, sizeof broadcast), SF_TRUE);
    EXPECT_STREQ(broadcast.originator, "stage box");
    EXPECT_EQ(broadcast.time_reference_low, 4711u);
    sf_close(file);
}

// A request to stop that is pending across exec comes before the first block for certain.
TEST_F(RenderCommand, AnInterruptionLeavesNothingBehind) {
    save("in.wav", noise(0.5, 200000, 48000, 2, kShortWav));
    for (const std::string arguments :
         {"\"in.wav\", \"out.wav\"", "\"in.wav\", \"--into\", \"out\""}) {
        const std::string script =
            "import os, signal; signal.pthread_sigmask(signal.SIG_BLOCK, [signal.SIGTERM]); "
            "os.kill(os.getpid(), signal.SIGTERM); "
            "os.execv(os.environ[\"BRINDLE\"], [\"brindle\", \"render\", " +
            arguments + "])";
        const Outcome outcome = shell("python3 -c '" + script + "'");
        EXPECT_EQ(outcome.status, 128 + SIGTERM);
        EXPECT_EQ(outcome.err, "brindle: interrupted.\n");
        EXPECT_THAT(files(), ElementsAre("in.wav"));
    }
}

}  // namespace
}  // namespace brindle::test
