// SPDX-License-Identifier: MIT
//
// The smallest rectangle by rotating calipers over the convex hull.
//
// The rectangle of least area has a side along an edge of the hull (H. Freeman, R. Shapira,
// Determining the minimum-area encasing rectangle for an arbitrary closed curve, 1975), and so has
// the narrowest strip. For each edge in turn the three other sides rest on the corners farthest
// along, across and back; as the edge turns, these only move on around the hull (M. I. Shamos,
// 1978; G. T. Toussaint, 1983). O(n) after the hull.
//
// Coordinates are taken relative to the first corner of the hull. Each side goes through the corner
// that it rests on, so points stick out by rounding only.
#include "analysis/bounding_rectangle.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "analysis/hull.h"
#include "foundation/segment_math.h"
#include "foundation/vertex_lists.h"

namespace jws::detail {

namespace {

/// A rectangle on an edge of the hull: extents along and across, relative to the edge's start.
struct Strip {
    JWRawPoint origin;
    JWRawPoint direction;  ///< unit vector along the edge
    double back, ahead, across;

    double width() const { return across; }
    double area() const { return across * (ahead - back); }
    JWRawPoint corner(double along, double side) const {
        return JWRawPoint(origin.x + direction.x * along - direction.y * side,
                          origin.y + direction.y * along + direction.x * side);
    }
};

/// The unit vector along an edge; zero for an edge of no length.
JWRawPoint directionOf(JWRawPoint edge) {
    double size = length(edge);
    if (size < 1e-150) {  // the squares vanish or have lost digits
        const double most = std::max(std::fabs(edge.x), std::fabs(edge.y));
        if (most == 0) return JWRawPoint(0, 0);
        edge.set(edge.x / most, edge.y / most);
        size = length(edge);
    }
    return JWRawPoint(edge.x / size, edge.y / size);
}

/// Measures that differ by less are taken for equal, so that ties do not depend on rounding.
constexpr double kTie = 1e-14;

bool smaller(double a, double b) { return a < b * (1 - kTie); }

bool better(const Strip& a, const Strip& b, RectangleMeasure measure) {
    if (measure == RectangleMeasure::kArea) return smaller(a.area(), b.area());
    if (smaller(a.width(), b.width())) return true;
    return !smaller(b.width(), a.width()) && smaller(a.area(), b.area());
}

/// The calipers around a closed list of corners, turned from edge to edge.
class Calipers {
  public:
    explicit Calipers(const std::vector<JWRawPoint>& hull)
        : m_hull(hull), m_n(hull.size() - 1), m_ahead(1), m_across(1), m_back(1) {}

    /// None on an edge whose ends rounding made one.
    std::optional<Strip> onEdge(std::size_t i) {
        const JWRawPoint& a = m_hull[i];
        const JWRawPoint u = directionOf(difference(m_hull[i + 1], a));
        if (u == JWRawPoint(0, 0)) return std::nullopt;
        const auto along = [&](std::size_t k) { return dot(u, step(k)) > 0; };
        const auto rising = [&](std::size_t k) { return cross(u, step(k)) > 0; };
        const auto backwards = [&](std::size_t k) { return dot(u, step(k)) < 0; };
        // Each starts no earlier than the one before it: ahead, then across, then back.
        m_ahead = advance(std::max(m_ahead, i + 1), i, along);
        m_across = advance(std::max(m_across, m_ahead), i, rising);
        m_back = advance(std::max(m_back, m_across), i, backwards);
        return Strip{a, u, std::min(0.0, dot(u, difference(at(m_back), a))),
                     dot(u, difference(at(m_ahead), a)),
                     std::max(0.0, cross(u, difference(at(m_across), a)))};
    }

  private:
    const JWRawPoint& at(std::size_t k) const { return m_hull[k % m_n]; }
    JWRawPoint step(std::size_t k) const { return difference(at(k + 1), at(k)); }
    template <class Goes>
    std::size_t advance(std::size_t k, std::size_t edge, const Goes& goesOn) const {
        while (k < edge + m_n && goesOn(k)) ++k;
        return k;
    }

    const std::vector<JWRawPoint>& m_hull;
    std::size_t m_n;
    std::size_t m_ahead, m_across, m_back;
};

}  // namespace

std::vector<JWRawPoint> boundingRectangle(const PointRuns& points, RectangleMeasure measure) {
    std::vector<JWRawPoint> hull = convexHull(points);
    if (hull.size() < 3) return {};
    const double scale = safeScale(magnitude(hull));
    const JWRawPoint origin = hull[0];
    for (JWRawPoint& p : hull) {
        p.set(p.x * scale - origin.x * scale, p.y * scale - origin.y * scale);
    }
    Calipers calipers(hull);
    std::optional<Strip> best;
    for (std::size_t i = 0; i + 1 < hull.size(); ++i) {
        const std::optional<Strip> strip = calipers.onEdge(i);
        if (strip && (!best || better(*strip, *best, measure))) best = strip;
    }
    if (!best) return {};
    std::vector<JWRawPoint> corners = {best->corner(best->back, 0), best->corner(best->ahead, 0),
                                       best->corner(best->ahead, best->across),
                                       best->corner(best->back, best->across),
                                       best->corner(best->back, 0)};
    // Added before they are scaled back: a corner may be in range where its offset is not.
    for (JWRawPoint& p : corners) {
        p.set((origin.x * scale + p.x) / scale, (origin.y * scale + p.y) / scale);
    }
    if (!areFinite(corners.data(), corners.size())) return {};
    return corners;
}

}  // namespace jws::detail
