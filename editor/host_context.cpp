// SPDX-License-Identifier: ISC
#include "editor/host_context.h"

#include <dlfcn.h>

#include <memory>

namespace brindle {
namespace {

constexpr int kEglDraw = 0x3059;
constexpr int kEglRead = 0x305A;

/// EGL, if the host has loaded it. The editor is not linked with it.
class Egl {
  public:
    explicit operator bool() const { return library_ != nullptr; }

    template <typename Result, typename... Args>
    Result Call(const char* name, Args... args) const {
        auto* function = reinterpret_cast<Result (*)(Args...)>(dlsym(library_.get(), name));
        return function != nullptr ? function(args...) : Result{};
    }

  private:
    struct Close {
        void operator()(void* library) const { dlclose(library); }
    };
    std::unique_ptr<void, Close> library_{dlopen("libEGL.so.1", RTLD_LAZY | RTLD_NOLOAD)};
};

}  // namespace

HostContext::HostContext()
    : display_(glXGetCurrentDisplay()),
      draw_(glXGetCurrentDrawable()),
      read_(glXGetCurrentReadDrawable()),
      context_(glXGetCurrentContext()) {
    if (context_ != nullptr) return;
    const Egl egl;
    if (!egl) return;
    eglContext_ = egl.Call<void*>("eglGetCurrentContext");
    if (eglContext_ == nullptr) return;
    eglDisplay_ = egl.Call<void*>("eglGetCurrentDisplay");
    eglDraw_ = egl.Call<void*>("eglGetCurrentSurface", kEglDraw);
    eglRead_ = egl.Call<void*>("eglGetCurrentSurface", kEglRead);
    void* const none = nullptr;
    egl.Call<unsigned>("eglMakeCurrent", eglDisplay_, none, none, none);
}

HostContext::~HostContext() {
    if (context_ != nullptr) {
        if (glXGetCurrentContext() != context_ || glXGetCurrentDrawable() != draw_ ||
            glXGetCurrentReadDrawable() != read_) {
            glXMakeContextCurrent(display_, draw_, read_, context_);
        }
        return;
    }
    if (glXGetCurrentContext() != nullptr) {
        glXMakeContextCurrent(glXGetCurrentDisplay(), None, None, nullptr);
    }
    if (eglContext_ != nullptr) {
        Egl().Call<unsigned>("eglMakeCurrent", eglDisplay_, eglDraw_, eglRead_, eglContext_);
    }
}

}  // namespace brindle
