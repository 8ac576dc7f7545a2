// SPDX-License-Identifier: ISC
#include "host/signal_source.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

#include "host/audio_file.h"
#include "host/console.h"
#include "host/interrupt.h"
#include "host/user_error.h"

namespace brindle {
namespace {

constexpr size_t kReadFrames = 65536;
constexpr float kLevel = 0.12589255f;  // -18 dB
constexpr double kSweepStartHz = 20.0;
constexpr double kSweepEndHz = 20000.0;
constexpr double kSweepSeconds = 10.0;

}  // namespace

FileLoop::FileLoop(const std::string& path) {
    AudioReader reader(path);
    channels_ = reader.info().channels;
    rate_ = reader.info().samplerate;
    if (channels_ > 2) {
        throw UserError("cannot play " + path + ": it has " + std::to_string(channels_) +
                        " channels, the plugin takes one or two.");
    }
    const auto width = static_cast<size_t>(channels_);
    std::vector<float> part(kReadFrames * width);
    while (const size_t count = reader.read(part.data(), kReadFrames)) {
        throw_if_interrupted();
        const size_t room = kLongest - samples_.size();
        samples_.insert(samples_.end(), part.begin(),
                        part.begin() + static_cast<ptrdiff_t>(std::min(room, count * width)));
        if (room >= count * width) continue;
        warn("only the first %.0f minutes of %s are played.",
             static_cast<double>(kLongest) / (60.0 * rate_ * channels_), path.c_str());
        break;
    }
    if (samples_.empty()) throw UserError("cannot play " + path + ": it is empty.");
}

void FileLoop::read(float* samples, size_t frames) {
    const size_t wanted = frames * static_cast<size_t>(channels_);
    for (size_t done = 0; done < wanted;) {
        const size_t count = std::min(wanted - done, samples_.size() - position_);
        std::copy_n(&samples_[position_], count, samples + done);
        position_ = (position_ + count) % samples_.size();
        done += count;
    }
}

/// Uniformly distributed, with variance 1.
float PinkNoise::Channel::draw() {
    const auto unit = static_cast<float>(random_() - std::mt19937::min()) /
                      static_cast<float>(std::mt19937::max() - std::mt19937::min());
    return (2.0f * unit - 1.0f) * std::numbers::sqrt3_v<float>;
}

float PinkNoise::Channel::next() {
    // Row r changes every 2^(r+1) samples: the counter's trailing zeros are the row to change.
    const auto row = static_cast<size_t>(std::countr_zero(++count_));
    if (row < kRows) {
        sum_ -= rows_[row];
        rows_[row] = draw();
        sum_ += rows_[row];
    }
    return (sum_ + draw()) / std::sqrt(static_cast<float>(kRows + 1));
}

void PinkNoise::read(float* samples, size_t frames) {
    for (size_t i = 0; i < frames; ++i) {
        for (size_t side = 0; side < 2; ++side) {
            samples[2 * i + side] = kLevel * channels_[side].next();
        }
    }
}

void Sweep::read(float* samples, size_t frames) {
    const double growth = std::pow(kSweepEndHz / kSweepStartHz, 1.0 / (kSweepSeconds * rate()));
    for (size_t i = 0; i < frames; ++i) {
        const float sample = kLevel * static_cast<float>(std::sin(2.0 * std::numbers::pi * phase_));
        samples[2 * i] = sample;
        samples[2 * i + 1] = sample;
        phase_ += freq_hz_ / rate();
        phase_ -= std::floor(phase_);
        freq_hz_ *= growth;
        if (freq_hz_ > kSweepEndHz) freq_hz_ = kSweepStartHz;
    }
}

std::unique_ptr<SignalSource> make_source(const std::string& path, const std::string& name) {
    if (!path.empty()) return std::make_unique<FileLoop>(path);
    if (name == "sweep") return std::make_unique<Sweep>();
    return std::make_unique<PinkNoise>();
}

}  // namespace brindle
