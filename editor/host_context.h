// SPDX-License-Identifier: ISC
#pragma once

#include <GL/glx.h>

namespace brindle {

/// Saves the host's current GL context during a scope in which the editor makes its own current.
/// The destructor makes the host's context current again with its drawables, or none if there was
/// none. UI thread.
class HostContext {
  public:
    /// Releases a current EGL context: GLX cannot make another one current beside it.
    HostContext();
    ~HostContext();
    HostContext(const HostContext&) = delete;
    HostContext& operator=(const HostContext&) = delete;

  private:
    Display* display_;  ///< null if no GLX context was current
    GLXDrawable draw_;
    GLXDrawable read_;
    GLXContext context_;
    // The EGL context, null if none was current.
    void* eglDisplay_ = nullptr;
    void* eglDraw_ = nullptr;
    void* eglRead_ = nullptr;
    void* eglContext_ = nullptr;
};

}  // namespace brindle
