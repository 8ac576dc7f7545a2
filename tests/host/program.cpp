// SPDX-License-Identifier: ISC
#include "tests/host/program.h"

#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <numbers>
#include <random>
#include <sstream>

namespace brindle::test {
namespace fs = std::filesystem;

Sound tone(double freq_hz, double level, double seconds, int rate_hz, int channels, int format) {
    Sound sound;
    sound.info.samplerate = rate_hz;
    sound.info.channels = channels;
    sound.info.format = format;
    const auto frames = static_cast<size_t>(seconds * rate_hz);
    sound.samples.resize(frames * static_cast<size_t>(channels));
    for (size_t i = 0; i < frames; ++i) {
        const double phase = 2.0 * std::numbers::pi * freq_hz * static_cast<double>(i) / rate_hz;
        sound.samples[i * static_cast<size_t>(channels)] =
            static_cast<float>(level * std::sin(phase));
    }
    return sound;
}

Sound noise(double level, size_t frames, int rate_hz, int channels, int format) {
    Sound sound = tone(0.0, 0.0, 0.0, rate_hz, channels, format);
    std::mt19937 random(7);
    std::uniform_real_distribution<double> sample(-level, level);
    sound.samples.resize(frames * static_cast<size_t>(channels));
    for (float& each : sound.samples) each = static_cast<float>(sample(random));
    return sound;
}

double level_at(const Sound& sound, double freq_hz, int channel) {
    const auto channels = static_cast<size_t>(sound.info.channels);
    const auto rate = static_cast<size_t>(sound.info.samplerate);
    const size_t frames = sound.samples.size() / channels;
    double cosine = 0.0;
    double sine = 0.0;
    for (size_t i = frames - rate; i < frames; ++i) {
        const double phase =
            2.0 * std::numbers::pi * freq_hz * static_cast<double>(i) / static_cast<double>(rate);
        // Hann window: the tone need not fit the second a whole number of times.
        const double window = 1.0 - std::cos(2.0 * std::numbers::pi * static_cast<double>(i) /
                                             static_cast<double>(rate));
        const double sample = window * sound.samples[i * channels + static_cast<size_t>(channel)];
        cosine += sample * std::cos(phase);
        sine += sample * std::sin(phase);
    }
    return 2.0 * std::hypot(cosine, sine) / static_cast<double>(rate);
}

ProgramTest::ProgramTest() {
    std::string name = fs::temp_directory_path() / "brindle-test-XXXXXX";
    folder_ = mkdtemp(name.data());
    setenv("BRINDLE_FOLDER", BRINDLE_BUILD, 1);
    setenv("BRINDLE", BRINDLE_BUILD "/brindle", 1);
}

ProgramTest::~ProgramTest() {
    fs::remove_all(folder_);
}

Outcome ProgramTest::shell(const std::string& command) {
    // Beside the folder, so that files() sees what the program made and nothing else.
    const std::string out = folder_.string() + ".out";
    const std::string err = folder_.string() + ".err";
    const std::string line =
        "cd '" + folder_.string() + "' && { " + command + "; } >" + out + " 2>" + err;
    const int status = std::system(line.c_str());
    const Outcome outcome = {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text_of(out),
                             text_of(err)};
    fs::remove(out);
    fs::remove(err);
    return outcome;
}

Outcome ProgramTest::brindle(const std::string& arguments, const std::string& prelude) {
    return shell(prelude + (prelude.empty() ? "" : "; ") + BRINDLE_PROGRAM + ' ' + arguments);
}

void ProgramTest::save(const std::string& name, Sound sound) const {
    SNDFILE* file = sf_open(path(name).c_str(), SFM_WRITE, &sound.info);
    ASSERT_NE(file, nullptr) << sf_strerror(nullptr);
    sf_write_float(file, sound.samples.data(), static_cast<sf_count_t>(sound.samples.size()));
    ASSERT_EQ(sf_close(file), 0);
}

Sound ProgramTest::load(const std::string& name) const {
    Sound sound;
    SNDFILE* file = sf_open(path(name).c_str(), SFM_READ, &sound.info);
    if (!file) {
        ADD_FAILURE() << name << ": " << sf_strerror(nullptr);
        return sound;
    }
    sound.samples.resize(static_cast<size_t>(sound.info.frames * sound.info.channels));
    sf_read_float(file, sound.samples.data(), static_cast<sf_count_t>(sound.samples.size()));
    sf_close(file);
    return sound;
}

std::string ProgramTest::text_of(const std::string& name) const {
    std::ifstream file(folder_ / name);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

std::map<double, double> ProgramTest::table(const std::string& name,
                                            const std::string& column) const {
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

std::vector<std::string> ProgramTest::files() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_)) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace brindle::test
