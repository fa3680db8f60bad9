// SPDX-License-Identifier: MIT
//
// What benchmarks need to own GEOS objects.
#ifndef JWCG_BENCH_GEOS_HANDLES_H
#define JWCG_BENCH_GEOS_HANDLES_H

#include <geos_c.h>

#include <cstddef>
#include <memory>

namespace bench {

inline GEOSContextHandle_t geos() {
    static const GEOSContextHandle_t context = GEOS_init_r();
    return context;
}

struct GeosDeleter {
    void operator()(GEOSGeometry* g) const { GEOSGeom_destroy_r(geos(), g); }
};
using GeosPtr = std::unique_ptr<GEOSGeometry, GeosDeleter>;

/// A line of n points from x, y, x, y, ...
inline GeosPtr geosLine(const double* xy, std::size_t n) {
    GEOSCoordSequence* s =
        GEOSCoordSeq_copyFromBuffer_r(geos(), xy, static_cast<unsigned>(n), 0, 0);
    return GeosPtr(GEOSGeom_createLineString_r(geos(), s));
}

}  // namespace bench

#endif  // JWCG_BENCH_GEOS_HANDLES_H
