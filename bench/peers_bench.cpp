// SPDX-License-Identifier: ISC
// This equaliser beside others, all set to nearly equal work: cost of a frame, response, memory and
// instantiation. bench/peers installs the others and runs this.
#include <dlfcn.h>
#include <lilv/lilv.h>
#include <lv2/atom/util.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/options/options.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <map>
#include <memory>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "contract/brindle.h"
#include "tests/support/urid_map.h"

namespace {

using namespace brindle;
using Settings = std::vector<std::pair<std::string, float>>;

constexpr double kRateHz = 48000.0;
constexpr std::array<uint32_t, 3> kBlocks = {64, 256, 1024};
constexpr int kRounds = 15;

/// The work: 24 dB/oct below 30 Hz, 12 dB/oct above 15 kHz, a low shelf, bells, a high shelf.

float linear(float gain_db) {
    return std::pow(10.0f, gain_db / 20.0f);
}

struct Peer {
    std::string name, uri;
    Settings settings;
    std::vector<std::string> turned;  ///< ports that move by a little
    std::string editor;               ///< what asks for an analysis: a port or an object's type
    int bells;                        ///< of the work's four
    bool passes;                      ///< has both steep passes
};

Settings brindle_settings(int bells, bool passes) {
    Settings all = {
        {"seca_enable", passes ? 1.0f : 0.0f}, {"seca_type", 2.0f}, {"seca_freq", 30.0f},
        {"secb_enable", passes ? 1.0f : 0.0f}, {"secb_type", 5.0f}, {"secb_freq", 15000.0f}};
    const float rows[][4] = {{5, 4, 100, 0.71f}, {9, -3, 250, 1}, {9, 4, 600, 1},
                             {9, -3, 1500, 1},   {9, 4, 4000, 1}, {6, -3, 8000, 0.71f}};
    for (int band = 0; band < 8; ++band) {
        const std::string prefix = "b" + std::to_string(band + 1) + "_";
        const bool on = band < 6 && (band == 0 || band == 5 || band <= bells);
        all.push_back({prefix + "enable", on ? 1.0f : 0.0f});
        if (band >= 6) continue;
        const char* names[] = {"type", "gain", "freq", "q"};
        for (int i = 0; i < 4; ++i) all.push_back({prefix + names[i], rows[band][i]});
    }
    return all;
}

std::vector<Peer> peers() {
    std::vector<Peer> all = {{"Brindle",
                              kStereoUri,
                              brindle_settings(4, true),
                              {"b1_gain", "b2_gain", "b3_gain", "b4_gain", "b5_gain", "b6_gain"},
                              kEnableUiUri,
                              4,
                              true}};
    all.push_back(
        {"fil4",
         "http://gareus.org/oss/lv2/fil4#stereo",
         {{"HighPass", 1}, {"HPfreq", 30},   {"HPQ", 0.7f},  {"LowPass", 1},  {"LPfreq", 15000},
          {"LPQ", 1},      {"LSfreq", 100},  {"LSgain", 4},  {"LSq", 0.5f},   {"freq1", 250},
          {"gain1", -3},   {"q1", 0.5f},     {"freq2", 600}, {"gain2", 4},    {"q2", 0.5f},
          {"freq3", 1500}, {"gain3", -3},    {"q3", 0.5f},   {"freq4", 4000}, {"gain4", 4},
          {"q4", 0.5f},    {"HSfreq", 8000}, {"HSgain", -3}, {"HSq", 0.5f}},
         {"LSgain", "gain1", "gain2", "gain3", "gain4", "HSgain"},
         "http://gareus.org/oss/lv2/fil4#ui_on",
         4,
         true});
    all.push_back({"Calf EQ 8",
                   "http://calf.sourceforge.net/plugins/Equalizer8Band",
                   {{"hp_active", 1}, {"hp_freq", 30},    {"hp_mode", 1},
                    {"lp_active", 1}, {"lp_freq", 15000}, {"lp_mode", 0},
                    {"ls_active", 1}, {"ls_freq", 100},   {"ls_level", linear(4)},
                    {"hs_active", 1}, {"hs_freq", 8000},  {"hs_level", linear(-3)},
                    {"p1_active", 1}, {"p1_freq", 250},   {"p1_level", linear(-3)},
                    {"p2_active", 1}, {"p2_freq", 600},   {"p2_level", linear(4)},
                    {"p3_active", 1}, {"p3_freq", 1500},  {"p3_level", linear(-3)},
                    {"p4_active", 1}, {"p4_freq", 4000},  {"p4_level", linear(4)}},
                   {"ls_level", "p1_level", "p2_level", "p3_level", "p4_level", "hs_level"},
                   "analyzer",
                   4,
                   true});
    Settings lsp, eq10q;
    const float rows[][6] = {// LSP's type, EQ10Q's type, Hz, dB, Q, slope less one
                             {2, 8, 30, 0, 0.7f, 1},     {5, 9, 100, 4, 0.7f, 0},
                             {1, 11, 250, -3, 1, 0},     {1, 11, 600, 4, 1, 0},
                             {1, 11, 1500, -3, 1, 0},    {1, 11, 4000, 4, 1, 0},
                             {3, 10, 8000, -3, 0.7f, 0}, {4, 2, 15000, 0, 0.7f, 0}};
    std::vector<std::string> lsp_turned, eq10q_turned;
    for (int i = 0; i < 8; ++i) {
        const std::string end = "_" + std::to_string(i);
        const bool pass = i == 0 || i == 7;
        lsp.insert(lsp.end(), {{"ft" + end, rows[i][0]},
                               {"s" + end, rows[i][5]},
                               {"f" + end, rows[i][2]},
                               {"g" + end, linear(rows[i][3])},
                               {"fm" + end, pass ? 2.0f : 6.0f},
                               {"q" + end, pass ? 0.0f : rows[i][4]}});
        const std::string begin = "filter" + std::to_string(i + 1);
        eq10q.insert(eq10q.end(), {{begin + "_type", rows[i][1]},
                                   {begin + "_freq", rows[i][2]},
                                   {begin + "_gain", rows[i][3]},
                                   {begin + "_q", rows[i][4]},
                                   {begin + "_enable", 1.0f}});
        if (i == 0 || i == 7) continue;
        lsp_turned.push_back("g" + end);
        eq10q_turned.push_back(begin + "_gain");
    }
    all.push_back({"LSP x16", "http://lsp-plug.in/plugins/lv2/para_equalizer_x16_stereo", lsp,
                   lsp_turned, "", 4, true});
    all.push_back(
        {"EQ10Q", "http://eq10q.sourceforge.net/eq/eq10qs", eq10q, eq10q_turned, "", 4, true});
    all.push_back({"ZamEQ2 (mono)",
                   "urn:zamaudio:ZamEQ2",
                   {{"fl", 100},
                    {"boostl", 4},
                    {"f1", 250},
                    {"boost1", -3},
                    {"bw1", 2.5f},
                    {"f2", 600},
                    {"boost2", 4},
                    {"bw2", 2.5f},
                    {"fh", 8000},
                    {"boosth", -3}},
                   {"boostl", "boost1", "boost2", "boosth"},
                   "",
                   2,
                   false});
    return all;
}

/// Time that this thread has had a processor for [s].
double thread_seconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// Memory in use by allocations.
size_t used_bytes() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// One plugin in a small host, all ports connected, its audio noise or what is written to `in`.
class Host {
  public:
    Host(LilvWorld* world, const std::string& uri) {
        LilvNode* node = lilv_new_uri(world, uri.c_str());
        plugin_ = lilv_plugins_get_by_uri(lilv_world_get_all_plugins(world), node);
        lilv_node_free(node);
        if (plugin_ == nullptr) return;
        const LV2_Options_Option options[] = {
            option(LV2_BUF_SIZE__minBlockLength, LV2_ATOM__Int, &least_),
            option(LV2_BUF_SIZE__maxBlockLength, LV2_ATOM__Int, &most_),
            option(LV2_BUF_SIZE__nominalBlockLength, LV2_ATOM__Int, &most_),
            {LV2_OPTIONS_INSTANCE, 0, 0, 0, 0, nullptr}};
        const LV2_Feature option_feature = {LV2_OPTIONS__options,
                                            const_cast<LV2_Options_Option*>(options)};
        const LV2_Feature bounded = {LV2_BUF_SIZE__boundedBlockLength, nullptr};
        const LV2_Feature* features[] = {map_.feature(), &option_feature, &bounded, nullptr};
        const size_t before = used_bytes();
        const double begin = thread_seconds();
        instance_ = lilv_plugin_instantiate(plugin_, kRateHz, features);
        start_us = 1e6 * (thread_seconds() - begin);
        used_kb = static_cast<double>(used_bytes() - before) / 1024.0;
        if (instance_ == nullptr) return;
        connect(world);
        lilv_instance_activate(instance_);
    }
    ~Host() {
        if (instance_ == nullptr) return;
        lilv_instance_deactivate(instance_);
        lilv_instance_free(instance_);
    }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    bool is_there() const { return instance_ != nullptr; }
    bool has(const std::string& symbol) const { return index_.count(symbol) != 0; }
    float& port(const std::string& symbol) { return controls_.at(index_.at(symbol)); }
    void set(const Settings& settings) {
        for (const auto& [symbol, value] : settings) {
            if (!has(symbol))
                std::printf("no port %s\n", symbol.c_str());
            else
                port(symbol) = value;
        }
    }

