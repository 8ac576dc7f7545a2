// SPDX-License-Identifier: ISC
/// The processing of one block of audio.
#pragma once

#include <cstdint>

namespace brindle {

struct EqInstance;

/// Processes `n` samples (any number) from the audio inputs to the audio outputs, which may be the
/// same buffers in any order. Where an audio port is not connected, no audio is processed.
/// Real-time safe.
void run_mono(EqInstance& eq, uint32_t n) noexcept;
void run_stereo(EqInstance& eq, uint32_t n) noexcept;

}  // namespace brindle
