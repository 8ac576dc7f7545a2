// SPDX-License-Identifier: ISC
/// The URIDs of the messages between engine and editor.
#pragma once

#include <lv2/atom/atom.h>
#include <lv2/urid/urid.h>

#include <span>

#include "contract/brindle.h"

namespace brindle {

/// URIDs of the atom types and of the plugin's own messages.
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

/// Which of the plugin's own URIs are mapped first, after the atom types.
enum class UridOrder { RequestsFirst, MessageFirst };

/// Maps all URIs; every URID is 0 if `map` is null. `map` is only used during the call. Call it at
/// instantiation.
inline EqUris map_urids(LV2_URID_Map* map, UridOrder order) {
    struct Row {
        LV2_URID EqUris::*member;
        const char* uri;
    };
    static constexpr Row kAtoms[] = {
        {&EqUris::atom_blank, LV2_ATOM__Blank},
        {&EqUris::atom_object, LV2_ATOM__Object},
        {&EqUris::atom_vector, LV2_ATOM__Vector},
        {&EqUris::atom_float, LV2_ATOM__Float},
        {&EqUris::atom_int, LV2_ATOM__Int},
        {&EqUris::atom_event_transfer, LV2_ATOM__eventTransfer},
    };
    static constexpr Row kRequests[] = {
        {&EqUris::enable_ui, kEnableUiUri},
        {&EqUris::disable_ui, kDisableUiUri},
    };
    static constexpr Row kMessage[] = {
        {&EqUris::message, kMessageUri},
        {&EqUris::sample_rate, kSampleRateUri},
        {&EqUris::plot_id, kPlotIdUri},
        {&EqUris::plot_array, kPlotArrayUri},
    };
    EqUris uris{};
    if (map == nullptr) return uris;
    const auto map_rows = [&](std::span<const Row> rows) {
        for (const Row& row : rows) uris.*row.member = map->map(map->handle, row.uri);
    };
    map_rows(kAtoms);
    if (order == UridOrder::RequestsFirst) map_rows(kRequests);
    map_rows(kMessage);
    if (order == UridOrder::MessageFirst) map_rows(kRequests);
    return uris;
}

}  // namespace brindle
