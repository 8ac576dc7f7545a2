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
    /// The next frames, interleaved. Real-time safe.
    virtual void read(float* samples, size_t frames) = 0;
};

/// A sound file, over and over, held in memory.
class FileLoop : public SignalSource {
  public:
    /// What is held of a file at most [samples]: 23 minutes of stereo at 48 kHz.
    static constexpr size_t kLongest = size_t{1} << 27;

    /// Throws UserError where the file cannot be read or has no sound for the plugin. A file that
    /// is too long is cut, which is told on standard error.
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

/// Noise that falls by 3 dB an octave, different on both sides, at -18 dB RMS; the same at each
/// start.
class PinkNoise : public SignalSource {
  public:
    PinkNoise() = default;
    void read(float* samples, size_t frames) override;

  private:
    /// Sum of white noises that take a new value half as often each, and one that always does.
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

/// A sine that rises from 20 Hz to 20 kHz in ten seconds, by the same interval each second, and
/// starts anew; at -18 dB peak on both sides.
class Sweep : public SignalSource {
  public:
    void read(float* samples, size_t frames) override;

  private:
    double freq_hz_ = 20.0;
    double phase_ = 0.0;  ///< turns
};

/// The file at `path`, or where that is empty the built-in signal `name` ("pink" or "sweep").
/// Throws UserError where the file cannot be played.
std::unique_ptr<SignalSource> make_source(const std::string& path, const std::string& name);

}  // namespace brindle
