// SPDX-License-Identifier: MIT
#include "overlay/feature_check.h"

namespace jws::detail {
namespace {

/// x·0 is 0 for every finite x and NaN otherwise, so one sum tells about all without a branch each.
bool isFinite(const JWPolygon& polygon) {
    double probe = 0;
    for (int r = 0; r < polygon.getRingCount(); ++r) {
        const JWRing* ring = polygon.getRingPtrAt(r);
        const JWRawPoint* points = ring->getPointsPtr();
        for (int i = 0, n = ring->getPointCount(); i < n; ++i) {
            probe += points[i].x * 0 + points[i].y * 0;
        }
    }
    return probe == 0;
}

}  // namespace

AreaCheck checkArea(const JWFeature& feature) {
    if (feature.isGeometryEmpty()) return AreaCheck::Empty;
    if (feature.getGeometryType() == JWGeometryPolygon) {
        return isFinite(static_cast<const JWPolygon&>(*feature.getGeometryPtr()))
                   ? AreaCheck::Usable
                   : AreaCheck::NotFinite;
    }
    if (feature.getGeometryType() != JWGeometryMultiPolygon) return AreaCheck::NotAnArea;
    const auto& polygons = static_cast<const JWMultiPolygon&>(*feature.getGeometryPtr());
    for (int i = 0; i < polygons.getPolygonCount(); ++i) {
        if (!isFinite(*polygons.getPolygonPtrAt(i))) return AreaCheck::NotFinite;
    }
    return AreaCheck::Usable;
}

const char* reasonOf(AreaCheck check) {
    switch (check) {
        case AreaCheck::NotAnArea:
            return "the geometry is not a polygon or multipolygon";
        case AreaCheck::NotFinite:
            return "a coordinate is not a finite number";
        case AreaCheck::Usable:
        case AreaCheck::Empty:
            break;
    }
    return nullptr;
}

double areaOf(const JWGeometry& geometry) {
    if (geometry.getGeometryType() == JWGeometryPolygon) {
        return static_cast<const JWPolygon&>(geometry).getArea();
    }
    double area = 0;
    if (geometry.getGeometryType() == JWGeometryMultiPolygon) {
        const auto& polygons = static_cast<const JWMultiPolygon&>(geometry);
        for (int i = 0; i < polygons.getPolygonCount(); ++i) {
            area += polygons.getPolygonPtrAt(i)->getArea();
        }
    }
    return area;
}

}  // namespace jws::detail
