// SPDX-License-Identifier: ISC
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

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
        {"h.wav", "o.mp3", kShortWav, SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III},
        {"i.flac", "o.wav", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, SF_FORMAT_WAV | SF_FORMAT_PCM_24},
        {"j.mp3", "o.wav", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, kFloatWav},
        {"k.ogg", "o.aiff", SF_FORMAT_OGG | SF_FORMAT_VORBIS, SF_FORMAT_AIFF | SF_FORMAT_FLOAT},
        {"l.wav", "o.flac", kFloatWav, SF_FORMAT_FLAC | SF_FORMAT_PCM_24},
        {"m.wav", "o.flac", SF_FORMAT_WAV | SF_FORMAT_ULAW, SF_FORMAT_FLAC | SF_FORMAT_PCM_16},
        {"n.wav", "o.flac", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, SF_FORMAT_FLAC | SF_FORMAT_PCM_S8},
        {"p.au", "o.caf", SF_FORMAT_AU | SF_FORMAT_DOUBLE, SF_FORMAT_CAF | SF_FORMAT_DOUBLE},
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
        EXPECT_NEAR(db(after.level_at(1000.0) / before.level_at(1000.0)), -6.0, 0.1);
    }
}

// Dither and rounding stay below half a 16-bit step, so default settings give the file itself.
TEST_F(RenderCommand, StreamsBeginAndEndWhereOneLikes) {
    save("in.wav", noise(0.999, 30011, 44100, 2, kShortWav));
    const Outcome piped = shell("cat in.wav | brindle render - - >piped.wav");
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
    for (const std::string block : {"1", "64", "1000", "65536"}) {
        ASSERT_EQ(brindle("render --preset Snare in.wav " + block + ".wav --block " + block).status,
                  0);
        EXPECT_EQ(load(block + ".wav").samples, load("1.wav").samples) << block;
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
    // The coder would wrap what lies beyond full scale.
    save("law.wav", tone(1000.0, 0.5, 1.0, 48000, 1, SF_FORMAT_WAV | SF_FORMAT_ULAW));
    EXPECT_THAT(brindle("render law.wav coded.wav --set trim=12").err, HasSubstr("clipped"));
    EXPECT_NEAR(db(load("coded.wav").level_at(3000.0) / out.level_at(3000.0)), 0.0, 0.5);
    // Dither takes a full-scale sample above full scale, which is no clipping.
    Sound full = tone(0.0, 0.0, 1.0, 48000, 1, kFloatWav);
    for (size_t i = 0; i < full.samples.size(); ++i) full.samples[i] = i % 2 == 0 ? 1.0f : -1.0f;
    save("full.wav", full);
    EXPECT_EQ(brindle("render full.wav full.flac").err, "");
    save("float.wav", tone(1000.0, 0.5, 1.0, 48000, 1, kFloatWav));
    EXPECT_THAT(brindle("render float.wav loud.wav --set trim=12").err, Not(HasSubstr("clipped")));
    EXPECT_NEAR(db(load("loud.wav").level_at(1000.0) / 0.5), 12.0, 0.01);
}

TEST_F(RenderCommand, OnlyATerminalSeesProgress) {
    save("in.wav", noise(0.5, 48000, 48000, 1, kShortWav));
    const Outcome piped = brindle("render in.wav piped.wav");
    EXPECT_EQ(piped.err, "");
    const Outcome terminal = shell("script -qec 'brindle render in.wav out.wav' /dev/null");
    EXPECT_THAT(terminal.out, AllOf(HasSubstr("Rendering ["), HasSubstr("100 %, 0 s left")));
}

// So long that their engines run at the same time: what these share, they disturb.
TEST_F(RenderCommand, ManyFilesAreRenderedSideBySideAndBadOnesSpoilNothing) {
    shell("mkdir in; echo text >in/text.wav; touch in/nothing.flac");
    save("in/six.wav", noise(0.5, 1000, 48000, 6, kShortWav));
    std::string inputs = "in/none.wav in/text.wav in/nothing.flac in/six.wav";
    const std::map<std::string, Sound> sounds = {
        {"a.wav", noise(0.2, 200000, 44100, 1, kShortWav)},
        {"b.flac", noise(0.2, 201000, 48000, 2, SF_FORMAT_FLAC | SF_FORMAT_PCM_24)},
        {"c.ogg", noise(0.2, 202000, 44100, 1, SF_FORMAT_OGG | SF_FORMAT_VORBIS)}};
    for (const auto& [name, sound] : sounds) {
        save("in/" + name, sound);
        inputs += " in/" + name;
    }
    const Outcome outcome = brindle("render --into out --preset Kick " + inputs);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "Wrote 3 of 7 files into out.\n");
    EXPECT_THAT(outcome.err, AllOf(HasSubstr("brindle: cannot read in/none.wav: No such"),
                                   HasSubstr("brindle: cannot read in/text.wav: it is no sound"),
                                   HasSubstr("brindle: cannot read in/nothing.flac: it is no"),
                                   HasSubstr("brindle: cannot process in/six.wav: it has 6"),
                                   HasSubstr("brindle: 4 of 7 files could not be rendered.\n")));
    for (const auto& [name, sound] : sounds) {
        SCOPED_TRACE(name);
        brindle("render --preset Kick in/" + name + ' ' + name);
        EXPECT_EQ(load("out/" + name).info.format, sound.info.format);
        EXPECT_EQ(load("out/" + name).info.samplerate, sound.info.samplerate);
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

}  // namespace
}  // namespace brindle::test
