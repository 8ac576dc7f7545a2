// SPDX-License-Identifier: ISC
#include "engine/eq_uris.h"

#include <lv2/atom/atom.h>

#include "lv2/brindle.h"

namespace brindle {
namespace {

struct UriRow {
    LV2_URID EqUris::*member;
    const char* uri;
};

constexpr UriRow kRows[] = {
    {&EqUris::atom_blank, LV2_ATOM__Blank},
    {&EqUris::atom_object, LV2_ATOM__Object},
    {&EqUris::atom_vector, LV2_ATOM__Vector},
    {&EqUris::atom_float, LV2_ATOM__Float},
    {&EqUris::atom_int, LV2_ATOM__Int},
    {&EqUris::atom_event_transfer, LV2_ATOM__eventTransfer},
    {&EqUris::enable_ui, kEnableUiUri},
    {&EqUris::disable_ui, kDisableUiUri},
    {&EqUris::message, kMessageUri},
    {&EqUris::sample_rate, kSampleRateUri},
    {&EqUris::plot_id, kPlotIdUri},
    {&EqUris::plot_array, kPlotArrayUri},
};
static_assert(sizeof(EqUris) == sizeof(kRows) / sizeof(kRows[0]) * sizeof(LV2_URID));

}  // namespace

void map_uris(EqUris& uris, LV2_URID_Map* map) {
    for (const UriRow& row : kRows) {
        uris.*row.member = map->map(map->handle, row.uri);
    }
}

}  // namespace brindle
