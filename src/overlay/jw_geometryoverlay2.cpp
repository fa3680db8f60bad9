// SPDX-License-Identifier: MIT
//
// The geometry overlay of this class is that of JWGeometryOverlay, forwarded.
#include "jw_geometryoverlay2.h"

#include <utility>

#include "foundation/api_guard.h"
#include "jw_geometryoverlay.h"
#include "overlay/geometry_overlay.h"
#include "overlay/group_union.h"
#include "overlay/multi_parts.h"

namespace jws {

using namespace detail;

int JWGeometryOverlay2::polygonSymmetricalDifferencePolygon_new(
    const JWGeometry* a, const JWGeometry* b, std::vector<JWGeometry*>& outGeometries,
    std::vector<int>& outCodes, double tolerance) {
    if (!a || !b) return 0;
    return guarded("polygonSymmetricalDifferencePolygon_new", 0, [&] {
        return handOver(symmetricalDifferenceAtOnce(*a, *b, tolerance), outGeometries, outCodes);
    });
}

int JWGeometryOverlay2::unionPolygons(std::vector<JWFeature*> features,
                                      std::vector<JWGeometry*>& geometries, double tolerance) {
    return guarded("unionPolygons", 0, [&] {
        std::unique_ptr<JWGeometry> united = uniteFeatures(features, tolerance);
        if (!united) return 0;
        std::vector<std::unique_ptr<JWGeometry>> polygons = splitPolygons(std::move(united));
        geometries.reserve(geometries.size() + polygons.size());
        for (std::unique_ptr<JWGeometry>& polygon : polygons) {
            geometries.push_back(polygon.release());
        }
        return static_cast<int>(polygons.size());
    });
}

int JWGeometryOverlay2::getExteriorRingCount(const JWGeometry* geometry) {
    if (!geometry) return 0;
    switch (geometry->getGeometryType()) {
        case JWGeometryPolygon:
            return 1;
        case JWGeometryMultiPolygon:
            return static_cast<const JWMultiPolygon*>(geometry)->getPolygonCount();
        default:
            return 0;
    }
}

int JWGeometryOverlay2::getGeometryPointCount(const JWGeometry* geometry) {
    if (!geometry) return 0;
    switch (geometry->getGeometryType()) {
        case JWGeometryPoint:
            return 1;
        case JWGeometryMultiPoint:
            return static_cast<const JWMultiPoint*>(geometry)->getGeometryCount();
        case JWGeometryLineString:
            return static_cast<const JWLineString*>(geometry)->getPointCount();
        case JWGeometryPolygon: {
            int count = 0;
            for (const JWRing& ring : static_cast<const JWPolygon*>(geometry)->getRingList()) {
                count += ring.getPointCount();
            }
            return count;
        }
        case JWGeometryMultiLineString:
        case JWGeometryMultiPolygon: {
            const auto* parts = static_cast<const JWGeometryCollection*>(geometry);
            int count = 0;
            for (int i = 0; i < parts->getGeometryCount(); ++i) {
                count += getGeometryPointCount(parts->getGeometryPtrAt(i));
            }
            return count;
        }
        default:
            return 0;
    }
}

// --- Same as the functions of JWGeometryOverlay --------------------------------------------------

JWGeometry* JWGeometryOverlay2::polygonIntersectPolygon(const JWGeometry* a, const JWGeometry* b,
                                                        double tolerance) {
    return JWGeometryOverlay::polygonIntersectPolygon(a, b, tolerance);
}

JWGeometry* JWGeometryOverlay2::polygonErasePolygon(const JWGeometry* a, const JWGeometry* b,
                                                    double tolerance) {
    return JWGeometryOverlay::polygonErasePolygon(a, b, tolerance);
}

JWGeometry* JWGeometryOverlay2::polygonUnionPolygonToOne(const JWGeometry* a, const JWGeometry* b,
                                                         double tolerance) {
    return JWGeometryOverlay::polygonUnionPolygonToOne(a, b, tolerance);
}

int JWGeometryOverlay2::polygonSymmetricalDifferencePolygon(const JWGeometry* a,
                                                            const JWGeometry* b,
                                                            std::vector<JWGeometry*>& outGeometries,
                                                            std::vector<int>& outCodes,
                                                            double tolerance) {
    return JWGeometryOverlay::polygonSymmetricalDifferencePolygon(a, b, outGeometries, outCodes,
                                                                  tolerance);
}

int JWGeometryOverlay2::polygonIdentityPolygon(const JWGeometry* a, const JWGeometry* b,
                                               std::vector<JWGeometry*>& outGeometries,
                                               std::vector<int>& outCodes, double tolerance) {
    return JWGeometryOverlay::polygonIdentityPolygon(a, b, outGeometries, outCodes, tolerance);
}

int JWGeometryOverlay2::polygonUpdatePolygon(const JWGeometry* a, const JWGeometry* b,
                                             std::vector<JWGeometry*>& outGeometries,
                                             std::vector<int>& outCodes, bool keepBorders,
                                             double tolerance) {
    return JWGeometryOverlay::polygonUpdatePolygon(a, b, outGeometries, outCodes, keepBorders,
                                                   tolerance);
}

JWGeometry* JWGeometryOverlay2::unionPolygonsToOne(std::vector<JWGeometry*> geometries,
                                                   double tolerance) {
    return JWGeometryOverlay::unionPolygonsToOne(std::move(geometries), tolerance);
}

JWGeometry* JWGeometryOverlay2::unionPolygonsToOne(std::vector<JWFeature*> features,
                                                   double tolerance) {
    return JWGeometryOverlay::unionPolygonsToOne(std::move(features), tolerance);
}

JWFeature* JWGeometryOverlay2::unionPolygonsToOne(JWFeatureClass* features, double tolerance) {
    return JWGeometryOverlay::unionPolygonsToOne(features, tolerance);
}

bool JWGeometryOverlay2::feature_attributes_clone(JWFeature* source, JWFeature& target) {
    return JWGeometryOverlay::feature_attributes_clone(source, target);
}

}  // namespace jws
