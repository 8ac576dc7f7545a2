// SPDX-License-Identifier: ISC
#include "host/live_plugin.h"

#include <algorithm>

#include "contract/brindle.h"

namespace brindle {

LivePlugin::LivePlugin(Bundle& bundle, Plugin& plugin, SignalSource& source)
    : plugin_(plugin),
      source_(source),
      ports_(lilv_plugin_get_num_ports(bundle.plugin(plugin.channels()))),
      block_(size_t{kBlock} * static_cast<size_t>(plugin.channels())) {
    for (const ControlInfo& control : bundle.controls()) {
        ports_[control.index].kind = Kind::kInput;
        ports_[control.index].value = plugin.get(control.index);
    }
    for (const uint32_t meter : {kMeterInPort, kMeterOutPort}) ports_[meter].kind = Kind::kOutput;
    plugin_.on_message(
        [this](uint32_t port, const LV2_Atom& atom) { from_plugin_.push(port, atom); });
}

void LivePlugin::set(uint32_t port, float value) {
    if (is_control(port)) ports_[port].value.store(value, std::memory_order_relaxed);
}

float LivePlugin::get(uint32_t port) const {
    return port < ports_.size() ? ports_[port].value.load(std::memory_order_relaxed) : 0.0f;
}

bool LivePlugin::is_control(uint32_t port) const {
    return port < ports_.size() && ports_[port].kind == Kind::kInput;
}

bool LivePlugin::send(const LV2_Atom& atom) {
    return to_plugin_.push(kControlPort, atom);
}

void LivePlugin::apply_controls() {
    for (uint32_t i = 0; i < port_count(); ++i) {
        if (ports_[i].kind == Kind::kInput) plugin_.set(i, get(i));
    }
}

void LivePlugin::play_block(float* out, size_t frames) {
    apply_controls();
    const auto send = [this](uint32_t port, const LV2_Atom& atom) { plugin_.send(port, atom); };
    for (bool more = true; more;) more = to_plugin_.pop(send);
    source_.read(block_.data(), frames);
    plugin_.process(block_.data(), block_.data(), frames);
    for (uint32_t i = 0; i < port_count(); ++i) {
        if (ports_[i].kind == Kind::kOutput) {
            ports_[i].value.store(plugin_.get(i), std::memory_order_relaxed);
        }
    }
    const auto channels = static_cast<size_t>(plugin_.channels());
    for (size_t i = 0; i < frames; ++i) {
        out[2 * i] = block_[i * channels];
        out[2 * i + 1] = block_[i * channels + channels - 1];
    }
}

void LivePlugin::play(float* out, size_t frames) {
    for (size_t done = 0; done < frames;) {
        const size_t count = std::min<size_t>(frames - done, kBlock);
        play_block(out + kOutputs * done, count);
        done += count;
    }
}

}  // namespace brindle
