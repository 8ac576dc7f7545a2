// SPDX-License-Identifier: ISC
/// Making, connecting and freeing an instance.
#pragma once

#include <lv2/urid/urid.h>

#include <cstdint>

namespace brindle {

struct EqInstance;

/// Returns a new instance whose stages pass audio unchanged, null without memory. `rate` is the
/// host's sample rate in Hz, held between 1 Hz and what fits into 32 bits; no number counts as 1
/// Hz. The caller gives the instance to destroy_instance. Not for the audio thread.
EqInstance* create_instance(double rate, LV2_URID_Map* map);

/// Frees an instance; null is allowed. Not for the audio thread.
void destroy_instance(EqInstance* eq) noexcept;

/// Remembers the host's buffer for a port; ignores numbers outside the port table.
void connect(EqInstance& eq, uint32_t port, void* data) noexcept;

}  // namespace brindle