    void run(uint32_t frames) {
        const LV2_Atom room = {kAtomBytes - sizeof(LV2_Atom), map_(LV2_ATOM__Chunk)};
        for (auto& buffer : atom_out_) std::memcpy(buffer->data(), &room, sizeof room);
        lilv_instance_run(instance_, frames);
    }

    /// Puts an object of a type on the atom input for one block.
    void send(const std::string& type) {
        struct {
            LV2_Atom_Sequence head;
            LV2_Atom_Event event;
            LV2_Atom_Object_Body body;
        } message{};
        message.head.atom = {sizeof message - sizeof(LV2_Atom), map_(LV2_ATOM__Sequence)};
        message.event.body = {sizeof message.body, map_(LV2_ATOM__Object)};
        message.body.otype = map_(type);
        std::memcpy(atom_in_.at(0)->data(), &message, sizeof message);
        run(64);
        clear_messages();
    }

    std::vector<std::vector<float>> in, out;
    double start_us = 0.0, used_kb = 0.0;  ///< for instantiation

  private:
    static constexpr uint32_t kAtomBytes = 16384;
    using Buffer = std::array<uint64_t, kAtomBytes / 8>;

    LV2_Options_Option option(const char* key, const char* type, const int32_t* value) {
        return {LV2_OPTIONS_INSTANCE, 0, map_(key), sizeof *value, map_(type), value};
    }

