// SPDX-License-Identifier: ISC
// Atoms that a host may send to the editor: arbitrary bytes, and plot messages with some bytes
// changed or their end cut off.
#include <lv2/atom/forge.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <vector>

#include "editor/host_connection.h"
#include "tests/support/urid_map.h"

namespace {

using namespace brindle;

std::vector<uint8_t> ValidMessage(LV2_URID_Map* map) {
    alignas(8) uint8_t buffer[2048] = {};
    const EqUris uris = map_urids(map, UridOrder::MessageFirst);
    LV2_Atom_Forge forge;
    lv2_atom_forge_init(&forge, map);
    lv2_atom_forge_set_buffer(&forge, buffer, sizeof buffer);
    LV2_Atom_Forge_Frame frame;
    lv2_atom_forge_object(&forge, &frame, 1, uris.message);
    lv2_atom_forge_key(&forge, uris.sample_rate);
    lv2_atom_forge_int(&forge, 48000);
    lv2_atom_forge_key(&forge, uris.plot_id);
    lv2_atom_forge_int(&forge, 7);
    const float row[kPlotBins] = {};
    lv2_atom_forge_key(&forge, uris.plot_array);
    lv2_atom_forge_vector(&forge, sizeof(float), uris.atom_float, kPlotBins, row);
    lv2_atom_forge_pop(&forge, &frame);
    return {buffer, buffer + forge.offset};
}

void Require(bool holds) {
    if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static test::UridMap map;
    static const std::vector<uint8_t> valid = ValidMessage(map.get());
    static HostConnection connection({}, map.get());
    static const LV2_URID atoms = map(LV2_ATOM__eventTransfer);
    if (size < 1) return 0;
    std::vector<uint8_t> message(data + 1, data + size);
    if (data[0] % 2 == 0) {
        message = valid;
        // Three bytes each: position and value. The whole header and all properties are reachable.
        for (size_t i = 1; i + 2 < size; i += 3) {
            const size_t at = (data[i] | (data[i + 1] & 1u) << 8) % message.size();
            message[at] = data[i + 2];
        }
        if (data[0] % 4 == 2 && size > 2) {
            message.resize((data[1] | data[2] << 8) % (message.size() + 1));
        }
    }
    // A copy in memory of exactly this size, so that reads beyond it are detected.
    const auto own = std::make_unique<uint8_t[]>(message.size());
    std::copy(message.begin(), message.end(), own.get());
    const auto length = static_cast<uint32_t>(message.size());
    if (const auto plot = connection.ReadPlot(atoms, own.get(), length)) {
        Require(plot->id >= 0 && plot->id < kPlotRows);
        const auto* end = reinterpret_cast<const uint8_t*>(plot->values + kPlotBins);
        Require(end <= own.get() + length);
        volatile float sum = 0.0f;
        for (int bin = 0; bin < kPlotBins; ++bin) sum = sum + plot->values[bin];
    }
    if (const auto value = connection.ReadControl(length, data[0], own.get(), length)) {
        Require(length == sizeof *value && std::isfinite(*value));
    }
    return 0;
}
