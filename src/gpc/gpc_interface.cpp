// SPDX-License-Identifier: MIT
//
// The GPC interface over the clipping engine.
#include <gpc.h>

#include <cerrno>
#include <cstdlib>

#include "gpc/clip_engine.h"

extern "C" void gpc_polygon_clip(gpc_op set_operation, gpc_polygon* subject_polygon,
                                 gpc_polygon* clip_polygon, gpc_polygon* result_polygon) {
    const int before = errno;
    const int failure = jws::gpc::clip(set_operation, {subject_polygon, nullptr},
                                       {clip_polygon, nullptr}, *result_polygon);
    errno = failure != 0 ? failure : before;
}

extern "C" void gpc_free_polygon(gpc_polygon* polygon) {
    for (int c = 0; c < polygon->num_contours; ++c) std::free(polygon->contour[c].vertex);
    std::free(polygon->hole);
    std::free(polygon->contour);
    *polygon = {0, nullptr, nullptr};
}
