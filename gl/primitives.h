// SPDX-License-Identifier: ISC
/// Primitives as the drawing routines emit them. UI thread, with the editor's GL context current.
#pragma once

#include <cmath>

#include "gl/GLColor.h"
#include "gl/GLRect.h"
#include "gl/gl.h"

namespace brindle {

inline constexpr GLRect kWholeTexture = {0.0f, 0.0f, 1.0f, 1.0f};

/// A quad's colours along its top and bottom edge.
struct Fade {
    GLColor top;
    GLColor bottom;
};

/// Emits one quad between glBegin and glEnd, clockwise from the upper left corner.
inline void EmitQuad(const GLRect& place, const GLRect& texture = kWholeTexture,
                     const Fade* fade = nullptr) {
    if (fade != nullptr) fade->top.Apply();
    glTexCoord2f(texture.left, texture.top);
    glVertex2f(place.left, place.top);
    glTexCoord2f(texture.right, texture.top);
    glVertex2f(place.right, place.top);
    if (fade != nullptr) fade->bottom.Apply();
    glTexCoord2f(texture.right, texture.bottom);
    glVertex2f(place.right, place.bottom);
    glTexCoord2f(texture.left, texture.bottom);
    glVertex2f(place.left, place.bottom);
}

/// Begins primitives with the current colour at each vertex. Software GL treats a colour set
/// outside as a constant of the fragment program, and copies all its state for every other colour.
/// The colour is rounded to a pixel's steps here: software GL's fast way to fill rectangles cuts
/// what lies between them, where its usual way rounds.
inline void BeginInColor(GLenum mode) {
    constexpr GLfloat kSteps = 255.0f;
    GLfloat color[4];
    glGetFloatv(GL_CURRENT_COLOR, color);
    for (GLfloat& component : color) component = std::round(component * kSteps) / kSteps;
    glBegin(mode);
    glColor4fv(color);
}

/// Draws primitives without a texture during a scope.
struct PlainPrimitives {
    explicit PlainPrimitives(GLenum mode = GL_QUADS) {
        glDisable(GL_TEXTURE_2D);
        BeginInColor(mode);
    }
    ~PlainPrimitives() {
        glEnd();
        glEnable(GL_TEXTURE_2D);
    }
    PlainPrimitives(const PlainPrimitives&) = delete;
    PlainPrimitives& operator=(const PlainPrimitives&) = delete;
};

/// Draws quads with a texture during a scope.
struct TexturedQuads {
    explicit TexturedQuads(GLuint texture) {
        glBindTexture(GL_TEXTURE_2D, texture);
        BeginInColor(GL_QUADS);
    }
    ~TexturedQuads() { glEnd(); }
    TexturedQuads(const TexturedQuads&) = delete;
    TexturedQuads& operator=(const TexturedQuads&) = delete;
};

/// Switches blending off during a scope if the current colour is opaque: the picture is the same,
/// in half the time for large areas.
class OpaqueScope {
  public:
    OpaqueScope() {
        GLfloat current[4];
        glGetFloatv(GL_CURRENT_COLOR, current);
        switched_ = current[3] >= 1.0f && glIsEnabled(GL_BLEND) == GL_TRUE;
        if (switched_) glDisable(GL_BLEND);
    }
    ~OpaqueScope() {
        if (switched_) glEnable(GL_BLEND);
    }
    OpaqueScope(const OpaqueScope&) = delete;
    OpaqueScope& operator=(const OpaqueScope&) = delete;

  private:
    bool switched_ = false;
};

}  // namespace brindle
