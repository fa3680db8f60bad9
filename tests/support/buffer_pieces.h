// SPDX-License-Identifier: MIT
//
// The shapes of buffers, written once more from their description, and their union by GEOS.
#ifndef JW_TESTS_SUPPORT_BUFFER_PIECES_H
#define JW_TESTS_SUPPORT_BUFFER_PIECES_H

#include <cmath>
#include <vector>

#include "support/geos_oracle.h"

namespace jwtest {

inline Ring circlePiece(jws::JWRawPoint c, double d) {
    Ring ring;
    for (int k = 36; k > 0; --k) {
        const double a = k * 0.174532925199;
        ring.emplace_back(c.x + d * std::cos(a), c.y + d * std::sin(a));
    }
    return ring;
}

/// Half circles of `corners` inner corners, `step` apart.
inline Ring capsulePiece(jws::JWRawPoint a, jws::JWRawPoint b, double d, int corners = 11,
                         double step = 0.261799387799) {
    if (a == b) return circlePiece(a, d);
    const double left = std::atan2(b.y - a.y, b.x - a.x) + M_PI / 2;
    Ring ring;
    const auto add = [&](jws::JWRawPoint c, double angle) {
        ring.emplace_back(c.x + d * std::cos(angle), c.y + d * std::sin(angle));
    };
    add(a, left);
    add(b, left);
    for (int k = 1; k <= corners; ++k) add(b, left - k * step);
    add(b, left - M_PI);
    add(a, left - M_PI);
    for (int k = 1; k <= corners; ++k) add(a, left - M_PI - k * step);
    return ring;
}

inline std::vector<Ring> piecesAlong(const std::vector<jws::JWRawPoint>& line, double d) {
    std::vector<Ring> pieces;
    if (line.size() == 1) pieces.push_back(circlePiece(line[0], d));
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        pieces.push_back(capsulePiece(line[i], line[i + 1], d));
    }
    return pieces;
}

inline GeosPtr geosUnion(const std::vector<Ring>& rings) {
    std::vector<GEOSGeometry*> polygons;
    for (const Ring& ring : rings) {
        polygons.push_back(GEOSGeom_createPolygon_r(geosContext(), geosRing(ring), nullptr, 0));
    }
    const GeosPtr all(GEOSGeom_createCollection_r(geosContext(), GEOS_MULTIPOLYGON, polygons.data(),
                                                  static_cast<unsigned>(polygons.size())));
    return GeosPtr(GEOSUnaryUnion_r(geosContext(), all.get()));
}

}  // namespace jwtest

#endif  // JW_TESTS_SUPPORT_BUFFER_PIECES_H
