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

/// A sound file being read (whatever libsndfile reads: WAV, FLAC, Ogg and more).
class AudioReader {
  public:
    /// Throws UserError where the file cannot be read.
    explicit AudioReader(std::string path);

    /// Channels, rate, frames and format.
    [[nodiscard]] const SF_INFO& info() const { return info_; }
    /// Reads up to `frames` interleaved frames; fewer at the end, then none. Full scale is 1.
    /// Throws UserError where the file is damaged.
    size_t read(float* samples, size_t frames);

  private:
    friend class AudioWriter;
    std::string path_;
    SF_INFO info_ = {};
    SndfilePtr file_;
};

/// A sound file being written in the format of the one that it is made from.
class AudioWriter {
  public:
    /// Rate, channels, sample format and tags are those of `source`. The container is that of the
    /// target's extension (.wav, .flac, .ogg); where it cannot hold the sample format, the
    /// container's best takes its place. Throws UserError where nothing can be written.
    AudioWriter(OutputFile& output, const AudioReader& source);

    /// Appends interleaved frames. Integer samples are rounded to nearest and clipped at full
    /// scale. Throws UserError where that fails.
    void write(const float* samples, size_t frames);
    /// Completes the file. Throws UserError where that fails.
    void close();

    /// Samples that lay beyond full scale in a format that cannot hold them.
    [[nodiscard]] int64_t clipped() const { return clipped_; }
    /// Largest absolute sample so far.
    [[nodiscard]] float peak() const { return peak_; }

  private:
    void measure(const float* samples, size_t count);

    OutputFile& output_;
    int channels_;
    int integer_bits_;  ///< bits of an integer sample, 0 in formats of another kind
    bool has_ceiling_;  ///< the format cannot hold samples beyond full scale
    int64_t clipped_ = 0;
    float peak_ = 0.0f;
    std::vector<float> limited_;
    std::vector<int> integers_;
    SndfilePtr file_;
};

}  // namespace brindle
