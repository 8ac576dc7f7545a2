// SPDX-License-Identifier: ISC
/// What all that is drawn with Cairo shares: an owner, and the way into an output file.
#pragma once

#include <cairo.h>

#include <memory>

#include "host/output_file.h"

namespace brindle {

struct SurfaceDestroy {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using SurfacePtr = std::unique_ptr<cairo_surface_t, SurfaceDestroy>;

/// A stream function of Cairo whose closure is an OutputFile, which remembers what goes wrong.
inline cairo_status_t write_to_output(void* output, const unsigned char* data, unsigned int size) {
    return static_cast<OutputFile*>(output)->write(data, size) ? CAIRO_STATUS_SUCCESS
                                                               : CAIRO_STATUS_WRITE_ERROR;
}

}  // namespace brindle
