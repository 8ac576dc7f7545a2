// SPDX-License-Identifier: ISC
// The plugin between the ports of sound servers that drive no hardware.
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "tests/host/program.h"

namespace brindle::test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class Input : public ProgramTest {
  protected:
    /// Runs commands beside a server of their own, which waits for its clients in each cycle. One
    /// at a time and always by one name: a killed server keeps its place among the eight that the
    /// system has room for until another of its name starts.
    Outcome with_jack(const std::string& commands) {
        return shell(
            "exec 9>${TMPDIR:-/tmp}/brindle-jack-$(id -u).lock; flock 9; "
            "export JACK_DEFAULT_SERVER=brindle-test JACK_NO_AUDIO_RESERVATION=1 "
            "JACK_NO_START_SERVER=1; "
            "unset DISPLAY; jackd -r -S -t 10000 -d dummy -r 48000 -p 1024 >/dev/null 2>&1 9>&- & "
            "jack=$!; trap 'kill $jack 2>/dev/null; wait $jack' EXIT; "
            "wait_for jack_lsp; " +
            commands);
    }
};

// The tone goes from one client into the other, as it would from a microphone.
TEST_F(Input, SoundsLikeAFileThatIsRendered) {
    save("tone.wav", tone(1000.0, 0.2, 4.0, 48000, 2, SF_FORMAT_WAV | SF_FORMAT_FLOAT));
    const std::string settings = " --set b5_gain=6 --set trim=-3 ";
    const Outcome outcome = with_jack(
        "brindle open tone.wav --no-editor >player & player=$!; "
        "wait_for grep -q Playing player; brindle open --input --save s.ttl" +
        settings +
        ">live & live=$!; wait_for grep -q Playing live; "
        "jack_connect 'Brindle Console EQ:outport 0' 'Brindle Console EQ-01:inport 0' "
        "2>/dev/null; "
        "jack_rec -f heard.wav -b 32 -d 2 'Brindle Console EQ-01:outport 0' "
        "'Brindle Console EQ-01:outport 1' >jack_rec.log 2>&1; "
        "kill -INT $live $player; wait $live && cat live");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.out,
                AllOf(StartsWith("Playing the input (Jack: system, stereo, 48000 Hz, blocks of "
                                 "1024 frames, latency "),
                      HasSubstr("ms). Interrupt it (Ctrl-C) to end.\nXruns: "),
                      EndsWith("Wrote s.ttl.\n")));
    ASSERT_EQ(brindle("render tone.wav rendered.wav --load s.ttl").status, 0);
    const double heard = load("heard.wav").level_at(1000.0);
    EXPECT_NEAR(heard / load("rendered.wav").level_at(1000.0), 1.0, 1e-3);
    EXPECT_NEAR(heard, 0.2 * std::pow(10.0, 3.0 / 20.0), 1e-3);
    EXPECT_LT(load("heard.wav").level_at(1000.0, 1), 1e-5);
}

// Without a server, the sound plays into the void at its own rate.
TEST_F(Input, OutputFallsBackToSilence) {
    for (const int rate_hz : {48000, 44100}) {
        save(std::to_string(rate_hz) + ".wav",
             tone(1000.0, 0.2, 0.5, rate_hz, 1, SF_FORMAT_WAV | SF_FORMAT_FLOAT));
    }
    const Outcome outcome = with_jack(
        "says() { rm -f $1; brindle open --no-editor $1.wav >$1 & player=$!; "
        "wait_for grep -q Playing $1; kill -INT $player; wait $player; echo $? $(cat $1); }; "
        "says 48000; says 44100; kill $jack; wait $jack; says 48000");
    EXPECT_EQ(outcome.out,
              "0 Playing 48000.wav (mono, 48000 Hz) on system. Interrupt it (Ctrl-C) to end.\n"
              "0 Playing 44100.wav (mono, 44100 Hz) in silence, as no sound device takes 44100 Hz. "
              "Interrupt it (Ctrl-C) to end.\n"
              "0 Playing 48000.wav (mono, 48000 Hz) in silence, as there is no sound device. "
              "Interrupt it (Ctrl-C) to end.\n")
        << outcome.err;
}

