// SPDX-License-Identifier: MIT
//
// The distances and the search of JWGeometryNearest once more, step by step as they are described,
// over all pairs and without any tree: the oracle of its tests. Nothing of src/ is used.
#ifndef JW_TESTS_SUPPORT_STATED_DISTANCES_H
#define JW_TESTS_SUPPORT_STATED_DISTANCES_H

#include <cfloat>
#include <cmath>
#include <vector>

#include "jw_cpgeometrybasic.h"
#include "jw_geometry.h"

namespace jwtest::stated {

using jws::JWEnvelop;
using jws::JWGeometry;
using jws::JWPolygon;
using jws::JWRawPoint;
using jws::JWRing;
using Raw = const JWRawPoint&;
using Line = std::vector<JWRawPoint>;

inline double distance(Raw p, Raw q) {
    return std::sqrt((p.x - q.x) * (p.x - q.x) + (p.y - q.y) * (p.y - q.y));
}

inline double pointSegment(Raw p, Raw a, Raw b, JWRawPoint& P) {
    const double vx = b.x - a.x, vy = b.y - a.y;
    const double r = (p.x - a.x) * vx + (p.y - a.y) * vy, whole = vx * vx + vy * vy;
    if (r <= 0) {
        P = a;
    } else if (r >= whole) {
        P = b;
    } else {
        P.set(a.x + r / whole * vx, a.y + r / whole * vy);
    }
    return distance(p, P);
}

inline double pointLine(Raw p, const Line& line, JWRawPoint& P) {
    if (line.empty()) return -1;
    if (line.size() == 1) return P = line[0], distance(p, P);
    double least = DBL_MAX;
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        JWRawPoint foot;
        const double d = pointSegment(p, line[i], line[i + 1], foot);
        if (d <= least) least = d, P = foot;
    }
    return least;
}

inline bool isOn(Raw p, const JWRing& ring) {
    return jws::JWCPGeometryBasic::isPointOnRing(&p, &ring, 0) == 1;
}
inline bool isWithin(Raw p, const JWRing& ring) {
    return jws::JWCPGeometryBasic::isPointWithinRingCN(&p, &ring) == 1;
}

inline double pointRing(Raw p, const JWRing& ring, JWRawPoint& P) {
    if (isOn(p, ring)) return P = p, 0;
    return pointLine(p, ring.getPointList(), P);
}

inline double pointPolygon(Raw p, const JWPolygon& polygon, JWRawPoint& P) {
    double least = DBL_MAX;
    bool inHole = false;
    const auto take = [&](const JWRing& ring) {
        JWRawPoint foot;
        const double d = pointRing(p, ring, foot);
        if (d > least) return false;
        least = d, P = foot;
        return true;
    };
    for (int i = 1; i < polygon.getRingCount(); ++i) {
        const JWRing& hole = polygon.getRingAt(i);
        if (isOn(p, hole)) return P = p, 0;
        if (isWithin(p, hole)) inHole |= take(hole);
    }
    const JWRing& exterior = polygon.getExteriorRing();
    if ((isOn(p, exterior) || isWithin(p, exterior)) && !inHole) return P = p, 0;
    take(exterior);
    return least;
}

inline bool between(double v, double a, double b) { return (a < v && v < b) || (b < v && v < a); }

inline double segmentSegment(Raw a, Raw b, Raw c, Raw d, JWRawPoint& P, JWRawPoint& Q) {
    JWRawPoint f[4];
    double least[4];
    least[0] = pointSegment(a, c, d, f[0]);
    if (least[0] == 0) return P = Q = a, 0;
    least[1] = pointSegment(b, c, d, f[1]);
    if (least[1] == 0) return P = Q = b, 0;
    const double dx1 = b.x - a.x, dy1 = b.y - a.y, dx2 = d.x - c.x, dy2 = d.y - c.y;
    if (dx1 * dy2 - dy1 * dx2 != 0) {
        const double X =
            (dx2 * dy1 * a.x + (c.y - a.y) * dx1 * dx2 - dx1 * dy2 * c.x) / (dx2 * dy1 - dx1 * dy2);
        const double Y =
            (dy2 * dx1 * a.y + (c.x - a.x) * dy1 * dy2 - dy1 * dx2 * c.y) / (dx1 * dy2 - dy1 * dx2);
        if (between(Y, a.y, b.y) && between(X, a.x, b.x) && between(X, c.x, d.x) &&
            between(Y, c.y, d.y))
            return P = Q = JWRawPoint(X, Y), 0;
    }
    least[2] = pointSegment(c, a, b, f[2]);
    least[3] = pointSegment(d, a, b, f[3]);
    int k = 0;
    for (int i = 1; i < 4; ++i)
        if (least[i] < least[k]) k = i;
    const JWRawPoint* ends[] = {&a, &b, &c, &d};
    P = *ends[k];
    Q = f[k];
    return least[k];
}

/// With P and Q equal before, so that they do not decide.
inline double segmentRing(Raw a, Raw b, const JWRing& ring, JWRawPoint& P, JWRawPoint& Q) {
    double least = DBL_MAX;
    for (int i = 0; i + 1 < ring.getPointCount() && least != 0; ++i) {
        JWRawPoint p, q;
        const double d = segmentSegment(a, b, ring[i], ring[i + 1], p, q);
        if (d < least) least = d, P = p, Q = q;
    }
    return least;
}

inline double segmentPolygon(Raw a, Raw b, const JWPolygon& polygon, JWRawPoint& P, JWRawPoint& Q) {
    double least = DBL_MAX;
    bool inHole = false;
    const auto take = [&](const JWRing& ring) {
        JWRawPoint p, q;
        const double d = segmentRing(a, b, ring, p, q);
        if (d > least) return false;
        least = d, P = p, Q = q;
        return true;
    };
    for (int i = 1; i < polygon.getRingCount(); ++i) {
        const JWRing& hole = polygon.getRingAt(i);
        if (isOn(a, hole) || isOn(b, hole)) return 0;
        if (isWithin(a, hole) && isWithin(b, hole)) inHole |= take(hole);
    }
    const JWRing& exterior = polygon.getExteriorRing();
    if (isOn(a, exterior) || isOn(b, exterior)) return 0;
    if ((isWithin(a, exterior) || isWithin(b, exterior)) && !inHole) return 0;
    take(exterior);
    return least;
}

/// The members of a line or multi-line, the rings of polygons, the points of a point.
inline std::vector<Line> partsOf(const JWGeometry& geometry) {
    switch (geometry.getGeometryType()) {
        case jws::JWGeometryPoint:
            return {{static_cast<const jws::JWPoint&>(geometry).getRawPoint()}};
        case jws::JWGeometryLineString:
            return {static_cast<const jws::JWLineString&>(geometry).getPointList()};
        case jws::JWGeometryPolygon: {
            std::vector<Line> rings;
            for (const JWRing& ring : static_cast<const JWPolygon&>(geometry).getRingList())
                rings.push_back(ring.getPointList());
            return rings;
        }
        default: {
            std::vector<Line> parts;
            const auto& members = static_cast<const jws::JWGeometryCollection&>(geometry);
            for (int i = 0; i < members.getGeometryCount(); ++i)
                for (const Line& part : partsOf(*members.getGeometryPtrAt(i)))
                    parts.push_back(part);
            return parts;
        }
    }
}

}  // namespace jwtest::stated

#endif  // JW_TESTS_SUPPORT_STATED_DISTANCES_H
