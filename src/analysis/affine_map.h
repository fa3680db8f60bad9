// SPDX-License-Identifier: MIT
//
// Maps of the plane, their fit to control points, and their application to every vertex of a
// geometry.
#ifndef JW_ANALYSIS_AFFINE_MAP_H
#define JW_ANALYSIS_AFFINE_MAP_H

#include <optional>

#include "jw_geometry.h"
#include "jw_geometrytransform.h"

namespace jws::detail {

/// x' = m[0] + m[1]·x + m[2]·y, y' = m[3] + m[4]·x + m[5]·y.
struct Matrix {
    double m[6];

    JWRawPoint operator()(const JWRawPoint& p) const {
        return {m[0] + m[1] * p.x + m[2] * p.y, m[3] + m[4] * p.x + m[5] * p.y};
    }
};

/// The matrix of control points, as `JWGeometryTransform::affineTransformFromGCP`.
std::optional<Matrix> fittedMatrix(const JWGCP* points, int n);

/// The determinant of the linear part.
inline double determinant(const double* m) { return m[1] * m[5] - m[2] * m[4]; }

/// True when the determinant is 0 to the rounding of its products, 1e-15 of them, or not finite.
/// The scale of the matrix, or of one of its rows, plays no part.
bool isSingular(const double* matrix);

/// The inverse, by Cramer's rule, of a matrix that has one; not finite otherwise, and where a
/// result is beyond all numbers.
Matrix inverseOf(const double* matrix);

/// True for the kinds that `mapVertices` takes, and bags of these.
bool hasVertices(const JWGeometry& geometry);

/// Applies a map, `JWRawPoint map(const JWRawPoint&)`, to every vertex of a geometry with vertices.
/// Envelopes become stale.
template <class Map>
void mapVertices(JWGeometry& geometry, const Map& map) {
    const auto mapPoint = [&](JWPoint& point) {
        const JWRawPoint p = map(point.getRawPoint());
        point.setXY(p.x, p.y);
    };
    const auto mapList = [&](JWPointSequence& sequence) {
        for (JWRawPoint& p : sequence.getPointList()) p = map(p);
    };
    switch (geometry.getGeometryType()) {
        case JWGeometryPoint:
            mapPoint(static_cast<JWPoint&>(geometry));
            break;
        case JWGeometryMultiPoint:
            for (JWPoint& p : static_cast<JWMultiPoint&>(geometry).getPointList()) mapPoint(p);
            break;
        case JWGeometryLineString:
        case JWGeometryRing:
            mapList(static_cast<JWPointSequence&>(geometry));
            break;
        case JWGeometryPolygon:
            for (JWRing& ring : static_cast<JWPolygon&>(geometry).getRingList()) mapList(ring);
            break;
        default: {
            auto& members = static_cast<JWGeometryCollection&>(geometry);
            for (int i = 0; i < members.getGeometryCount(); ++i) {
                mapVertices(*members.getGeometryPtrAt(i), map);
            }
        }
    }
}

}  // namespace jws::detail

#endif  // JW_ANALYSIS_AFFINE_MAP_H
