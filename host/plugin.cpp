// SPDX-License-Identifier: ISC
#include "host/plugin.h"

#include <lv2/atom/util.h>
#include <lv2/core/lv2.h>
#include <lv2/resize-port/resize-port.h>
#include <lv2/state/state.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "host/user_error.h"

namespace brindle {
namespace {

constexpr size_t kSettleFrames = size_t{1} << 17;
/// Bytes of an atom port's buffer if the bundle asks for no size.
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
      chunk_type_(bundle.urids().map(LV2_ATOM__Chunk)),
      float_type_(bundle.urids().map(LV2_ATOM__Float)) {
    const LV2_Feature map = {LV2_URID__map, bundle.urids().map_feature()};
    const LV2_Feature unmap = {LV2_URID__unmap, bundle.urids().unmap_feature()};
    const std::array<const LV2_Feature*, 3> features = {&map, &unmap, nullptr};
    const LilvPlugin* description = bundle.plugin(channels);
    instance_.reset(lilv_plugin_instantiate(description, rate, features.data()));
    if (!instance_) throw UserError("the plugin in " + bundle.path() + " cannot be loaded.");
    connect_ports(bundle, description);
    clear_messages();
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

/// Makes each input an empty sequence; an output states its capacity as a chunk.
void Plugin::clear_messages() {
    for (MessagePort& port : message_ports_) {
        LV2_Atom_Sequence* sequence = port.sequence();
        sequence->atom.type = port.is_input ? sequence_type_ : chunk_type_;
        sequence->atom.size = port.is_input ? static_cast<uint32_t>(sizeof(LV2_Atom_Sequence_Body))
                                            : static_cast<uint32_t>(port.capacity());
        sequence->body = {0, 0};
    }
}

bool Plugin::send(uint32_t index, const LV2_Atom& atom) {
    for (MessagePort& port : message_ports_) {
        if (port.index != index || !port.is_input) continue;
        LV2_Atom_Sequence* sequence = port.sequence();
        const size_t used = lv2_atom_pad_size(sequence->atom.size);
        const size_t room = port.capacity() - used;
        if (room < sizeof(LV2_Atom_Event) || room - sizeof(LV2_Atom_Event) < atom.size) break;
        auto* event = reinterpret_cast<LV2_Atom_Event*>(reinterpret_cast<uint8_t*>(sequence) +
                                                        sizeof(LV2_Atom) + used);
        event->time.frames = 0;
        std::memcpy(&event->body, &atom, sizeof atom + atom.size);
        sequence->atom.size = static_cast<uint32_t>(used + sizeof(LV2_Atom_Event) + atom.size);
        return true;
    }
    return false;
}

void Plugin::hand_over_messages() {
    if (!message_sink_) return;
    for (MessagePort& port : message_ports_) {
        const LV2_Atom_Sequence* sequence = port.sequence();
        const bool is_whole = sequence->atom.type == sequence_type_ &&
                              sequence->atom.size >= sizeof(LV2_Atom_Sequence_Body) &&
                              sequence->atom.size <= port.capacity();
        if (port.is_input || !is_whole) continue;
        const LV2_Atom_Event* event = lv2_atom_sequence_begin(&sequence->body);
        while (!lv2_atom_sequence_is_end(&sequence->body, sequence->atom.size, event)) {
            message_sink_(port.index, event->body);
            event = lv2_atom_sequence_next(event);
        }
    }
}

void Plugin::run_block(const float* in, float* out, uint32_t frames) {
    const size_t channel_count = inputs_.size();
    for (size_t channel = 0; channel < channel_count; ++channel) {
        float* buffer = inputs_[channel].data();
        for (size_t i = 0; i < frames; ++i) buffer[i] = in[i * channel_count + channel];
    }
    lilv_instance_run(instance_.get(), frames);
    hand_over_messages();
    clear_messages();
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

StatePtr Plugin::state(Bundle& bundle) const {
    struct Reader {
        const Plugin& self;
        const std::vector<ControlInfo> controls;
    };
    Reader reader = {*this, bundle.controls()};
    const auto value = [](const char* symbol, void* data, uint32_t* size,
                          uint32_t* type) -> const void* {
        const Reader& from = *static_cast<Reader*>(data);
        for (const ControlInfo& control : from.controls) {
            if (control.symbol != symbol) continue;
            *size = sizeof(float);
            *type = from.self.float_type_;
            return &from.self.values_[control.index];
        }
        *size = 0;
        *type = 0;
        return nullptr;
    };
    return StatePtr(lilv_state_new_from_instance(
        bundle.plugin(channels_), instance_.get(), bundle.urids().map_feature(), nullptr, nullptr,
        nullptr, nullptr, value, &reader, LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE, nullptr));
}

}  // namespace brindle
