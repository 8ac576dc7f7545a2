// SPDX-License-Identifier: ISC
#include "host/plugin.h"

#include <lv2/core/lv2.h>
#include <lv2/resize-port/resize-port.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "host/user_error.h"

namespace brindle {
namespace {

constexpr size_t kSettleFrames = size_t{1} << 17;
/// Room in an atom port's buffer where the bundle asks for none [bytes].
constexpr size_t kMessageSize = 4096;

size_t message_size(LilvWorld* world, const LilvPlugin* plugin, const LilvPort* port) {
    const NodePtr key(lilv_new_uri(world, LV2_RESIZE_PORT__minimumSize));
    const NodePtr size(lilv_port_get(plugin, port, key.get()));
    const bool is_number = size && lilv_node_is_int(size.get());
    const int wanted = is_number ? std::max(lilv_node_as_int(size.get()), 0) : 0;
    return std::max(kMessageSize, static_cast<size_t>(wanted));
}

}  // namespace

Plugin::Plugin(Bundle& bundle, int channels, double rate, uint32_t block)
    : channels_(channels),
      rate_(rate),
      block_(block),
      sequence_type_(bundle.urids().map(LV2_ATOM__Sequence)),
      chunk_type_(bundle.urids().map(LV2_ATOM__Chunk)) {
    const LV2_Feature map = {LV2_URID__map, bundle.urids().map_feature()};
    const LV2_Feature unmap = {LV2_URID__unmap, bundle.urids().unmap_feature()};
    const std::array<const LV2_Feature*, 3> features = {&map, &unmap, nullptr};
    const LilvPlugin* description = bundle.plugin(channels);
    instance_.reset(lilv_plugin_instantiate(description, rate, features.data()));
    if (!instance_) {
        throw UserError("the plugin in " + bundle.path() + " cannot be loaded.");
    }
    connect_ports(bundle, description);
    lilv_instance_activate(instance_.get());
}

Plugin::~Plugin() {
    lilv_instance_deactivate(instance_.get());
}

void Plugin::connect_ports(const Bundle& bundle, const LilvPlugin* description) {
    LilvWorld* world = bundle.world();
    const NodePtr input(lilv_new_uri(world, LV2_CORE__InputPort));
    const NodePtr audio(lilv_new_uri(world, LV2_CORE__AudioPort));
    const NodePtr atom(lilv_new_uri(world, LV2_ATOM__AtomPort));
    const uint32_t port_count = lilv_plugin_get_num_ports(description);

    values_.resize(port_count);
    lilv_plugin_get_port_ranges_float(description, nullptr, nullptr, values_.data());
    for (uint32_t i = 0; i < port_count; ++i) {
        if (std::isnan(values_[i])) values_[i] = 0.0f;  // no default: an output
        const LilvPort* port = lilv_plugin_get_port_by_index(description, i);
        const bool is_input = lilv_port_is_a(description, port, input.get());
        void* buffer = &values_[i];
        if (lilv_port_is_a(description, port, audio.get())) {
            auto& buffers = is_input ? inputs_ : outputs_;
            buffer = buffers.emplace_back(block_).data();
        } else if (lilv_port_is_a(description, port, atom.get())) {
            const size_t words = message_size(world, description, port) / sizeof(uint64_t);
            message_ports_.push_back({i, is_input, std::vector<uint64_t>(words)});
            buffer = message_ports_.back().buffer.data();
        }
        lilv_instance_connect_port(instance_.get(), i, buffer);
    }
}

void Plugin::set(const ControlValues& values) {
    for (const auto& [port, value] : values) set(port, value);
}

/// An input is an empty sequence; an output tells its capacity and is no sequence yet.
void Plugin::prepare_messages() {
    for (MessagePort& port : message_ports_) {
        LV2_Atom_Sequence* sequence = port.sequence();
        const size_t capacity = port.buffer.size() * sizeof(uint64_t) - sizeof(LV2_Atom);
        sequence->atom.type = port.is_input ? sequence_type_ : chunk_type_;
        sequence->atom.size =
            port.is_input ? sizeof(LV2_Atom_Sequence_Body) : static_cast<uint32_t>(capacity);
        sequence->body = {0, 0};
    }
}

void Plugin::run_block(const float* in, float* out, uint32_t frames) {
    const size_t channel_count = inputs_.size();
    for (size_t channel = 0; channel < channel_count; ++channel) {
        float* buffer = inputs_[channel].data();
        for (size_t i = 0; i < frames; ++i) buffer[i] = in[i * channel_count + channel];
    }
    prepare_messages();
    lilv_instance_run(instance_.get(), frames);
    for (size_t channel = 0; channel < channel_count; ++channel) {
        const float* buffer = outputs_[channel].data();
        for (size_t i = 0; i < frames; ++i) out[i * channel_count + channel] = buffer[i];
    }
}

void Plugin::process(const float* in, float* out, size_t frames) {
    for (size_t done = 0; done < frames;) {
        const auto count = static_cast<uint32_t>(std::min<size_t>(frames - done, block_));
        const size_t offset = done * inputs_.size();
        run_block(in + offset, out + offset, count);
        done += count;
    }
}

void Plugin::settle() {
    std::vector<float> silence(size_t{block_} * inputs_.size());
    std::vector<float> ignored(silence.size());
    for (size_t done = 0; done < kSettleFrames;) {
        const size_t count = std::min<size_t>(kSettleFrames - done, block_);
        process(silence.data(), ignored.data(), count);
        done += count;
    }
}

}  // namespace brindle
