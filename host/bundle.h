// SPDX-License-Identifier: ISC
#pragma once

#include <lilv/lilv.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "host/lilv_pointers.h"
#include "host/urid_map.h"

namespace brindle {

/// A control input as the bundle describes it.
struct ControlInfo {
    struct Choice {
        float value;
        std::string label;
    };

    uint32_t index;  ///< port number
    std::string symbol;
    std::string name;
    float minimum;
    float maximum;
    float normal;                 ///< the default
    std::string unit;             ///< "dB", "Hz" or empty
    bool whole;                   ///< takes whole numbers only
    std::vector<Choice> choices;  ///< named values in ascending order; empty for most
};

/// Port number and value, in the order in which they are to be set.
using ControlValues = std::vector<std::pair<uint32_t, float>>;

/// The installed or built bundle, loaded as any host does.
class Bundle {
  public:
    /// Loads the bundle at `path`; where that is empty, the one beside this program (build tree
    /// or installation), else the one on LV2's search path. Throws UserError where there is none.
    explicit Bundle(const std::string& path);

    /// The variant for a number of channels (1 or 2).
    [[nodiscard]] const LilvPlugin* plugin(int channels) const;
    [[nodiscard]] std::string plugin_name(int channels) const;
    /// Folder, with a slash at the end.
    [[nodiscard]] std::string path() const;
    /// Control inputs in port order; both variants have the same.
    [[nodiscard]] std::vector<ControlInfo> controls() const;

    /// Labels of the presets in alphabetical order.
    [[nodiscard]] std::vector<std::string> preset_names() const;
    /// The label of the preset with this name, whatever its case. Throws UserError where there is
    /// no such preset.
    [[nodiscard]] std::string preset_label(const std::string& name) const;
    /// The values of the preset with this name. Throws UserError where there is no such preset.
    ControlValues preset(const std::string& name);

    [[nodiscard]] LilvWorld* world() const { return world_.get(); }
    UridMap& urids() { return urids_; }

  private:
    struct Preset {
        std::string label;
        NodePtr uri;
    };

    bool load_folder(const std::string& path);
    void find_presets();
    [[nodiscard]] const Preset& find_preset(const std::string& name) const;
    [[nodiscard]] NodePtr uri(const char* text) const;

    WorldPtr world_;
    UridMap urids_;
    std::vector<Preset> presets_;
};

}  // namespace brindle
