// SPDX-License-Identifier: ISC
#pragma once

#include <lilv/lilv.h>

#include <string>
#include <vector>

#include "host/controls.h"
#include "host/lilv_pointers.h"
#include "host/urid_map.h"

namespace brindle {

/// The plugin's bundle, loaded with lilv as other hosts load it.
class Bundle {
  public:
    /// Loads the bundle at `path`. If that is empty, loads the one beside this program (build tree
    /// or installation), else the one on LV2's search path. Throws UserError if there is none.
    explicit Bundle(const std::string& path);

    /// The variant for `channels` (1 or 2).
    [[nodiscard]] const LilvPlugin* plugin(int channels) const;
    [[nodiscard]] std::string plugin_name(int channels) const;
    /// The bundle's folder, with a slash at the end.
    [[nodiscard]] std::string path() const;
    /// Control inputs in port order; both variants have the same.
    [[nodiscard]] std::vector<ControlInfo> controls() const;

    /// Labels of the presets in alphabetical order.
    [[nodiscard]] std::vector<std::string> preset_names() const;
    /// The label of a preset whose name is given in any case. Throws UserError for an unknown name.
    [[nodiscard]] std::string preset_label(const std::string& name) const;
    /// The values of a preset. Throws UserError for an unknown name.
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