    void clear_messages() {
        const LV2_Atom_Sequence empty = {{sizeof(LV2_Atom_Sequence_Body), map_(LV2_ATOM__Sequence)},
                                         {0, 0}};
        for (auto& buffer : atom_in_) std::memcpy(buffer->data(), &empty, sizeof empty);
    }

    void connect(LilvWorld* world) {
        const auto node = [world](const char* uri) {
            return std::unique_ptr<LilvNode, decltype(&lilv_node_free)>(lilv_new_uri(world, uri),
                                                                        lilv_node_free);
        };
        const auto audio = node(LILV_URI_AUDIO_PORT), input = node(LILV_URI_INPUT_PORT),
                   control = node(LILV_URI_CONTROL_PORT);
        const uint32_t count = lilv_plugin_get_num_ports(plugin_);
        controls_.resize(count);
        lilv_plugin_get_port_ranges_float(plugin_, nullptr, nullptr, controls_.data());
        in.reserve(count);
        out.reserve(count);
        for (uint32_t i = 0; i < count; ++i) {
            const LilvPort* port = lilv_plugin_get_port_by_index(plugin_, i);
            const bool is_input = lilv_port_is_a(plugin_, port, input.get());
            if (lilv_port_is_a(plugin_, port, control.get())) {
                if (!std::isfinite(controls_[i])) controls_[i] = 0.0f;
                index_[lilv_node_as_string(lilv_port_get_symbol(plugin_, port))] = i;
                lilv_instance_connect_port(instance_, i, &controls_[i]);
            } else if (lilv_port_is_a(plugin_, port, audio.get())) {
                auto& buffers = is_input ? in : out;
                buffers.emplace_back(static_cast<size_t>(most_));
                lilv_instance_connect_port(instance_, i, buffers.back().data());
            } else {
                auto& buffers = is_input ? atom_in_ : atom_out_;
                buffers.push_back(std::make_unique<Buffer>());
                lilv_instance_connect_port(instance_, i, buffers.back()->data());
            }
        }
        clear_messages();
    }

