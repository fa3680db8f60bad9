// SPDX-License-Identifier: MIT
//
// GEOS as the independent judge of areas and validity. Polygons go over by their coordinates.
#ifndef JW_TESTS_SUPPORT_GEOS_ORACLE_H
#define JW_TESTS_SUPPORT_GEOS_ORACLE_H

#include <geos_c.h>

#include <memory>
#include <string>
#include <vector>

#include "jw_geometry.h"
#include "support/rings.h"
#include "support/slab_areas.h"

namespace jwtest {

inline GEOSContextHandle_t geosContext() {
    struct Context {
        GEOSContextHandle_t handle = GEOS_init_r();
        ~Context() { GEOS_finish_r(handle); }
    };
    thread_local Context context;
    return context.handle;
}

struct GeosDeleter {
    void operator()(GEOSGeometry* g) const { GEOSGeom_destroy_r(geosContext(), g); }
};
using GeosPtr = std::unique_ptr<GEOSGeometry, GeosDeleter>;

inline GEOSGeometry* geosRing(const Ring& ring) {
    GEOSContextHandle_t h = geosContext();
    const unsigned n = ring.empty() ? 0 : static_cast<unsigned>(ring.size() + 1);
    GEOSCoordSequence* s = GEOSCoordSeq_create_r(h, n, 2);
    for (unsigned i = 0; i < n; ++i) {
        const jws::JWRawPoint& p = ring[i % ring.size()];
        GEOSCoordSeq_setXY_r(h, s, i, p.x, p.y);
    }
    return GEOSGeom_createLinearRing_r(h, s);
}

inline Ring cornersOf(const jws::JWRing& ring) {
    return Ring(ring.getPointList().begin(), ring.getPointList().end() - !ring.isEmpty());
}

inline GEOSGeometry* geosPolygon(const jws::JWPolygon& polygon) {
    GEOSGeometry* shell = geosRing(cornersOf(polygon.getExteriorRing()));
    std::vector<GEOSGeometry*> holes;
    for (int i = 1; i < polygon.getRingCount(); ++i) {
        holes.push_back(geosRing(cornersOf(polygon.getRingAt(i))));
    }
    return GEOSGeom_createPolygon_r(geosContext(), shell, holes.data(),
                                    static_cast<unsigned>(holes.size()));
}

/// The polygon or multipolygon as it is, valid or not; an empty polygon for null.
inline GeosPtr toGeos(const jws::JWGeometry* geometry) {
    GEOSContextHandle_t h = geosContext();
    if (geometry && geometry->getGeometryType() == jws::JWGeometryPolygon) {
        return GeosPtr(geosPolygon(*static_cast<const jws::JWPolygon*>(geometry)));
    }
    if (!geometry || geometry->getGeometryType() != jws::JWGeometryMultiPolygon) {
        return GeosPtr(GEOSGeom_createEmptyPolygon_r(h));
    }
    const auto& multi = *static_cast<const jws::JWMultiPolygon*>(geometry);
    std::vector<GEOSGeometry*> members;
    for (int i = 0; i < multi.getPolygonCount(); ++i) {
        members.push_back(geosPolygon(multi.getPolygonAt(i)));
    }
    return GeosPtr(GEOSGeom_createCollection_r(h, GEOS_MULTIPOLYGON, members.data(),
                                               static_cast<unsigned>(members.size())));
}

inline double geosArea(const GEOSGeometry* geometry) {
    double area = 0;
    GEOSArea_r(geosContext(), geometry, &area);
    return area;
}

inline bool isValid(const jws::JWGeometry* geometry) {
    return GEOSisValid_r(geosContext(), toGeos(geometry).get()) == 1;
}

inline std::string validReason(const GEOSGeometry* geometry) {
    char* text = GEOSisValidReason_r(geosContext(), geometry);
    const std::string reason = text ? text : "";
    GEOSFree_r(geosContext(), text);
    return reason;
}

inline FourAreas geosAreas(const GEOSGeometry* a, const GEOSGeometry* b) {
    GEOSContextHandle_t h = geosContext();
    return {{geosArea(GeosPtr(GEOSDifference_r(h, a, b)).get()),
             geosArea(GeosPtr(GEOSIntersection_r(h, a, b)).get()),
             geosArea(GeosPtr(GEOSSymDifference_r(h, a, b)).get()),
             geosArea(GeosPtr(GEOSUnion_r(h, a, b)).get())}};
}

}  // namespace jwtest

#endif  // JW_TESTS_SUPPORT_GEOS_ORACLE_H
