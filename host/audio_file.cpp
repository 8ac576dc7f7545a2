// SPDX-License-Identifier: ISC
#include "host/audio_file.h"

#include <fcntl.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <filesystem>
#include <utility>

#include "host/user_error.h"

namespace brindle {
namespace {

/// Containers by extension; `fallback` is the sample format where the source's does not fit.
struct Container {
    const char* extension;
    int format;
    int fallback;
};
constexpr Container kContainers[] = {
    {".wav", SF_FORMAT_WAV, SF_FORMAT_FLOAT},
    {".flac", SF_FORMAT_FLAC, SF_FORMAT_PCM_24},
    {".ogg", SF_FORMAT_OGG, SF_FORMAT_VORBIS},
};

struct IntegerFormat {
    int format;
    int bits;
};
constexpr IntegerFormat kIntegerFormats[] = {
    {SF_FORMAT_PCM_S8, 8},  {SF_FORMAT_PCM_U8, 8},  {SF_FORMAT_PCM_16, 16},
    {SF_FORMAT_PCM_24, 24}, {SF_FORMAT_PCM_32, 32},
};

int bits_of(int format) {
    for (const IntegerFormat& each : kIntegerFormats) {
        if (each.format == (format & SF_FORMAT_SUBMASK)) return each.bits;
    }
    return 0;
}

/// Floating-point samples, and the lossy codecs built on them, can exceed full scale.
bool has_ceiling(int format) {
    const int kind = format & SF_FORMAT_SUBMASK;
    return kind != SF_FORMAT_FLOAT && kind != SF_FORMAT_DOUBLE && kind != SF_FORMAT_VORBIS &&
           kind != SF_FORMAT_OPUS;
}

bool same_container(int a, int b) {
    const int wav_family[] = {SF_FORMAT_WAV, SF_FORMAT_WAVEX, SF_FORMAT_RF64};
    const auto is_wav = [&](int format) {
        return std::ranges::find(wav_family, format & SF_FORMAT_TYPEMASK) != std::end(wav_family);
    };
    return (a & SF_FORMAT_TYPEMASK) == (b & SF_FORMAT_TYPEMASK) || (is_wav(a) && is_wav(b));
}

SF_INFO output_format(const std::string& target, const SF_INFO& source) {
    SF_INFO info = {};
    info.samplerate = source.samplerate;
    info.channels = source.channels;
    info.format = source.format;
    const std::string extension = std::filesystem::path(target).extension();
    for (const Container& container : kContainers) {
        if (strcasecmp(container.extension, extension.c_str()) != 0) continue;
        if (same_container(container.format, source.format)) return info;
        info.format = container.format | (source.format & SF_FORMAT_SUBMASK);
        if (sf_format_check(&info) == 0) info.format = container.format | container.fallback;
        return info;
    }
    return info;
}

SNDFILE* open_for_writing(OutputFile& output, SF_INFO info) {
    static constexpr auto kSelf = [](void* data) { return static_cast<OutputFile*>(data); };
    SF_VIRTUAL_IO io = {
        .get_filelen = [](void* data) -> sf_count_t {
            const sf_count_t position = kSelf(data)->seek(0, SEEK_CUR);
            const sf_count_t length = kSelf(data)->seek(0, SEEK_END);
            kSelf(data)->seek(position, SEEK_SET);
            return length;
        },
        .seek = [](sf_count_t offset, int whence, void* data) -> sf_count_t {
            return kSelf(data)->seek(offset, whence);
        },
        .read = [](void*, sf_count_t, void*) -> sf_count_t { return 0; },
        .write = [](const void* bytes, sf_count_t size, void* data) -> sf_count_t {
            return kSelf(data)->write(bytes, static_cast<size_t>(size)) ? size : 0;
        },
        .tell = [](void* data) -> sf_count_t { return kSelf(data)->seek(0, SEEK_CUR); },
    };
    return sf_open_virtual(&io, SFM_WRITE, &info, &output);
}

}  // namespace

AudioReader::AudioReader(std::string path) : path_(std::move(path)) {
    const int descriptor = open(path_.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) throw file_error("read", path_, errno);
    file_.reset(sf_open_fd(descriptor, SFM_READ, &info_, SF_TRUE));
    if (!file_) {
        // libsndfile has closed the descriptor.
        throw UserError("cannot read " + path_ + ": it is no sound file of a known format.");
    }
}

size_t AudioReader::read(float* samples, size_t frames) {
    const sf_count_t count = sf_readf_float(file_.get(), samples, static_cast<sf_count_t>(frames));
    if (sf_error(file_.get()) != SF_ERR_NO_ERROR) {
        throw UserError("cannot read " + path_ + ": " + sf_strerror(file_.get()));
    }
    return static_cast<size_t>(std::max<sf_count_t>(count, 0));
}

AudioWriter::AudioWriter(OutputFile& output, const AudioReader& source)
    : output_(output), channels_(source.info().channels) {
    const SF_INFO info = output_format(output.target(), source.info());
    integer_bits_ = bits_of(info.format);
    has_ceiling_ = has_ceiling(info.format);
    file_.reset(open_for_writing(output, info));
    if (!file_) {
        output.check();
        throw UserError("cannot write " + output.target() + ": " + sf_strerror(nullptr));
    }
    for (int tag = SF_STR_FIRST; tag <= SF_STR_LAST; ++tag) {
        const char* text = sf_get_string(source.file_.get(), tag);
        if ((text != nullptr) && tag != SF_STR_SOFTWARE) sf_set_string(file_.get(), tag, text);
    }
}

void AudioWriter::measure(const float* samples, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const float size = std::abs(samples[i]);
        peak_ = std::max(peak_, size);
        if (has_ceiling_ && size > 1.0f) ++clipped_;
    }
}

void AudioWriter::write(const float* samples, size_t frames) {
    const size_t count = frames * static_cast<size_t>(channels_);
    measure(samples, count);
    const auto frame_count = static_cast<sf_count_t>(frames);
    sf_count_t written = 0;
    if (integer_bits_ != 0) {
        // libsndfile's own conversion from float scales by 2^(n-1) - 1, which would alter samples
        // that the plugin passes unchanged.
        const double scale = std::ldexp(1.0, integer_bits_ - 1);
        const int shift = 32 - integer_bits_;
        integers_.resize(count);
        for (size_t i = 0; i < count; ++i) {
            const double scaled = std::nearbyint(samples[i] * scale);
            const double value = std::isnan(scaled) ? 0.0 : std::clamp(scaled, -scale, scale - 1.0);
            integers_[i] = static_cast<int>(static_cast<int64_t>(value) * (int64_t{1} << shift));
        }
        written = sf_writef_int(file_.get(), integers_.data(), frame_count);
    } else if (has_ceiling_) {
        limited_.resize(count);
        for (size_t i = 0; i < count; ++i) {
            limited_[i] = std::isnan(samples[i]) ? 0.0f : std::clamp(samples[i], -1.0f, 1.0f);
        }
        written = sf_writef_float(file_.get(), limited_.data(), frame_count);
    } else {
        written = sf_writef_float(file_.get(), samples, frame_count);
    }
    output_.check();
    if (written != frame_count) {
        throw UserError("cannot write " + output_.target() + ": " + sf_strerror(file_.get()));
    }
}

void AudioWriter::close() {
    const int error = sf_close(file_.release());
    output_.check();
    if (error != 0) {
        throw UserError("cannot write " + output_.target() + ": " + sf_error_number(error));
    }
}

}  // namespace brindle