    const int32_t least_ = 1, most_ = 1024;
    test::UridMap map_;
    const LilvPlugin* plugin_ = nullptr;
    LilvInstance* instance_ = nullptr;
    std::vector<float> controls_;
    std::map<std::string, uint32_t> index_;
    std::vector<std::unique_ptr<Buffer>> atom_in_, atom_out_;
};

void settle(Host& host) {
    for (int i = 0; i < 400; ++i) host.run(1024);
}

/// Response to an impulse at each frequency [dB].
std::vector<double> response_db(Host& host, const std::vector<double>& frequencies) {
    for (auto& channel : host.in) std::fill(channel.begin(), channel.end(), 0.0f);
    settle(host);
    std::vector<float> impulse;
    for (int block = 0; block < 32; ++block) {
        for (auto& channel : host.in) channel[0] = block == 0 ? 1.0f : 0.0f;
        host.run(1024);
        impulse.insert(impulse.end(), host.out[0].begin(), host.out[0].begin() + 1024);
    }
    std::vector<double> gains;
    for (double hz : frequencies) {
        const std::complex<double> step = std::polar(1.0, -2.0 * std::numbers::pi * hz / kRateHz);
        std::complex<double> sum = 0.0;
        for (size_t i = impulse.size(); i-- > 0;)
            sum = sum * step + static_cast<double>(impulse[i]);
        gains.push_back(20.0 * std::log10(std::abs(sum)));
    }
    return gains;
}

struct Figure {
    std::vector<double> values;
    double at(double share) {
        std::sort(values.begin(), values.end());
        return values[static_cast<size_t>(share * static_cast<double>(values.size() - 1))];
    }
};

enum Mode { kRest, kMoving, kEditor, kModes };
constexpr const char* kModeNames[] = {"rest", "moving", "editor"};

struct Entry {
    Peer peer;
    std::unique_ptr<Host> hosts[kModes];
    Figure cost_ns[kModes][kBlocks.size()];
};

void fill_with_noise(Host& host) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> level(-0.5f, 0.5f);
    for (auto& channel : host.in) {
        std::generate(channel.begin(), channel.end(), [&] { return level(random); });
    }
}

double cost_of(Entry& entry, Mode mode, uint32_t block) {
    Host& host = *entry.hosts[mode];
    const uint32_t calls = 16384 / block;
    const double begin = thread_seconds();
    for (uint32_t i = 0; i < calls; ++i) {
        if (mode == kMoving) {
            for (const auto& symbol : entry.peer.turned) {
                host.port(symbol) *= i % 2 == 0 ? 1.05f : 1.0f / 1.05f;
            }
        }
        host.run(block);
    }
    return 1e9 * (thread_seconds() - begin) / (calls * block);
}

