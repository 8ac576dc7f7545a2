// SPDX-License-Identifier: ISC
/// The URIDs of the engine's conversation with its editor.
#pragma once

#include <lv2/urid/urid.h>

namespace brindle {

/// URIDs by which the engine knows atom types and its own messages, in the order in which they
/// are mapped. The names of the keys are in lv2/brindle.h.
struct EqUris {
    LV2_URID atom_blank;
    LV2_URID atom_object;
    LV2_URID atom_vector;
    LV2_URID atom_float;
    LV2_URID atom_int;
    LV2_URID atom_event_transfer;
    LV2_URID enable_ui;    ///< type of the request to send analyser rows
    LV2_URID disable_ui;   ///< type of the request to stop
    LV2_URID message;      ///< type of the message that carries a row
    LV2_URID sample_rate;  ///< Int, Hz
    LV2_URID plot_id;      ///< Int, index of the row in the ring
    LV2_URID plot_array;   ///< Vector of Float, the row in dB
};

/// Fills `uris` by the host's `map`, which is borrowed for the call. Called at instantiation.
void map_uris(EqUris& uris, LV2_URID_Map* map);

}  // namespace brindle