TEST_F(Input, ALostOrWrongDeviceIsASentenceAndAnExit) {
    const Outcome outcome = with_jack(
        "brindle open --list-devices; timeout 60 brindle open --input --rate 44100; echo status "
        "$?; "
        "timeout 60 brindle open --input --device other; echo status $?; "
        "timeout 60 brindle open --input --save s.ttl >live & live=$!; wait_for grep -q Playing "
        "live; kill -KILL $jack; wait $live; echo status $?");
    EXPECT_EQ(outcome.out,
              "Jack      2 in    2 out   48000 Hz  system (default)\n"
              "status 1\nstatus 1\nstatus 1\n");
    EXPECT_THAT(
        outcome.err,
        AllOf(HasSubstr("brindle: system does not run at 44100 Hz, but at 48000 Hz.\n"),
              HasSubstr("brindle: there is no sound device \"other\" with input and output"),
              HasSubstr("brindle: the sound device was lost.\n")));
    EXPECT_THAT(text_of("s.ttl"), HasSubstr("b1_freq"));
}

// A headless desktop with one output, which is recorded. Its session manager does without
// Bluetooth, which asks for logind and ends it where that does not run.
TEST_F(ProgramTest, PipewirePlaysThroughThePrintedConfiguration) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "PipeWire does not load a library with sanitizers.";
#endif
    save("tone.wav", tone(1000.0, 0.2, 12.0, 48000, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_16));
    const Outcome outcome = shell(
        "exec 9>${TMPDIR:-/tmp}/brindle-jack-$(id -u).lock; flock 9; "
        "export XDG_RUNTIME_DIR=$PWD HOME=$PWD LV2_PATH=$PWD/lv2; unset DISPLAY; umask 077; "
        "folder=.config/pipewire/pipewire.conf.d; mkdir -p $folder lv2; "
        "ln -s \"$BRINDLE_FOLDER/brindle.lv2\" lv2; brindle pipewire --set trim=-4 --set "
        "b5_gain=10 >$folder/brindle.conf; "
        "cat >$folder/sink.conf <<'END'\n"
        "context.objects = [ { factory = adapter args = { factory.name = support.null-audio-sink "
        "node.name = nowhere media.class = Audio/Sink object.linger = true audio.position = [ FL "
        "FR ] } } ]\n"
        "END\n"
        "mkdir .config/wireplumber; grep -v bluetooth /usr/share/wireplumber/wireplumber.conf "
        ">.config/wireplumber/wireplumber.conf; "
        "cat >desktop <<'END'\n"
        "wait_for() { for i in $(seq 600); do eval \"$1\" && return; sleep 0.05; done; }\n"
        "pipewire & pipewire=$!\n"
        "wait_for 'pw-cli info 0'\n"
        "wireplumber & manager=$!\n"
        "wait_for 'pw-link -l | grep \"> nowhere:playback_FR\"'\n"
        "pw-cat -p --target brindle_input tone.wav & player=$!\n"
        "wait_for 'pw-link -l | grep \"> brindle_input:playback_FR\"'\n"
        "timeout -s INT 4 pw-cat -r --target nowhere -P '{ stream.capture.sink = true }' "
        "heard.wav\n"
        "kill $player $manager $pipewire; wait\n"
        "END\n"
        "dbus-run-session -- sh desktop >log 2>&1");
    const Sound heard = load("heard.wav");
    ASSERT_GT(heard.samples.size(), 2u * 48000u) << text_of("log");
    // On a busy machine the desktop's sound has gaps, which the median of ten periods' peaks leaves
    // out.
    for (const size_t channel : {0u, 1u}) {
        std::vector<float> peaks;
        for (size_t i = 48000; i + 960 <= heard.samples.size(); i += 960) {
            float peak = 0.0f;
            for (size_t k = i + channel; k < i + 960; k += 2) {
                peak = std::max(peak, std::abs(heard.samples[k]));
            }
            peaks.push_back(peak);
        }
        std::nth_element(peaks.begin(), peaks.begin() + peaks.size() / 2, peaks.end());
        EXPECT_NEAR(peaks[peaks.size() / 2], 0.2 * std::pow(10.0, 6.0 / 20.0), 2e-3);
    }
}

}  // namespace
}  // namespace brindle::test
