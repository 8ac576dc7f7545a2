// SPDX-License-Identifier: ISC
// Runs the plugin with arbitrary bytes on the control port and any capacity on the notify port.
#include <lv2/atom/atom.h>
#include <lv2/core/lv2.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "contract/brindle.h"
#include "tests/support/urid_map.h"

namespace {

using namespace brindle;

constexpr uint32_t kBlock = 512;  // a meter tick in each at ordinary rates
constexpr size_t kNotifyBytes = 2048;

void require(bool holds) {
    if (!holds) std::abort();
}

/// The notify port is unchanged or holds a sequence of one of the two lengths, and nothing was
/// written beyond the capacity.
void check_notify(const uint8_t* bytes, uint32_t capacity) {
    LV2_Atom head;
    std::memcpy(&head, bytes, sizeof head);
    require(head.size == 8 || head.size == 1072 || (capacity < 16 && head.size == capacity));
    require(capacity < 16 || sizeof head + head.size <= capacity);
    for (size_t i = std::max<size_t>(capacity, sizeof head); i < kNotifyBytes; ++i) {
        require(bytes[i] == 0xa5);
    }
}

/// A mono instance with all ports connected, silent input and all controls at 0.
class Plugin {
  public:
    Plugin() {
        const LV2_Feature* features[] = {map_.feature(), nullptr};
        instance_ = plugin_->instantiate(plugin_, 48000.0, "", features);
        for (uint32_t port = 2; port < kFirstAudioPort; ++port) {
            plugin_->connect_port(instance_, port, &controls_[port]);
        }
        plugin_->connect_port(instance_, kFirstAudioPort, audio_.data());
        plugin_->connect_port(instance_, kFirstAudioPort + 1, audio_.data());
        plugin_->connect_port(instance_, kNotifyPort, notify_.data());
    }
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;
    ~Plugin() { plugin_->cleanup(instance_); }

    void run(void* control, uint32_t notify_capacity) {
        notify_.fill(0xa5);
        std::memcpy(notify_.data(), &notify_capacity, sizeof notify_capacity);
        plugin_->connect_port(instance_, kControlPort, control);
        plugin_->run(instance_, kBlock);
        check_notify(notify_.data(), notify_capacity);
    }
    void enable_rows() {
        LV2_Atom_Sequence_Body body = {0, 0};
        struct {
            LV2_Atom_Sequence sequence;
            LV2_Atom_Event event;
            LV2_Atom_Object_Body object;
        } request = {{{sizeof body + sizeof(LV2_Atom_Event) + sizeof(LV2_Atom_Object_Body),
                       map_(LV2_ATOM__Sequence)},
                      body},
                     {{0}, {sizeof(LV2_Atom_Object_Body), map_(LV2_ATOM__Object)}},
                     {1, map_(kEnableUiUri)}};
        run(&request, kNotifyBytes);
    }

  private:
    test::UridMap map_;
    const LV2_Descriptor* plugin_ = lv2_descriptor(0);
    LV2_Handle instance_;
    std::array<float, kMonoPortCount> controls_ = {};
    std::array<float, kBlock> audio_ = {};
    alignas(8) std::array<uint8_t, kNotifyBytes> notify_;
};

}  // namespace

/// Bytes 0 and 1 are the capacity of the notify port; byte 2 is the sequence's misalignment and
/// whether rows were requested before; the rest is the sequence after its head's size, which is
/// correct, as a host guarantees.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 3 + sizeof(uint32_t)) return 0;
    const uint32_t capacity = (data[0] + 256u * data[1]) % (kNotifyBytes + 1);
    const size_t shift = data[2] % 8;
    Plugin plugin;
    if (data[2] >= 128) plugin.enable_rows();
    data += 3;
    size -= 3;

    const size_t sequence_bytes = sizeof(uint32_t) + size;
    const std::unique_ptr<uint8_t[]> control(new uint8_t[shift + sequence_bytes]);
    const auto stated = static_cast<uint32_t>(sequence_bytes - sizeof(LV2_Atom));
    std::memcpy(control.get() + shift, &stated, sizeof stated);
    std::memcpy(control.get() + shift + sizeof stated, data, size);
    plugin.run(control.get() + shift, capacity);
    return 0;
}
