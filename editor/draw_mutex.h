// SPDX-License-Identifier: ISC
#pragma once

#include <mutex>

namespace brindle {

/// Locked during every frame: two editors of a process never render at the same time.
inline std::mutex drawMutex;

}  // namespace brindle
