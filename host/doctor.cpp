// SPDX-License-Identifier: ISC
// Xlib defines macros with ordinary names, so its headers come last.
#include <dlfcn.h>
#include <lilv/lilv.h>
#include <strings.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "contract/brindle.h"
#include "host/audio_output.h"
#include "host/bundle.h"
#include "host/command.h"
#include "host/console.h"
#include "host/gl_facts.h"
#include "host/user_error.h"

namespace brindle {
namespace {

namespace fs = std::filesystem;

enum Verdict { kGood, kNote, kFault };
constexpr const char* kVerdicts[] = {"good", "note", "FAULT"};

/// What was looked at, what was found, and what to do where that is not good.
struct Finding {
    const char* subject;
    Verdict verdict;
    std::string found;
    std::string advice;
};

/// A path without the user's name.
std::string shown(const std::string& path) {
    const char* home = std::getenv("HOME");
    const bool is_own =
        home != nullptr && home[0] != '\0' && path.starts_with(std::string(home) + '/');
    return is_own ? '~' + path.substr(std::string(home).size()) : path;
}

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

/// Folders in which hosts look for bundles.
std::vector<std::string> search_path() {
    std::string path = variable("LV2_PATH");
    if (path.empty()) {
        path = variable("HOME") + "/.lv2:/usr/local/lib/lv2:/usr/lib/lv2:" BRINDLE_LV2_FOLDER;
    }
    std::vector<std::string> folders;
    std::istringstream parts(path);
    for (std::string folder; std::getline(parts, folder, ':');) folders.push_back(folder);
    return folders;
}

/// Bundles on the search path whose manifest names this plugin.
std::string installed_bundles() {
    std::string found;
    for (const std::string& folder : search_path()) {
        std::error_code error;
        for (const auto& entry : fs::directory_iterator(folder, error)) {
            std::ifstream manifest(entry.path() / "manifest.ttl");
            std::stringstream text;
            text << manifest.rdbuf();
            if (text.str().find(kBaseUri) == std::string::npos) continue;
            found += (found.empty() ? "" : ", ") + shown(entry.path());
        }
    }
    return found;
}

Finding bundles() {
    const std::string installed = installed_bundles();
    const WorldPtr world(lilv_world_new());
    lilv_world_load_all(world.get());
    const NodePtr uri(lilv_new_uri(world.get(), kStereoUri));
    const LilvPlugin* plugin =
        lilv_plugins_get_by_uri(lilv_world_get_all_plugins(world.get()), uri.get());
    if (plugin == nullptr) {
        return {"installed bundles", kNote, "none: other hosts do not see the plugin",
                "install the package, or copy brindle.lv2 into ~/.lv2"};
    }
    const std::string taken = lilv_node_as_uri(lilv_plugin_get_bundle_uri(plugin));
    const bool is_one = installed.find(", ") == std::string::npos;
    return {"installed bundles", is_one ? kGood : kNote,
            installed + "; hosts take " + shown(taken.substr(taken.find("//") + 2)),
            is_one ? "" : "remove the others: an old one hides a new one"};
}

Finding library(const std::string& bundle) {
    try {
        const Bundle loaded(bundle);
        const std::string path = loaded.path() + "brindle.so";
        void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (library != nullptr) {
            dlclose(library);
            return {"plugin", kGood, shown(path) + " can be loaded", ""};
        }
        return {"plugin", kFault, dlerror(), "install the package that has the missing library"};
    } catch (const UserError& error) {
        return {"plugin", kFault, error.what(), "build it or install the package"};
    }
}

Finding session() {
    const std::string type = variable("XDG_SESSION_TYPE");
    const bool has_x = !variable("DISPLAY").empty();
    if (type == "wayland" && !has_x) {
        return {"session", kFault, "wayland without an X server", "install and enable Xwayland"};
    }
    return {"session", kGood, type.empty() ? "of no type that is told" : type, ""};
}

Finding display() {
    const GlFacts facts = gl_facts();
    if (!facts.has_display) {
        return {"display", kNote, "none", "set DISPLAY to an X server; rendering needs none"};
    }
    if (facts.renderer.empty()) {
        return {"display", kFault, "no OpenGL over GLX: the editor cannot open",
                "install the graphics driver (libgl1-mesa-dri)"};
    }
    const std::string found =
        formatted("%s, %s, OpenGL %s, %s rendering", facts.vendor.c_str(), facts.renderer.c_str(),
                  facts.version.c_str(), facts.is_direct ? "direct" : "indirect");
    const bool is_software = facts.renderer.find("llvmpipe") != std::string::npos ||
                             facts.renderer.find("softpipe") != std::string::npos;
    if (!facts.is_direct) return {"display", kNote, found, "run it on the display's own machine"};
    if (is_software) return {"display", kNote, found, "a graphics driver would draw faster"};
    return {"display", kGood, found, ""};
}

Finding sound() {
    std::string devices = device_list();
    if (devices.empty()) {
        return {"sound", kNote, "no device", "start JACK, PulseAudio or PipeWire, or connect one"};
    }
    devices.pop_back();
    std::string list;
    std::istringstream lines(devices);
    for (std::string line; std::getline(lines, line);) {
        line.erase(std::unique(line.begin(), line.end(),
                               [](char a, char b) { return a == ' ' && b == ' '; }),
                   line.end());
        list += (list.empty() ? "" : "; ") + line;
    }
    return {"sound", kGood, list, ""};
}

Finding processor() {
#if defined(__x86_64__)
    __builtin_cpu_init();
    const char* best = __builtin_cpu_supports("avx512f")  ? "AVX-512"
                       : __builtin_cpu_supports("avx2")   ? "AVX2"
                       : __builtin_cpu_supports("sse4.2") ? "SSE4.2"
                       : __builtin_cpu_supports("ssse3")  ? "SSSE3"
                                                          : "SSE2";
    return {"processor", kGood, std::string("64-bit x86 with ") + best, ""};
#else
    return {"processor", kGood, "not x86", ""};
#endif
}

void doctor(const ProgramOptions& options, bool as_json) {
    const std::vector<Finding> findings = {
        library(options.bundle), bundles(), session(), display(), sound(), processor()};
    nlohmann::ordered_json list;
    for (const Finding& finding : findings) {
        list.push_back({{"subject", finding.subject},
                        {"verdict", kVerdicts[finding.verdict]},
                        {"found", finding.found},
                        {"advice", finding.advice}});
        if (as_json) continue;
        say("%-5s  %s: %s%s%s.\n", kVerdicts[finding.verdict], finding.subject,
            finding.found.c_str(),
            finding.advice.empty() ? "" : ". To do: ", finding.advice.c_str());
    }
    if (as_json) say("%s\n", list.dump(2).c_str());
    const bool is_ill = std::ranges::any_of(
        findings, [](const Finding& finding) { return finding.verdict == kFault; });
    if (is_ill) throw UserError("there is a fault.");
}

}  // namespace

void add_doctor(CLI::App& program, const ProgramOptions& options) {
    CLI::App* command =
        program.add_subcommand("doctor", "Tell what the plugin finds on this machine");
    const auto as_json = std::make_shared<bool>(false);
    command->add_flag("--json", *as_json, "Print it as JSON");
    command->callback([as_json, &options] { doctor(options, *as_json); });
}

}  // namespace brindle
