// SPDX-License-Identifier: ISC
#include "host/gl_facts.h"

#include <GL/gl.h>
#include <GL/glx.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <array>
#include <memory>

namespace brindle {
namespace {

struct XFreeMemory {
    void operator()(void* memory) const { XFree(memory); }
};

std::string text_of(GLenum name) {
    const GLubyte* text = glGetString(name);
    return text != nullptr ? reinterpret_cast<const char*>(text) : "";
}

void read_context(Display* display, GlFacts& facts) {
    std::array<int, 4> wanted = {GLX_RGBA, GLX_DOUBLEBUFFER, None};
    if (glXQueryExtension(display, nullptr, nullptr) == False) return;
    const std::unique_ptr<XVisualInfo, XFreeMemory> visual(
        glXChooseVisual(display, DefaultScreen(display), wanted.data()));
    if (!visual) return;
    GLXContext context = glXCreateContext(display, visual.get(), nullptr, True);
    if (context == nullptr) return;
    const Window root = RootWindow(display, visual->screen);
    XSetWindowAttributes attributes{};
    attributes.colormap = XCreateColormap(display, root, visual->visual, AllocNone);
    const Window window = XCreateWindow(display, root, 0, 0, 1, 1, 0, visual->depth, InputOutput,
                                        visual->visual, CWColormap, &attributes);
    if (glXMakeCurrent(display, window, context) == True) {
        facts.is_direct = glXIsDirect(display, context) == True;
        facts.vendor = text_of(GL_VENDOR);
        facts.renderer = text_of(GL_RENDERER);
        facts.version = text_of(GL_VERSION);
        glXMakeCurrent(display, None, nullptr);
    }
    glXDestroyContext(display, context);
}

}  // namespace

GlFacts gl_facts() {
    GlFacts facts;
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) return facts;
    facts.has_display = true;
    read_context(display, facts);
    XCloseDisplay(display);
    return facts;
}

}  // namespace brindle
