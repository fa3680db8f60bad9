// SPDX-License-Identifier: MIT
//
// The distance of points and segments as JWGeometryNearest states it, and the running minimum over
// many of them. Every formula is evaluated as stated: results depend on it in the last place, and
// through ties beyond that.
#ifndef JW_ANALYSIS_NEAREST_STATED_DISTANCE_H
#define JW_ANALYSIS_NEAREST_STATED_DISTANCE_H

#include <limits>

#include "foundation/segment_math.h"

namespace jws::detail {

/// A distance and the two points that realise it.
struct Closest {
    double distance;
    JWRawPoint p;
    JWRawPoint q;
};

inline Closest betweenPoints(const JWRawPoint& p, const JWRawPoint& q) {
    return {pointDistance(p, q), p, q};
}

/// From a point to a segment: the foot is the second point.
inline Closest fromPointToSegment(const JWRawPoint& p, const JWRawPoint& a, const JWRawPoint& b) {
    return betweenPoints(p, closestOnSegment(p, a, b));
}

/// The crossing of two segments' lines lies strictly between their ends on both axes; so a crossing
/// with a horizontal or vertical segment is none.
inline bool crossInside(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint& c,
                        const JWRawPoint& d, JWRawPoint& crossing) {
    const double dx1 = b.x - a.x, dy1 = b.y - a.y, dx2 = d.x - c.x, dy2 = d.y - c.y;
    if (dx1 * dy2 - dy1 * dx2 == 0) return false;
    const double x =
        (dx2 * dy1 * a.x + (c.y - a.y) * dx1 * dx2 - dx1 * dy2 * c.x) / (dx2 * dy1 - dx1 * dy2);
    const double y =
        (dy2 * dx1 * a.y + (c.x - a.x) * dy1 * dy2 - dy1 * dx2 * c.y) / (dx1 * dy2 - dy1 * dx2);
    const auto between = [](double value, double end, double otherEnd) {
        return end < otherEnd ? end < value && value < otherEnd : otherEnd < value && value < end;
    };
    crossing.set(x, y);
    return between(y, a.y, b.y) && between(x, a.x, b.x) && between(x, c.x, d.x) &&
           between(y, c.y, d.y);
}

/// From segment ab to segment cd. Where an end of the second realises it, the first point lies on
/// the second segment and the second point on the first.
inline Closest fromSegmentToSegment(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint& c,
                                    const JWRawPoint& d) {
    Closest least = fromPointToSegment(a, c, d);
    if (least.distance == 0) return {0, a, a};
    const Closest second = fromPointToSegment(b, c, d);
    if (second.distance == 0) return {0, b, b};
    JWRawPoint crossing;
    if (crossInside(a, b, c, d, crossing)) return {0, crossing, crossing};
    for (const Closest& other : {second, fromPointToSegment(c, a, b), fromPointToSegment(d, a, b)})
        if (other.distance < least.distance) least = other;
    return least;
}

/// The running minimum: of equal candidates the last one stays, or the first. What is not a finite
/// number is no candidate.
template <bool kKeepsLast>
class Least {
  public:
    void take(const Closest& candidate) {
        const bool isTaken =
            kKeepsLast || !m_found ? candidate.distance <= m_least : candidate.distance < m_least;
        if (!isTaken) return;
        m_least = candidate.distance;
        m_closest = candidate;
        m_found = true;
    }
    /// Takes the answer of another search, which may be none.
    template <bool kOther>
    void take(const Least<kOther>& other) {
        if (other.found()) take(other.closest());
    }
    bool found() const { return m_found; }
    double least() const { return m_least; }
    const Closest& closest() const { return m_closest; }

  private:
    double m_least = std::numeric_limits<double>::max();
    bool m_found = false;
    Closest m_closest{0, {0, 0}, {0, 0}};
};

using LastLeast = Least<true>;
using FirstLeast = Least<false>;

}  // namespace jws::detail

#endif  // JW_ANALYSIS_NEAREST_STATED_DISTANCE_H
