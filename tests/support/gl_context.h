// SPDX-License-Identifier: ISC
/// An OpenGL context without a window (Mesa's software GL on a surfaceless display, with the fixed
/// function pipeline) that draws into a picture whose pixels can be read back.
#pragma once

#define EGL_NO_X11
#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "gl/gl.h"

namespace brindle {

struct Pixel {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
    uint8_t alpha = 0;
};

/// A picture read back from GL, or assembled from others. Row 0 is the top row.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<Pixel> pixels;

    Pixel At(int x, int y) const {
        return pixels.at(static_cast<size_t>(y) * static_cast<size_t>(width) +
                         static_cast<size_t>(x));
    }
};

class GLContext {
  public:
    /// Makes a context current, with a target of `width` x `height` pixels. Coordinates are pixels
    /// from the centre, y upwards; blending and texturing are on as in the editor.
    GLContext(int width, int height) : width_(width), height_(height) {
        setenv("LIBGL_ALWAYS_SOFTWARE", "1", 1);
        display_ = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr);
        Require(eglInitialize(display_, nullptr, nullptr), "eglInitialize");
        Require(eglBindAPI(EGL_OPENGL_API), "eglBindAPI");
        // Without attributes this is a compatibility profile.
        context_ = eglCreateContext(display_, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, nullptr);
        Require(context_ != EGL_NO_CONTEXT, "eglCreateContext");
        Require(eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, context_),
                "eglMakeCurrent");
        MakeTarget();
        Clear();
    }
    ~GLContext() {
        glDeleteFramebuffers(1, &framebuffer_);
        glDeleteTextures(1, &texture_);
        eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglDestroyContext(display_, context_);
        // The display is kept: it and the driver belong to the process.
    }
    GLContext(const GLContext&) = delete;
    GLContext& operator=(const GLContext&) = delete;

    /// Restores the state after construction, with all pixels an opaque grey from 0 to 1.
    void Clear(float grey = 0.0f) {
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
        glViewport(0, 0, width_, height_);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(-width_ / 2.0, width_ / 2.0, -height_ / 2.0, height_ / 2.0, -1.0, 1.0);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glEnable(GL_BLEND);
        glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE);
        glEnable(GL_TEXTURE_2D);
        glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
        glClearColor(grey, grey, grey, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    /// The whole picture as it stands now.
    Picture Read() const {
        const auto row = static_cast<size_t>(width_);
        Picture picture{width_, height_, std::vector<Pixel>(row * static_cast<size_t>(height_))};
        for (int y = 0; y < height_; ++y) {
            glReadPixels(0, height_ - 1 - y, width_, 1, GL_RGBA, GL_UNSIGNED_BYTE,
                         picture.pixels.data() + row * static_cast<size_t>(y));
        }
        return picture;
    }

    /// The pixel at a point in drawing coordinates.
    Pixel At(float x, float y) const {
        Pixel pixel;
        glReadPixels(static_cast<int>(x + static_cast<float>(width_) / 2.0f),
                     static_cast<int>(y + static_cast<float>(height_) / 2.0f), 1, 1, GL_RGBA,
                     GL_UNSIGNED_BYTE, &pixel);
        return pixel;
    }

    /// The colour target as a texture.
    GLuint Texture() const { return texture_; }

  private:
    static void Require(bool condition, const char* what) {
        if (!condition) throw std::runtime_error(std::string("no software OpenGL: ") + what);
    }

    void MakeTarget() {
        glGenTextures(1, &texture_);
        glBindTexture(GL_TEXTURE_2D, texture_);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width_, height_, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     nullptr);
        glGenFramebuffers(1, &framebuffer_);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture_, 0);
        Require(glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE, "framebuffer");
    }

    int width_;
    int height_;
    EGLDisplay display_ = EGL_NO_DISPLAY;
    EGLContext context_ = EGL_NO_CONTEXT;
    GLuint framebuffer_ = 0;
    GLuint texture_ = 0;
};

}  // namespace brindle
