// SPDX-License-Identifier: ISC
/// Ownership of Cairo surfaces, and writing them to an output file.
#pragma once

#include <cairo.h>

#include <memory>

#include "host/output_file.h"

namespace brindle {

struct SurfaceDestroy {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using SurfacePtr = std::unique_ptr<cairo_surface_t, SurfaceDestroy>;

/// Cairo's write function for an OutputFile, which remembers errors.
inline cairo_status_t write_to_output(void* output, const unsigned char* data, unsigned int size) {
    return static_cast<OutputFile*>(output)->write(data, size) ? CAIRO_STATUS_SUCCESS
                                                               : CAIRO_STATUS_WRITE_ERROR;
}

}  // namespace brindle
