// SPDX-License-Identifier: MIT
//
// The memory of a geometry, for caches that are bounded in bytes.
#ifndef JW_FOUNDATION_GEOMETRY_MEMORY_H
#define JW_FOUNDATION_GEOMETRY_MEMORY_H

#include <cstddef>

#include "jw_geometry.h"

namespace jws::detail {

/// Bytes that a geometry and everything it owns occupy, to within allocator overhead. O(members).
inline std::size_t geometryMemory(const JWGeometry& geometry) {
    const auto points = [](const JWPointSequence& sequence) {
        return sequence.getPointList().capacity() * sizeof(JWRawPoint);
    };
    switch (geometry.getGeometryType()) {
        case JWGeometryLineString:
        case JWGeometryRing:
            return sizeof(JWRing) + points(static_cast<const JWPointSequence&>(geometry));
        case JWGeometryPolygon: {
            const auto& polygon = static_cast<const JWPolygon&>(geometry);
            std::size_t bytes = sizeof polygon;
            for (const JWRing& ring : polygon.getRingList()) bytes += sizeof ring + points(ring);
            return bytes;
        }
        case JWGeometryMultiPoint:
        case JWGeometryMultiLineString:
        case JWGeometryMultiPolygon:
        case JWGeometryGeometryBag: {
            const auto& members = static_cast<const JWGeometryCollection&>(geometry);
            std::size_t bytes = sizeof(JWMultiPolygon);
            for (int i = 0; i < members.getGeometryCount(); ++i) {
                bytes += geometryMemory(*members.getGeometryPtrAt(i));
            }
            return bytes;
        }
        default:
            return 128;
    }
}

}  // namespace jws::detail

#endif  // JW_FOUNDATION_GEOMETRY_MEMORY_H
