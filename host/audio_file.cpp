// SPDX-License-Identifier: ISC
#include "host/audio_file.h"

#include <fcntl.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iterator>

#include "host/user_error.h"

namespace brindle {
namespace {

/// Full scale, and the plugin's dither (1e-6) with its rounding: what it adds is not clipping.
constexpr float kCeiling = 1.0f + 2e-6f;

/// What an ending stands for; `codec` is the only one of containers without a choice.
struct Container {
    const char* ending;
    int format;
    int codec = 0;
};
constexpr Container kContainers[] = {
    {".wav", SF_FORMAT_WAV},
    {".flac", SF_FORMAT_FLAC},
    {".ogg", SF_FORMAT_OGG, SF_FORMAT_VORBIS},
    {".oga", SF_FORMAT_OGG, SF_FORMAT_VORBIS},
    {".opus", SF_FORMAT_OGG, SF_FORMAT_OPUS},
    {".mp3", SF_FORMAT_MPEG, SF_FORMAT_MPEG_LAYER_III},
    {".aiff", SF_FORMAT_AIFF},
    {".aif", SF_FORMAT_AIFF},
    {".aifc", SF_FORMAT_AIFF},
    {".caf", SF_FORMAT_CAF},
    {".w64", SF_FORMAT_W64},
    {".rf64", SF_FORMAT_RF64},
    {".au", SF_FORMAT_AU},
    {".snd", SF_FORMAT_AU},
    {".nist", SF_FORMAT_NIST},
    {".sf", SF_FORMAT_IRCAM},
    {".avr", SF_FORMAT_AVR},
    {".paf", SF_FORMAT_PAF},
    {".pvf", SF_FORMAT_PVF},
    {".mat", SF_FORMAT_MAT5},
};

/// Uncompressed sample formats from coarse to fine.
struct SampleFormat {
    int format;
    int bits;
};
constexpr SampleFormat kSampleFormats[] = {
    {SF_FORMAT_PCM_U8, 8},  {SF_FORMAT_PCM_S8, 8}, {SF_FORMAT_PCM_16, 16}, {SF_FORMAT_PCM_24, 24},
    {SF_FORMAT_PCM_32, 32}, {SF_FORMAT_FLOAT, 0},  {SF_FORMAT_DOUBLE, 0},
};

/// Bits of an integer sample, 0 for formats of another kind.
int bits_of(int format) {
    for (const SampleFormat& each : kSampleFormats) {
        if (each.format == (format & SF_FORMAT_SUBMASK)) return each.bits;
    }
    return 0;
}

/// The first row of kSampleFormats that holds everything of a source.
size_t finest_needed(int source_format) {
    int format = source_format & SF_FORMAT_SUBMASK;
    if (format == SF_FORMAT_VORBIS || format == SF_FORMAT_OPUS ||
        (format >= SF_FORMAT_MPEG_LAYER_I && format <= SF_FORMAT_MPEG_LAYER_III)) {
        format = SF_FORMAT_FLOAT;
    }
    if (format == SF_FORMAT_PCM_S8) format = SF_FORMAT_PCM_U8;
    if (format == SF_FORMAT_ALAC_20 || format == SF_FORMAT_ALAC_24) format = SF_FORMAT_PCM_24;
    if (format == SF_FORMAT_ALAC_32) format = SF_FORMAT_PCM_32;
    constexpr size_t k16Bits = 2;  // enough for the companded and adaptive codecs
    for (size_t row = 0; row < std::size(kSampleFormats); ++row) {
        if (kSampleFormats[row].format == format) return row;
    }
    return k16Bits;
}

/// Floating-point samples, and the lossy codecs built on them, can exceed full scale.
bool has_ceiling(int format) {
    return finest_needed(format) < finest_needed(SF_FORMAT_FLOAT);
}

bool same_container(int a, int b) {
    const auto is_wav = [](int format) {
        const int container = format & SF_FORMAT_TYPEMASK;
        return container == SF_FORMAT_WAV || container == SF_FORMAT_WAVEX ||
               container == SF_FORMAT_RF64;
    };
    return (a & SF_FORMAT_TYPEMASK) == (b & SF_FORMAT_TYPEMASK) || (is_wav(a) && is_wav(b));
}

/// Whether libsndfile writes this: it tells for certain only when it opens a file.
bool can_write(SF_INFO info) {
    sf_count_t size = 0;
    SF_VIRTUAL_IO nowhere = {
        .get_filelen = [](void* self) { return *static_cast<sf_count_t*>(self); },
        .seek = [](sf_count_t offset, int, void*) { return offset; },
        .read = [](void*, sf_count_t, void*) { return sf_count_t{0}; },
        .write =
            [](const void*, sf_count_t count, void* self) {
                *static_cast<sf_count_t*>(self) += count;
                return count;
            },
        .tell = [](void* self) { return *static_cast<sf_count_t*>(self); },
    };
    return SndfilePtr(sf_open_virtual(&nowhere, SFM_WRITE, &info, &size)) != nullptr;
}

/// The format of `source` in a container, or the nearest that the container can hold: a better one
/// where there is any, else the best. False if there is none.
bool fit_into(const Container& container, const SF_INFO& source, SF_INFO& info) {
    info = {};
    info.samplerate = source.samplerate;
    info.channels = source.channels;
    const auto fits = [&info](int format) {
        info.format = format;
        return can_write(info);
    };
    if (container.codec != 0) return fits(container.format | container.codec);
    if (same_container(container.format, source.format) && fits(source.format)) return true;
    if (fits(container.format | (source.format & SF_FORMAT_SUBMASK))) return true;
    const size_t needed = finest_needed(source.format);
    for (size_t row = needed; row < std::size(kSampleFormats); ++row) {
        if (fits(container.format | kSampleFormats[row].format)) return true;
    }
    for (size_t row = needed; row-- > 0;) {
        if (fits(container.format | kSampleFormats[row].format)) return true;
    }
    return false;
}

/// The endings whose containers can hold the sound, as a list in words.
std::string endings_for(const SF_INFO& source) {
    std::string endings;
    SF_INFO ignored;
    for (const Container& container : kContainers) {
        if (!fit_into(container, source, ignored)) continue;
        endings += (endings.empty() ? "" : ", ") + std::string(container.ending);
    }
    return endings;
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

/// Copies what broadcast and sampler files say of themselves, where both containers know it.
void copy_chunks(SNDFILE* from, SNDFILE* to) {
    struct Chunk {
        int get, set;
        size_t size;
    };
    constexpr size_t kLongest = 16384;
    constexpr Chunk kChunks[] = {
        {SFC_GET_BROADCAST_INFO, SFC_SET_BROADCAST_INFO, kLongest},
        {SFC_GET_CART_INFO, SFC_SET_CART_INFO, kLongest},
        {SFC_GET_CUE, SFC_SET_CUE, sizeof(SF_CUES)},
        {SFC_GET_INSTRUMENT, SFC_SET_INSTRUMENT, sizeof(SF_INSTRUMENT)},
    };
    for (const Chunk& chunk : kChunks) {
        std::vector<char> data(chunk.size);
        const int size = static_cast<int>(chunk.size);
        if (sf_command(from, chunk.get, data.data(), size) == SF_TRUE) {
            sf_command(to, chunk.set, data.data(), size);
        }
    }
}

}  // namespace

AudioReader::AudioReader(const std::string& path)
    : name_(path == OutputFile::kStream ? "standard input" : path) {
    const bool is_stream = path == OutputFile::kStream;
    const int descriptor = is_stream ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                                     : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) throw file_error("read", name_, errno);
    file_.reset(sf_open_fd(descriptor, SFM_READ, &info_, SF_TRUE));
    if (!file_) {
        // libsndfile has closed the descriptor.
        throw UserError("cannot read " + name_ + ": it is no sound file of a known format.");
    }
}

bool AudioReader::is_cut_short() const {
    std::array<char, 16384> log{};
    sf_command(file_.get(), SFC_GET_LOG_INFO, log.data(), static_cast<int>(log.size()));
    const char* data = std::strstr(log.data(), "\ndata : ");
    unsigned long long announced = 0;
    unsigned long long found = 0;
    if (data == nullptr ||
        std::sscanf(data, "\ndata : %llu (should be %llu)", &announced, &found) != 2) {
        return false;
    }
    constexpr unsigned long long kUnknown =
        0x7ffff000;  // and above: written by programs that stream
    return announced > found && announced < kUnknown;
}

size_t AudioReader::read(float* samples, size_t frames) {
    const sf_count_t count = sf_readf_float(file_.get(), samples, static_cast<sf_count_t>(frames));
    if (sf_error(file_.get()) != SF_ERR_NO_ERROR) {
        throw UserError("cannot read " + name_ + ": " + sf_strerror(file_.get()));
    }
    return static_cast<size_t>(std::max<sf_count_t>(count, 0));
}

SF_INFO output_format(const std::string& target, const SF_INFO& source) {
    const std::string ending = std::filesystem::path(target).extension();
    SF_INFO info;
    if (OutputFile::is_stream(target)) {
        const Container same = {"", source.format & SF_FORMAT_TYPEMASK};
        const bool fits = fit_into(same, source, info) || fit_into(kContainers[0], source, info);
        if (fits) return info;
    }
    const auto* container = std::ranges::find_if(kContainers, [&ending](const Container& each) {
        return strcasecmp(each.ending, ending.c_str()) == 0;
    });
    const bool is_known = container != std::end(kContainers);
    if (is_known && fit_into(*container, source, info)) return info;
    const std::string refusal = "cannot write " + target + ": ";
    const std::string endings = endings_for(source) + '.';
    if (!is_known) throw UserError(refusal + "its name has to end in one of " + endings);
    throw UserError(refusal + ending + " does not hold this sound (" +
                    std::to_string(source.channels) + " channels at " +
                    std::to_string(source.samplerate) + " Hz); it fits " + endings);
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
    copy_chunks(source.file_.get(), file_.get());
    for (int tag = SF_STR_FIRST; tag <= SF_STR_LAST; ++tag) {
        const char* text = sf_get_string(source.file_.get(), tag);
        if ((text != nullptr) && tag != SF_STR_SOFTWARE) sf_set_string(file_.get(), tag, text);
    }
}

void AudioWriter::measure(const float* samples, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const float size = std::abs(samples[i]);
        peak_ = std::max(peak_, size);
        if (has_ceiling_ && size > kCeiling) ++clipped_;
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
