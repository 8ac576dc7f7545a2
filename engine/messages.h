// SPDX-License-Identifier: ISC
/// The engine's messages from and to its editor, over two ports of atom sequences.
#pragma once

#include <lv2/atom/atom.h>
#include <lv2/atom/forge.h>

#include <cstdint>

#include "contract/urids.h"
#include "engine/analyser.h"

namespace brindle {

/// Returns whether the editor wants analyser rows: as the last request in `control` says, or
/// `ui_active` without a request. Ignores malformed events and reads nothing beyond the size in the
/// sequence's head; `control` may be null or unaligned. Real-time safe.
bool read_requests(const LV2_Atom_Sequence* control, const EqUris& uris, bool ui_active) noexcept;

/// Writes one block's sequence to `notify`, whose head holds the capacity in bytes before the call.
/// While `ui_active`, the sequence carries the analyser's newest row if it fits entirely; otherwise
/// the sequence is empty. Leaves `notify` alone where not even that fits; null is an unconnected
/// port. `sample_rate` in Hz. Real-time safe.
void write_notify(LV2_Atom_Forge& forge, LV2_Atom_Sequence* notify, const EqUris& uris,
                  bool ui_active, int32_t sample_rate, const SpectrumAnalyser& analyser) noexcept;

}  // namespace brindle
