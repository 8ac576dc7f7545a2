// SPDX-License-Identifier: ISC
/// The one place that includes OpenGL, with the functions that came after version 1.1 declared.
#pragma once

#define GL_GLEXT_PROTOTYPES 1
#include <GL/gl.h>
#include <GL/glext.h>
