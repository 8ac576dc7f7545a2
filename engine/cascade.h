// SPDX-License-Identifier: ISC
/// The sixteen stages of an instance over a run of samples with constant coefficients.
#pragma once

#include <cstddef>

#include "engine/filter_stage.h"

namespace brindle {

/// Filters `n` samples in place with one stage: the section's recursion rounded to single
/// precision, then the weighted sum of filtered and plain signal, rounded again. `channel` 0 or 1
/// chooses the stage's state. Real-time safe.
void run_stage(FilterStage& stage, size_t channel, float* samples, size_t n) noexcept;

}  // namespace brindle
