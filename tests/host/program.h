// SPDX-License-Identifier: ISC
/// Runs the built program in a folder of its own, as a person does in a shell.
#pragma once

#include <gtest/gtest.h>
#include <sndfile.h>
#include <sys/wait.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <numbers>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace brindle::test {

struct Outcome {
    int status;  ///< exit status
    std::string out;
    std::string err;
};

/// Interleaved samples and what the file says of them.
struct Sound {
    SF_INFO info = {};
    std::vector<float> samples;

    /// Silence.
    Sound(sf_count_t frames, int rate_hz, int channels, int format)
        : samples(static_cast<size_t>(frames * channels)) {
        info.samplerate = rate_hz;
        info.channels = channels;
        info.format = format;
    }
    /// Amplitude of the sine at `freq_hz` in a channel's last second.
    [[nodiscard]] double level_at(double freq_hz, int channel = 0) const {
        const float* last = samples.data() + samples.size() - info.samplerate * info.channels;
        double cosine = 0.0;
        double sine = 0.0;
        for (int i = 0; i < info.samplerate; ++i) {
            const double turn = 2.0 * std::numbers::pi * i / info.samplerate;
            // Hann window: the tone need not fit the second a whole number of times.
            const double sample = (1.0 - std::cos(turn)) * last[i * info.channels + channel];
            cosine += sample * std::cos(freq_hz * turn);
            sine += sample * std::sin(freq_hz * turn);
        }
        return 2.0 * std::hypot(cosine, sine) / info.samplerate;
    }
};

/// A sine of `level` at `freq_hz`, on the first of `channels`; the others are silent.
inline Sound tone(double freq_hz, double level, double seconds, int rate_hz, int channels,
                  int format) {
    const auto frames = static_cast<int>(seconds * rate_hz);
    Sound sound(frames, rate_hz, channels, format);
    for (int i = 0; i < frames; ++i) {
        const double phase = 2.0 * std::numbers::pi * freq_hz * i / rate_hz;
        sound.samples[i * channels] = static_cast<float>(level * std::sin(phase));
    }
    return sound;
}

/// Noise from a fixed seed on all channels, within +-level.
inline Sound noise(double level, int frames, int rate_hz, int channels, int format) {
    Sound sound(frames, rate_hz, channels, format);
    std::mt19937 random(7);
    std::uniform_real_distribution<double> sample(-level, level);
    for (float& each : sound.samples) each = static_cast<float>(sample(random));
    return sound;
}

/// A test that begins in an empty folder, which is removed at its end. Shell commands find the
/// built program on their path, and its folder in $BRINDLE_FOLDER.
class ProgramTest : public testing::Test {
  protected:
    ProgramTest() {
        std::string name = std::filesystem::temp_directory_path() / "brindle-test-XXXXXX";
        folder_ = mkdtemp(name.data());
        setenv("BRINDLE_FOLDER", BRINDLE_BUILD, 1);
        static const std::string kPath = std::string(BRINDLE_BUILD ":") + std::getenv("PATH");
        setenv("PATH", kPath.c_str(), 1);
    }
    ~ProgramTest() override { std::filesystem::remove_all(folder_); }

    /// Runs shell commands in the folder; `wait_for COMMAND...` waits until that succeeds.
    Outcome shell(const std::string& command) {
        // Beside the folder, so that files() sees what the program made and nothing else.
        const std::string out = folder_.string() + ".out";
        const std::string err = folder_.string() + ".err";
        const std::string line =
            "wait_for() { for i in $(seq 600); do \"$@\" >/dev/null 2>&1 && return; sleep 0.05; "
            "done; }; cd '" +
            folder_.string() + "' && { " + command + "; } >" + out + " 2>" + err;
        const int status = std::system(line.c_str());
        const Outcome outcome = {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text_of(out),
                                 text_of(err)};
        std::filesystem::remove(out);
        std::filesystem::remove(err);
        return outcome;
    }
    /// Runs `brindle ARGUMENTS` (shell syntax) with the folder as the working directory; `prelude`
    /// are shell commands to run before it.
    Outcome brindle(const std::string& arguments, const std::string& prelude = ":") {
        return shell(prelude + "; \"$BRINDLE_FOLDER/brindle\" " + arguments);
    }

    [[nodiscard]] std::string path(const std::string& name) const { return folder_ / name; }
    void save(const std::string& name, Sound sound) const {
        SNDFILE* file = sf_open(path(name).c_str(), SFM_WRITE, &sound.info);
        ASSERT_NE(file, nullptr) << sf_strerror(nullptr);
        sf_write_float(file, sound.samples.data(), static_cast<sf_count_t>(sound.samples.size()));
        ASSERT_EQ(sf_close(file), 0);
    }
    [[nodiscard]] Sound load(const std::string& name) const {
        SF_INFO info = {};
        SNDFILE* file = sf_open(path(name).c_str(), SFM_READ, &info);
        EXPECT_NE(file, nullptr) << name << ": " << sf_strerror(nullptr);
        Sound sound(info.frames, info.samplerate, info.channels, info.format);
        sound.info = info;
        if (file) sf_readf_float(file, sound.samples.data(), info.frames);
        sf_close(file);
        return sound;
    }
    [[nodiscard]] std::string text_of(const std::string& name) const {
        std::stringstream text;
        text << std::ifstream(folder_ / name).rdbuf();
        return text.str();
    }
    /// A column of a table of responses by frequency.
    [[nodiscard]] std::map<double, double> table(const std::string& name,
                                                 const std::string& column = "gain_db") const {
        std::map<double, double> values;
        std::istringstream text(text_of(name));
        std::string line;
        std::getline(text, line);
        EXPECT_TRUE(line.starts_with("frequency_hz,gain_db,phase_deg,group_delay_ms")) << line;
        const auto before = line.substr(0, line.find(column));
        const auto place = std::count(before.begin(), before.end(), ',');
        while (std::getline(text, line)) {
            std::istringstream fields(line);
            std::string value;
            for (auto i = place; i >= 0; --i) std::getline(fields, value, ',');
            values[std::stod(line)] = std::stod(value);
        }
        return values;
    }
    /// Names in the folder, hidden ones too.
    [[nodiscard]] std::set<std::string> files() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
            names.insert(entry.path().filename());
        }
        return names;
    }

  private:
    std::filesystem::path folder_;
};

}  // namespace brindle::test
