// SPDX-License-Identifier: ISC
#include "engine/cascade.h"

namespace brindle {

void run_stage(FilterStage& stage, size_t channel, float* samples, size_t n) noexcept {
    const FilterStage c = stage;
    double s1 = stage.state[2 * channel];
    double s2 = stage.state[2 * channel + 1];
    for (size_t i = 0; i < n; ++i) {
        const double v = static_cast<double>(samples[i]);
        const double y = static_cast<double>(static_cast<float>(s1 + c.b0 * v));
        s1 = s2 + c.b1 * v + c.a1 * y;
        s2 = c.b2 * v + c.a2 * y;
        samples[i] = static_cast<float>(c.wet * y + c.dry * v);
    }
    stage.state[2 * channel] = s1;
    stage.state[2 * channel + 1] = s2;
}

}  // namespace brindle
