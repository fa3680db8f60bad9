// SPDX-License-Identifier: MIT
//
// Distances as they are: whether segments meet is decided without rounding (for places at least
// 1e-150 apart, below which exact orientations underflow), and the first point always lies on the
// first operand.
#ifndef JW_ANALYSIS_NEAREST_EXACT_DISTANCE_H
#define JW_ANALYSIS_NEAREST_EXACT_DISTANCE_H

#include "analysis/nearest/segment_lists.h"
#include "foundation/edge_tree.h"
#include "foundation/orientation.h"
#include "foundation/ring_math.h"
#include "foundation/segment_crossing.h"
#include "jw_geometry.h"

namespace jws::detail {

/// True when two segments have a point in common, which is stored: an end of one of them that lies
/// on the other, or the crossing, rounded.
inline bool findCommonPoint(const Segment& s, const Segment& t, JWRawPoint& common) {
    if (!segmentBoxesMeet(s.a, s.b, t.a, t.b)) return false;
    const int a = orientationSign(t.a, t.b, s.a), b = orientationSign(t.a, t.b, s.b);
    const int c = orientationSign(s.a, s.b, t.a), d = orientationSign(s.a, s.b, t.b);
    if (a * b < 0 && c * d < 0) {
        common = crossingOf(s.a, s.b, t.a, t.b);
        return true;
    }
    for (const JWRawPoint* end : {&s.a, &s.b}) {
        if (!pointOnSegmentExact(*end, t.a, t.b)) continue;
        common = *end;
        return true;
    }
    for (const JWRawPoint* end : {&t.a, &t.b}) {
        if (!pointOnSegmentExact(*end, s.a, s.b)) continue;
        common = *end;
        return true;
    }
    return false;
}

/// Between pieces; the ends in the order s.a, s.b, t.a, t.b, of equal ones the first.
inline Closest exactDistance(const Segment& s, const Segment& t) {
    const bool isPoint = s.a == s.b;
    Closest least = fromPointToSegment(s.a, t.a, t.b);
    if (isPoint && t.a == t.b) return least;
    JWRawPoint common;
    if (findCommonPoint(s, t, common)) return {0, common, common};
    if (isPoint) return least;
    const auto take = [&](const Closest& other) {
        if (other.distance < least.distance) least = other;
    };
    take(fromPointToSegment(s.b, t.a, t.b));
    for (const JWRawPoint* end : {&t.a, &t.b}) {
        const Closest reversed = fromPointToSegment(*end, s.a, s.b);
        take({reversed.distance, reversed.q, reversed.p});
    }
    return least;
}

/// An area, boundary included, decided without rounding: by the even-odd rule over all rings of a
/// polygon or multi-polygon; of a collection the areas that are its members, together. Empty for
/// other kinds. Views the geometry.
class ExactArea {
  public:
    explicit ExactArea(const JWGeometry& geometry) { add(geometry); }

    bool isEmpty() const { return m_parts.empty(); }
    bool contains(const JWRawPoint& p) const;

  private:
    struct Ring {
        const JWRawPoint* points;
        EdgeTree tree;
    };
    using Rings = std::vector<Ring>;

    void add(const JWGeometry& geometry);
    static bool areAround(const Rings& rings, const JWRawPoint& p);

    std::vector<Rings> m_parts;
};

}  // namespace jws::detail

#endif  // JW_ANALYSIS_NEAREST_EXACT_DISTANCE_H
