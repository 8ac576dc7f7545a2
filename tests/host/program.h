// SPDX-License-Identifier: ISC
/// Runs the built program in a folder of its own, as a person does in a shell.
#pragma once

#include <gtest/gtest.h>
#include <sndfile.h>

#include <cstddef>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

/// The built program and its folder in shell commands; their paths may have spaces.
#define BRINDLE_PROGRAM "\"$BRINDLE\""
#define BRINDLE_FOLDER "\"$BRINDLE_FOLDER\""

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
};

/// A sine of `level` at `freq_hz`, on the first of `channels`; the others are silent.
Sound tone(double freq_hz, double level, double seconds, int rate_hz, int channels, int format);
/// Noise from a fixed seed on all channels, within +-level.
Sound noise(double level, size_t frames, int rate_hz, int channels, int format);
/// Amplitude of the sine at `freq_hz` in a channel's last second.
double level_at(const Sound& sound, double freq_hz, int channel);

/// A test that begins in an empty folder, which is removed at its end.
class ProgramTest : public testing::Test {
  protected:
    ProgramTest();
    ~ProgramTest() override;

    /// Runs `brindle ARGUMENTS` (shell syntax) with the folder as the working directory; `prelude`
    /// are shell commands to run before it.
    Outcome brindle(const std::string& arguments, const std::string& prelude = "");
    Outcome shell(const std::string& command);

    [[nodiscard]] std::string path(const std::string& name) const { return folder_ / name; }
    void save(const std::string& name, Sound sound) const;
    [[nodiscard]] Sound load(const std::string& name) const;
    [[nodiscard]] std::string text_of(const std::string& name) const;
    /// A column of a table of responses by frequency.
    [[nodiscard]] std::map<double, double> table(const std::string& name,
                                                 const std::string& column = "gain_db") const;
    /// Names in the folder, hidden ones too, in alphabetical order.
    [[nodiscard]] std::vector<std::string> files() const;

  private:
    std::filesystem::path folder_;
};

}  // namespace brindle::test
