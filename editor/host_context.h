// SPDX-License-Identifier: ISC
#pragma once

#include <GL/glx.h>

namespace brindle {

/// Keeps the GL context that the host has current, for the lifetime of a scope in which the editor
/// makes its own current: the destructor makes the host's current again with its drawables, or
/// leaves none current where there was none. UI thread.
class HostContext {
  public:
    /// Releases an EGL context: GLX cannot make one current beside it.
    HostContext();
    ~HostContext();
    HostContext(const HostContext&) = delete;
    HostContext& operator=(const HostContext&) = delete;

  private:
    Display* display_;  ///< null where no GLX context was current
    GLXDrawable draw_;
    GLXDrawable read_;
    GLXContext context_;
    // The EGL context, null where none was current.
    void* eglDisplay_ = nullptr;
    void* eglDraw_ = nullptr;
    void* eglRead_ = nullptr;
    void* eglContext_ = nullptr;
};

}  // namespace brindle
