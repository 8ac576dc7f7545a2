// SPDX-License-Identifier: ISC
/// The only file that includes OpenGL, with the functions newer than version 1.1 declared.
#pragma once

#define GL_GLEXT_PROTOTYPES 1
#include <GL/gl.h>
#include <GL/glext.h>
