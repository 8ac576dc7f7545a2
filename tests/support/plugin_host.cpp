// SPDX-License-Identifier: ISC
#include "tests/support/plugin_host.h"

#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <numbers>
#include <random>
#include <stdexcept>

#include "contract/brindle.h"
#include "tests/support/atom_sequence.h"

namespace brindle::test {
namespace {

// Far above the dither that the plugin adds to its input.
constexpr float kImpulse = 1e4f;

}  // namespace

const LV2_Descriptor* descriptor(uint32_t index) {
    static const auto entry = [] {
        void* library = dlopen(BRINDLE_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        if (!library) throw std::runtime_error(dlerror());
        return reinterpret_cast<LV2_Descriptor_Function>(dlsym(library, "lv2_descriptor"));
    }();
    return entry(index);
}

Audio noise(int channels, size_t n, uint32_t seed, float peak) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> level(-peak, peak);
    Audio audio(static_cast<size_t>(channels), std::vector<float>(n));
    for (auto& channel : audio) {
        std::generate(channel.begin(), channel.end(), [&] { return level(random); });
    }
    return audio;
}

PluginHost::PluginHost(int channels, double rate)
    : channels_(channels),
      rate_(rate),
      descriptor_(descriptor(channels == 1 ? 0 : 1)),
      handle_(nullptr) {
    const LV2_Feature* features[] = {map_.feature(), nullptr};
    handle_ = descriptor_->instantiate(descriptor_, rate, "", features);
    if (!handle_) throw std::runtime_error("the plugin refused to be instantiated");
    connect(kControlPort, control.data());
    connect(kNotifyPort, notify.data());
    for (uint32_t number = 2; number < ports_.size(); ++number) connect(number, &ports_[number]);
    AtomSequence(map_).write(control.data());
    make_room();
    descriptor_->activate(handle_);
}

PluginHost::~PluginHost() {
    descriptor_->deactivate(handle_);
    descriptor_->cleanup(handle_);
}

void PluginHost::set_strip(int strip, int type, float gain_db, float freq_hz, float q) {
    const float values[] = {1.0f, static_cast<float>(type), gain_db, freq_hz, q};
    std::copy(std::begin(values), std::end(values), &ports_[strip_port(strip)]);
}

void PluginHost::make_room() {
    const LV2_Atom room = {notify_capacity, map_(LV2_ATOM__Chunk)};
    std::memcpy(notify.data(), &room, sizeof room);
}

void PluginHost::send_request(const char* type) {
    AtomSequence(map_).request(type).write(control.data());
}

void PluginHost::restart() {
    descriptor_->deactivate(handle_);
    descriptor_->activate(handle_);
}

Audio PluginHost::process(const Audio& in, uint32_t block) {
    Audio input = in;
    Audio output(in.size(), std::vector<float>(in[0].size()));
    for (size_t at = 0; at < in[0].size(); at += block) {
        for (size_t c = 0; c < in.size(); ++c) {
            const auto number = kFirstAudioPort + 2 * static_cast<uint32_t>(c);
            connect(number, input[c].data() + at);
            connect(number + 1, output[c].data() + at);
        }
        make_room();
        run(static_cast<uint32_t>(std::min<size_t>(block, in[0].size() - at)));
    }
    return output;
}

void PluginHost::settle() {
    // The glides fall by 0.98 for each tick of at most 128 samples: 1500 ticks leave 1e-13.
    process(Audio(static_cast<size_t>(channels_), std::vector<float>(size_t{1500} * 128)));
}

std::vector<double> PluginHost::impulse_response(size_t n) {
    settle();
    Audio impulse(static_cast<size_t>(channels_), std::vector<float>(n));
    impulse[0][0] = kImpulse;
    const Audio out = process(impulse);
    std::vector<double> response(n);
    std::transform(out[0].begin(), out[0].end(), response.begin(),
                   [](float v) { return static_cast<double>(v) / static_cast<double>(kImpulse); });
    return response;
}

double gain_db(const std::vector<double>& response, double hz, double rate) {
    const std::complex<double> step = std::polar(1.0, -2.0 * std::numbers::pi * hz / rate);
    std::complex<double> sum = 0.0;
    for (size_t i = response.size(); i-- > 0;) sum = sum * step + response[i];
    return 20.0 * std::log10(std::abs(sum));
}

}  // namespace brindle::test
