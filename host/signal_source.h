// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace brindle {

/// An endless signal.
class SignalSource {
  public:
    SignalSource() = default;
    SignalSource(const SignalSource&) = delete;
    SignalSource& operator=(const SignalSource&) = delete;
    virtual ~SignalSource() = default;

    [[nodiscard]] virtual int channels() const { return 2; }
    [[nodiscard]] virtual double rate() const { return 48000.0; }  ///< Hz
    /// Reads the next frames, interleaved. Real-time safe.
    virtual void read(float* samples, size_t frames) = 0;
};

/// A sound file in memory, repeated without end.
class FileLoop : public SignalSource {
  public:
    /// Most samples that are kept of a file: 23 minutes of stereo at 48 kHz.
    static constexpr size_t kLongest = size_t{1} << 27;

    /// Throws UserError if the file cannot be read, is empty or has more than two channels. A
    /// longer file is cut, with a warning on standard error.
    explicit FileLoop(const std::string& path);

    [[nodiscard]] int channels() const override { return channels_; }
    [[nodiscard]] double rate() const override { return rate_; }
    void read(float* samples, size_t frames) override;

  private:
    int channels_;
    double rate_;
    std::vector<float> samples_;
    size_t position_ = 0;
};

/// Noise that falls by 3 dB an octave, uncorrelated between the sides, at -18 dB RMS; each run
/// repeats it.
class PinkNoise : public SignalSource {
  public:
    PinkNoise() = default;
    void read(float* samples, size_t frames) override;

  private:
    /// The sum of white noises, each with new values half as often as the one before.
    class Channel {
      public:
        explicit Channel(uint32_t seed) : random_(seed) {}
        float next();

      private:
        static constexpr size_t kRows = 14;
        [[nodiscard]] float draw();
        std::mt19937 random_;
        std::array<float, kRows> rows_ = {};
        float sum_ = 0.0f;
        uint32_t count_ = 0;
    };
    std::array<Channel, 2> channels_ = {Channel(1), Channel(2)};
};

/// A sine that rises from 20 Hz to 20 kHz in ten seconds (logarithmically), again and again; -18 dB
/// peak on both sides.
class Sweep : public SignalSource {
  public:
    void read(float* samples, size_t frames) override;

  private:
    double freq_hz_ = 20.0;
    double phase_ = 0.0;  ///< turns
};

/// The file at `path`, or if that is empty the built-in signal `name` ("pink" or "sweep"). Throws
/// UserError if the file cannot be played.
std::unique_ptr<SignalSource> make_source(const std::string& path, const std::string& name);

}  // namespace brindle