bool watch(Host& host, const std::string& editor) {
    if (editor.empty()) return false;
    if (host.has(editor)) {
        host.port(editor) = 1.0f;
    } else {
        host.send(editor);
    }
    return true;
}

/// Largest difference [dB] of the response from this equaliser's with the same filters.
double difference_db(LilvWorld* world, Entry& entry) {
    std::vector<double> frequencies;
    for (double hz = 50.0; hz < 10000.0; hz *= 1.1) frequencies.push_back(hz);
    Host ours(world, kStereoUri);
    ours.set(brindle_settings(entry.peer.bells, entry.peer.passes));
    const auto expected = response_db(ours, frequencies);
    const auto got = response_db(*entry.hosts[kRest], frequencies);
    double largest = 0.0;
    for (size_t i = 0; i < got.size(); ++i) {
        largest = std::max(largest, std::abs(got[i] - expected[i]));
    }
    return largest;
}

}  // namespace

int main() {
    LilvWorld* world = lilv_world_new();
    lilv_world_load_all(world);
    std::vector<std::unique_ptr<Entry>> entries;
    std::printf("%-14s %12s %12s %12s %12s\n", "", "differs [dB]", "memory [KB]", "load [us]",
                "start [us]");
    for (Peer& peer : peers()) {
        auto entry = std::make_unique<Entry>();
        for (auto& host : entry->hosts) host = std::make_unique<Host>(world, peer.uri);
        if (!entry->hosts[kRest]->is_there()) {
            std::printf("%s is not on LV2_PATH\n", peer.name.c_str());
            continue;
        }
        entry->peer = std::move(peer);
        for (auto& host : entry->hosts) host->set(entry->peer.settings);
        Figure start_us, used_kb;
        for (int i = 0; i < kRounds; ++i) {
            const Host host(world, entry->peer.uri);
            start_us.values.push_back(host.start_us);
            used_kb.values.push_back(host.used_kb);
        }
        std::printf("%-14s %12.1f %12.0f %12.0f %12.0f\n", entry->peer.name.c_str(),
                    difference_db(world, *entry), used_kb.at(0.5), entry->hosts[kRest]->start_us,
                    start_us.at(0.5));
        for (auto& host : entry->hosts) {
            fill_with_noise(*host);
            settle(*host);
        }
        if (!watch(*entry->hosts[kEditor], entry->peer.editor)) entry->hosts[kEditor].reset();
        entries.push_back(std::move(entry));
    }
    std::mt19937 random(2);
    for (int round = 0; round < kRounds; ++round) {
        std::shuffle(entries.begin(), entries.end(), random);
        for (auto& entry : entries) {
            for (int mode = 0; mode < kModes; ++mode) {
                if (entry->hosts[mode] == nullptr) continue;
                for (size_t b = 0; b < kBlocks.size(); ++b) {
                    entry->cost_ns[mode][b].values.push_back(
                        cost_of(*entry, static_cast<Mode>(mode), kBlocks[b]));
                }
            }
        }
    }
    std::printf("\nns a frame, median (first and third quartile)\n%-14s %-7s", "", "");
    for (uint32_t block : kBlocks) std::printf(" %21u", block);
    std::sort(entries.begin(), entries.end(),
              [](const auto& a, const auto& b) { return a->peer.name < b->peer.name; });
    for (auto& entry : entries) {
        for (int mode = 0; mode < kModes; ++mode) {
            if (entry->cost_ns[mode][0].values.empty()) continue;
            std::printf("\n%-14s %-7s", entry->peer.name.c_str(), kModeNames[mode]);
            for (Figure& figure : entry->cost_ns[mode]) {
                std::printf("  %6.1f (%5.1f, %5.1f)", figure.at(0.5), figure.at(0.25),
                            figure.at(0.75));
            }
        }
    }
    std::printf("\n");
    entries.clear();
    lilv_world_free(world);
}
