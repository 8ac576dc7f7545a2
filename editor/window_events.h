// SPDX-License-Identifier: ISC
#pragma once

#include "editor/GLView_BaseView.h"
#include "editor/pugl_window.h"

namespace brindle {

/// From now on all that happens to `window` reaches `root`, which must outlive the window's last
/// `ProcessEvents`. Keys are also told on standard error.
void ConnectWindow(PuglWindow& window, GLView_BaseView& root);

}  // namespace brindle
