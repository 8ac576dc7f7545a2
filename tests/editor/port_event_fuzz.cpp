// SPDX-License-Identifier: ISC
// Atoms that a host may send to the editor: arbitrary bytes, and plot messages with some bytes
// changed or their end cut off.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>

#include "editor/host_connection.h"
#include "tests/support/plot_message.h"

namespace {

using namespace brindle;

void Require(bool holds) {
    if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static test::UridMap map;
    static const auto words = test::PlotMessage(map, 7, std::vector<float>(kPlotBins));
    static HostConnection connection({}, map.get());
    static const LV2_URID atoms = map(LV2_ATOM__eventTransfer);
    if (size < 1) return 0;
    std::vector<uint8_t> message(data + 1, data + size);
    if (data[0] % 2 == 0) {
        const auto* bytes = reinterpret_cast<const uint8_t*>(words.data());
        message.assign(bytes, bytes + 4 * words.size());
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
