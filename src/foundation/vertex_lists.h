// SPDX-License-Identifier: MIT
//
// The vertices of any geometry that a layer can hold, as the lists in which they are stored.
#ifndef JW_FOUNDATION_VERTEX_LISTS_H
#define JW_FOUNDATION_VERTEX_LISTS_H

#include <cstddef>
#include <cstdint>

#include "jw_geometry.h"

namespace jws::detail {

/// Calls `visit(points, n)` for each list of vertices in order, single points as lists of one. A
/// visit that answers false ends the walk. Returns false when one did. Other kinds than points,
/// lines, rings, polygons and collections of these have none.
template <class Visit>
bool everyVertexList(const JWGeometry& geometry, const Visit& visit) {
    const auto visitPoint = [&](const JWPoint& point) {
        const JWRawPoint p = point.getRawPoint();
        return visit(&p, std::size_t{1});
    };
    const auto visitList = [&](const JWPointSequence& list) {
        return visit(list.getPointList().data(), list.getPointList().size());
    };
    switch (geometry.getGeometryType()) {
        case JWGeometryPoint:
            return visitPoint(static_cast<const JWPoint&>(geometry));
        case JWGeometryLineString:
        case JWGeometryRing:
            return visitList(static_cast<const JWPointSequence&>(geometry));
        case JWGeometryPolygon:
            for (const JWRing& ring : static_cast<const JWPolygon&>(geometry).getRingList()) {
                if (!visitList(ring)) return false;
            }
            return true;
        case JWGeometryMultiPoint:
        case JWGeometryMultiLineString:
        case JWGeometryMultiPolygon:
        case JWGeometryGeometryBag: {
            const auto& members = static_cast<const JWGeometryCollection&>(geometry);
            for (int i = 0; i < members.getGeometryCount(); ++i) {
                if (!everyVertexList(*members.getGeometryPtrAt(i), visit)) return false;
            }
            return true;
        }
        default:
            return true;
    }
}

/// The most points that an operation makes of one line: their standard binary form just stays below
/// the 2 GiB that formats and drivers take.
inline constexpr std::size_t kMostMadePoints = (std::size_t{1} << 27) - 1;

/// True when no coordinate of `n` points is NaN or infinite. x·0 is 0 for every finite x and NaN
/// otherwise, so one sum tells about all without a branch each.
inline bool areFinite(const JWRawPoint* points, std::size_t n) {
    double probe = 0;
    for (std::size_t i = 0; i < n; ++i) probe += points[i].x * 0 + points[i].y * 0;
    return probe == 0;
}

/// True when no vertex has a coordinate that is NaN or infinite. Cost: one pass.
inline bool isFinite(const JWGeometry& geometry) { return everyVertexList(geometry, areFinite); }

/// The number of vertices, closing points of rings included.
inline std::int64_t vertexCount(const JWGeometry& geometry) {
    std::int64_t count = 0;
    everyVertexList(geometry, [&](const JWRawPoint*, std::size_t n) {
        count += static_cast<std::int64_t>(n);
        return true;
    });
    return count;
}

/// The rectangle around a geometry from its coordinates, whatever envelope is stored. NaN
/// coordinates are passed over; invalid where there is nothing else. Cost: one pass.
inline JWEnvelop rectangleAround(const JWGeometry& geometry) {
    JWEnvelop rectangle = JWEnvelop::invalid();
    everyVertexList(geometry, [&](const JWRawPoint* points, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) rectangle.inflates_to_contain(points[i]);
        return true;
    });
    return rectangle;
}

}  // namespace jws::detail

#endif  // JW_FOUNDATION_VERTEX_LISTS_H
