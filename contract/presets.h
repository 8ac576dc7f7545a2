// SPDX-License-Identifier: ISC
/// The factory presets. The editor's preset buttons write them; `presets.ttl` is made from them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "contract/brindle.h"

namespace brindle {

/// A preset sets every control from the first band's enable to the trim, and nothing else.
inline constexpr uint32_t kFirstPresetPort = strip_port(0);
inline constexpr size_t kPresetValueCount = kTrimPort - kFirstPresetPort + 1;

/// One factory preset; values[i] belongs to port kFirstPresetPort + i, in that port's unit.
struct Preset {
    const char* name;
    std::array<float, kPresetValueCount> values;
};

// clang-format off
/// In the order of the editor's buttons.
inline constexpr auto kPresets = std::to_array<Preset>({
    //   on type gain [dB]  freq [Hz]         Q
    {"Dialog",
     {{
         1,  9,   3.384f,   191.629f,   0.725f,               // band 1
         0,  9,  -7.008f,   310.234f,  26.268f,               // band 2
         0,  9,  -5.424f,    416.86f,  26.268f,               // band 3
         0,  9,  -4.608f,   530.225f,  21.676f,               // band 4
         0,  9,  -4.224f,   683.989f,   24.39f,               // band 5
         0,  9,  -4.944f,   930.382f,  24.393f,               // band 6
         0,  9,   -6.48f,  1241.741f,  26.245f,               // band 7
         1,  9,   3.072f,  2257.665f,   0.661f,               // band 8
         1, 16,   -9.24f,     90.94f,        1,               // section A
         1,  9,   -3.36f,   5114.81f,        1,               // section B
         0                                                    // trim
     }}},
    {"Hot Pocket",
     {{
         1,  2,  -0.936f,   284.563f,   0.725f,               // band 1
         0,  9,  -7.104f,   478.992f,  25.972f,               // band 2
         0,  9,  -8.208f,   627.811f,  25.972f,               // band 3
         0,  9,  -8.832f,   832.339f,  24.707f,               // band 4
         0,  9,  -9.192f,  1048.214f,  24.427f,               // band 5
         0,  9,  -6.024f,  3738.852f,  17.876f,               // band 6
         0,  9,  -8.928f,  1291.076f,  23.992f,               // band 7
         0,  9,  -9.528f,  1584.669f,  18.576f,               // band 8
         1,  4,  -0.336f,    63.567f,        1,               // section A
         1,  8,  -8.184f,  2029.687f,        1,               // section B
         0                                                    // trim
     }}},
    {"60Hz Buzz Kill",
     {{
         1, 12,        0,   119.545f,  12.183f,               // band 1
         1, 12,        0,   179.622f,  14.462f,               // band 2
         1, 12,   -2.16f,   240.458f,  14.462f,               // band 3
         1, 12,        0,    299.89f,  17.619f,               // band 4
         1, 12,        0,    359.79f,  20.016f,               // band 5
         1, 12,        0,   419.616f,  22.277f,               // band 6
         1, 12,        0,   480.286f,  26.245f,               // band 7
         1, 12,        0,   520.093f,    33.9f,               // band 8
         1, 17,        0,      60.5f,   6.853f,               // section A
         0,  9,       -3,  2462.121f,        1,               // section B
         0                                                    // trim
     }}},
    {"Push+Pull Tone",
     {{
         1,  5,   12.12f,    74.298f,   0.725f,               // band 1
         0,  9,  -6.127f,   423.806f,  25.972f,               // band 2
         0,  9,  -7.704f,   613.917f,  25.972f,               // band 3
         0,  9,  -8.832f,   832.339f,  24.707f,               // band 4
         0,  9,  -9.744f,  1154.967f,  24.427f,               // band 5
         0,  9, -10.824f,  1585.397f,  17.876f,               // band 6
         0,  9, -12.024f,  2242.387f,  23.177f,               // band 7
         1,  9,   4.488f,  3171.415f,   0.854f,               // band 8
         1, 13,  -12.12f,   170.746f,   0.242f,               // section A
         1,  9,  -6.288f,  5043.254f,        1,               // section B
         0                                                    // trim
     }}},
    {"Kick",
     {{
         1,  9,       -9,   419.428f,    0.91f,               // band 1
         0,  9,  -6.127f,   423.806f,  25.972f,               // band 2
         0,  9,  -7.704f,   613.917f,  25.972f,               // band 3
         0,  9,  -8.832f,   832.339f,  24.707f,               // band 4
         0,  9,  -9.744f,  1154.967f,  24.427f,               // band 5
         0,  9, -10.824f,  1585.397f,  17.876f,               // band 6
         0,  9, -12.024f,  2242.387f,  23.177f,               // band 7
         1,  9,  12.168f,  3078.184f,   1.563f,               // band 8
         1, 14,     7.2f,   101.286f,   0.242f,               // section A
         1,  9, -10.128f,  5005.786f,        1,               // section B
         0                                                    // trim
     }}},
    {"Snare",
     {{
         1,  9,   10.68f,   194.508f,     3.1f,               // band 1
         1,  6,  -4.327f,   316.816f,   0.657f,               // band 2
         0,  9,  -7.224f,    600.33f,   0.657f,               // band 3
         0,  9,  -8.832f,   832.339f,  24.707f,               // band 4
         0,  9,  -9.744f,  1154.967f,  24.427f,               // band 5
         0,  9, -10.824f,  1585.397f,  17.876f,               // band 6
         1,  6,   3.576f,  2081.185f,  23.177f,               // band 7
         1,  9,   5.688f,  4888.514f,   3.196f,               // band 8
         1,  2,    7.68f,    129.56f,   0.242f,               // section A
         1,  9,   5.472f,  3014.058f,        1,               // section B
         0                                                    // trim
     }}},
});
// clang-format on

}  // namespace brindle
