// SPDX-License-Identifier: ISC
#include "host/state_file.h"

#include <lv2/atom/atom.h>
#include <lv2/core/lv2.h>
#include <lv2/presets/presets.h>
#include <lv2/state/state.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <filesystem>
#include <memory>

#include "host/user_error.h"

namespace brindle {
namespace {

namespace fs = std::filesystem;

/// The name that hosts give the file in a state's folder.
constexpr const char* kFileInFolder = "state.ttl";
/// The state's URI until its file is written.
constexpr const char* kStateUri = "urn:brindle-audio:state";
/// lilv uses these prefixes, but does not declare them when it writes to memory.
constexpr const char* kPrefixes = "@prefix atom: <" LV2_ATOM_PREFIX
                                  "> .\n"
                                  "@prefix lv2: <" LV2_CORE_PREFIX
                                  "> .\n"
                                  "@prefix pset: <" LV2_PRESETS_PREFIX
                                  "> .\n"
                                  "@prefix rdf: <http://www.w3.org/1999/02/22-rdf-syntax-ns#> .\n"
                                  "@prefix rdfs: <http://www.w3.org/2000/01/rdf-schema#> .\n"
                                  "@prefix state: <" LV2_STATE_PREFIX
                                  "> .\n"
                                  "@prefix xsd: <http://www.w3.org/2001/XMLSchema#> .\n\n";

/// The finite values, held within the ports' ranges.
ControlValues held_in_range(const Bundle& bundle, const ControlValues& values) {
    ControlValues held;
    for (const ControlInfo& control : bundle.controls()) {
        for (const auto& [port, value] : values) {
            if (port != control.index || !std::isfinite(value)) continue;
            held.emplace_back(port, std::fmin(std::fmax(value, control.minimum), control.maximum));
        }
    }
    return held;
}

}  // namespace

ControlValues load_state(Bundle& bundle, const std::string& path) {
    std::error_code error;
    const std::string file = fs::is_directory(path, error) ? path + '/' + kFileInFolder : path;
    if (access(file.c_str(), R_OK) != 0) throw file_error("read", file, errno);
    const StatePtr state(lilv_state_new_from_file(bundle.world(), bundle.urids().map_feature(),
                                                  nullptr, fs::absolute(file).c_str()));
    const ControlValues values =
        state ? port_values(bundle.urids(), bundle.controls(), *state) : ControlValues();
    if (values.empty()) {
        throw UserError("cannot read " + file + ": it holds no state of this plugin.");
    }
    return held_in_range(bundle, values);
}

void save_state(Bundle& bundle, const Plugin& plugin, OutputFile& file) {
    const StatePtr state = plugin.state(bundle);
    UridMap& urids = bundle.urids();
    const std::unique_ptr<char, LilvFree<lilv_free>> turtle(
        lilv_state_to_string(bundle.world(), urids.map_feature(), urids.unmap_feature(),
                             state.get(), kStateUri, nullptr));
    std::string text = turtle ? turtle.get() : "";
    // The file describes itself, wherever it lies.
    const std::string subject = std::string("<") + kStateUri + '>';
    const size_t place = text.find(subject);
    if (place == std::string::npos) throw UserError("cannot write " + file.target() + '.');
    text.replace(place, subject.size(), "<>");
    text.insert(0, kPrefixes);
    file.write(text.data(), text.size());
    file.commit();
}

}  // namespace brindle
