// SPDX-License-Identifier: ISC
/// The engine's side of the conversation with its editor, over two ports of atom sequences.
#pragma once

#include <lv2/atom/atom.h>
#include <lv2/atom/forge.h>

#include <cstdint>

#include "contract/urids.h"
#include "engine/analyser.h"

namespace brindle {

/// Whether the editor wants analyser rows once the requests in `control` are heard, of which the
/// last one wins; `ui_active` is the state before. What is malformed is ignored, and nothing is
/// read beyond the size that the sequence's head states, wherever in memory it lies; null holds
/// no requests. Real-time safe.
bool read_requests(const LV2_Atom_Sequence* control, const EqUris& uris, bool ui_active) noexcept;

/// Writes the sequence of one block to `notify`, whose head holds the capacity in bytes when the
/// call begins. While `ui_active`, the sequence carries the analyser's newest row, if all of it
/// fits; otherwise it is empty. Without room even for that, `notify` is left as it was, and null
/// is an unconnected port. `sample_rate` is in Hz. Real-time safe.
void write_notify(LV2_Atom_Forge& forge, LV2_Atom_Sequence* notify, const EqUris& uris,
                  bool ui_active, int32_t sample_rate, const SpectrumAnalyser& analyser) noexcept;

}  // namespace brindle
