// SPDX-License-Identifier: ISC
/// What differs between RtAudio 5, which numbers devices and throws, and RtAudio 6, which gives
/// devices ids and returns errors.
#pragma once

#include <RtAudio.h>

#include <numeric>
#include <stdexcept>
#include <vector>

namespace brindle {

#ifdef RTAUDIO_VERSION_MAJOR  // since version 6
inline std::vector<unsigned> device_ids(RtAudio& audio) {
    return audio.getDeviceIds();
}

inline bool is_usable(const RtAudio::DeviceInfo& info) {
    return info.ID != 0;
}

/// Makes a call of RtAudio's that may fail. Throws std::runtime_error with its reason.
template <typename Call>
void checked(RtAudio& audio, Call call) {
    if (call() != RTAUDIO_NO_ERROR) throw std::runtime_error(audio.getErrorText());
}
#else
inline std::vector<unsigned> device_ids(RtAudio& audio) {
    std::vector<unsigned> ids(audio.getDeviceCount());
    std::iota(ids.begin(), ids.end(), 0u);
    return ids;
}

inline bool is_usable(const RtAudio::DeviceInfo& info) {
    return info.probed;
}

/// Makes a call of RtAudio's that may fail. Throws std::runtime_error with its reason.
template <typename Call>
void checked(RtAudio&, Call call) {
    call();  // its own error is one
}
#endif

}  // namespace brindle
