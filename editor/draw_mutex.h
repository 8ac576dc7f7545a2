// SPDX-License-Identifier: ISC
#pragma once

#include <mutex>

namespace brindle {

/// Held for the whole of every frame: no two editors of a process render at the same moment.
inline std::mutex drawMutex;

}  // namespace brindle
