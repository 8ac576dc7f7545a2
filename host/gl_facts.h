// SPDX-License-Identifier: ISC
#pragma once

#include <string>

namespace brindle {

/// What an editor finds on the display; without OpenGL the texts are empty.
struct GlFacts {
    bool has_display = false;
    bool is_direct = false;
    std::string vendor;
    std::string renderer;
    std::string version;
};

/// Opens an OpenGL context for a moment.
GlFacts gl_facts();

}  // namespace brindle
