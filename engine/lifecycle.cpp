// SPDX-License-Identifier: ISC
#include "engine/lifecycle.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

#include "engine/controls.h"
#include "engine/eq_instance.h"

namespace brindle {
namespace {

constexpr int32_t kFastRateHz = 60001;  // from here on, ticks are twice as many samples apart

void set_rate(EqInstance& eq, double rate) {
    eq.sample_rate = static_cast<int32_t>(rate);
    const bool fast = eq.sample_rate >= kFastRateHz;
    eq.control_mask = fast ? 127 : 63;
    eq.meter_mask = fast ? 1023 : 511;
    // 10 dB per second in power.
    eq.meter_decay = static_cast<float>(exp10(-(eq.meter_mask + 1.0) / rate));
    eq.power_keep = static_cast<float>(std::exp(-1.0 / (0.04 * rate)));  // 40 ms
    eq.power_take = 1.0f - eq.power_keep;
}

void set_start_values(EqInstance& eq) {
    eq.noise_state = 1;
    eq.turned = true;
    eq.trim_gain = 1.0f;
    eq.section_freq.fill(1000.0f);
    eq.section_q.fill(1.0f);
    set_default_controls(eq);
}

void init_stages(EqInstance& eq, double rate) {
    const auto start = [rate](FilterStage& stage) {
        init(stage, BandType::Flat, 0.0, 1000.0, 1.0, -kBandDamping, 1.0 / rate);
        design(stage);
    };
    for (SectionStages& section : eq.sections) std::for_each(section.begin(), section.end(), start);
    std::for_each(eq.bands.begin(), eq.bands.end(), start);
}

}  // namespace

EqInstance* create_instance(double rate, LV2_URID_Map* map) {
    auto* eq = new (std::nothrow) EqInstance{};
    if (eq == nullptr) return nullptr;
    eq->map = map;
    lv2_atom_forge_init(&eq->forge, map);
    eq->uris = map_urids(map, UridOrder::RequestsFirst);
    // fmax returns the number where the other argument is NaN.
    const double held =
        std::min(std::fmax(rate, 1.0), static_cast<double>(std::numeric_limits<int32_t>::max()));
    set_rate(*eq, held);
    set_start_values(*eq);
    init_analyser(eq->analyser, held);
    init_stages(*eq, held);
    update_weights(*eq);
    eq->cascade = choose_cascade();
    eq->loops = choose_sample_loops();
    return eq;
}

void destroy_instance(EqInstance* eq) noexcept {
    delete eq;
}

void connect(EqInstance& eq, uint32_t port, void* data) noexcept {
    if (port == kControlPort) {
        eq.control_port = static_cast<const LV2_Atom_Sequence*>(data);
    } else if (port == kNotifyPort) {
        eq.notify_port = static_cast<LV2_Atom_Sequence*>(data);
    } else if (port < eq.ports.size()) {
        eq.ports[port] = static_cast<float*>(data);
    }
}

}  // namespace brindle
