// SPDX-License-Identifier: ISC
/// The processing of one block of audio.
#pragma once

#include <cstdint>

namespace brindle {

struct EqInstance;

/// Processes `n` samples, any number, from the audio inputs to the audio outputs, which may share
/// their buffers in any order. Processes no audio while an audio port is not connected. Real-time
/// safe.
void run_mono(EqInstance& eq, uint32_t n) noexcept;
void run_stereo(EqInstance& eq, uint32_t n) noexcept;

}  // namespace brindle
