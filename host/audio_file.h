// SPDX-License-Identifier: ISC
#pragma once

#include <sndfile.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/output_file.h"

namespace brindle {

struct SndfileClose {
    void operator()(SNDFILE* file) const { sf_close(file); }
};
using SndfilePtr = std::unique_ptr<SNDFILE, SndfileClose>;

/// Reads a sound file in any format that libsndfile knows.
class AudioReader {
  public:
    /// "-" is standard input. Throws UserError if the file cannot be read.
    explicit AudioReader(const std::string& path);

    /// Channels, rate, frames and format.
    [[nodiscard]] const SF_INFO& info() const { return info_; }
    /// Reads up to `frames` interleaved frames and returns their number, 0 at the end. Full scale
    /// is 1. Throws UserError if the file is damaged.
    size_t read(float* samples, size_t frames);
    /// A WAV file whose data end before its header says.
    [[nodiscard]] bool is_cut_short() const;

  private:
    friend class AudioWriter;
    std::string name_;  ///< for messages
    SF_INFO info_ = {};
    SndfilePtr file_;
};

/// The format in which `target` holds the sound of a source with its rate and channels. The ending
/// chooses the container, a stream has the source's. A container that cannot hold the source's
/// sample format gets the nearest better one. Throws UserError, which names the endings that work.
SF_INFO output_format(const std::string& target, const SF_INFO& source);

/// Writes a sound file in the format of another.
class AudioWriter {
  public:
    /// Writes output_format() and keeps the tags of `source`. Throws UserError if nothing can be
    /// written.
    AudioWriter(OutputFile& output, const AudioReader& source);

    /// Appends interleaved frames. Integer samples are rounded to the nearest and clipped at full
    /// scale. Throws UserError on failure.
    void write(const float* samples, size_t frames);
    /// Completes the file. Throws UserError on failure.
    void close();

    /// Samples beyond full scale so far, by more than dither, in a format that cannot hold them.
    [[nodiscard]] int64_t clipped() const { return clipped_; }
    /// Largest absolute sample so far.
    [[nodiscard]] float peak() const { return peak_; }

  private:
    void measure(const float* samples, size_t count);

    OutputFile& output_;
    int channels_;
    int integer_bits_;  ///< bits of an integer sample, 0 in other formats
    bool has_ceiling_;  ///< the format cannot hold samples beyond full scale
    int64_t clipped_ = 0;
    float peak_ = 0.0f;
    std::vector<float> limited_;
    std::vector<int> integers_;
    SndfilePtr file_;
};

}  // namespace brindle
