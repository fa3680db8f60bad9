// SPDX-License-Identifier: MIT
//
// Which vertices lie on an edge, or near it. "On the edge" is decided without rounding.
#ifndef JW_CONVERT_VERTEX_SEARCH_H
#define JW_CONVERT_VERTEX_SEARCH_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "foundation/orientation.h"
#include "foundation/segment_math.h"
#include "trees/packed_tree.h"

namespace jws::detail {

/// Finds the vertices beside edges.
class VertexSearch {
  public:
    explicit VertexSearch(const std::vector<JWRawPoint>& points) : m_points(points) {
        std::vector<JWEnvelop> boxes;
        boxes.reserve(points.size());
        for (const JWRawPoint& p : points) boxes.emplace_back(p.x, p.y, p.x, p.y);
        m_tree = PackedTree(boxes);
    }

    /// The vertices in an order in which neighbours lie near each other.
    const std::vector<int>& inOrder() const { return m_tree.items(); }

    /// A vertex, and how far along an edge it lies.
    using Along = std::pair<double, int>;

    /// Appends the vertices on the edge from a to b, or within `tolerance` of it, in the order from
    /// a to b. `beside` is memory that a worker uses again.
    void find(int a, int b, double tolerance, std::vector<Along>& beside,
              std::vector<int>& found) const {
        const JWRawPoint &from = point(a), &to = point(b);
        const JWEnvelop box(std::min(from.x, to.x) - tolerance, std::min(from.y, to.y) - tolerance,
                            std::max(from.x, to.x) + tolerance, std::max(from.y, to.y) + tolerance);
        beside.clear();
        const auto take = [&](int v) {
            if (v != a && v != b && isBeside(point(v), from, to, tolerance))
                beside.emplace_back(dot(difference(point(v), from), difference(to, from)), v);
            return false;
        };
        const auto mayHold = [&](const JWEnvelop& e) {
            return !e.isDisjoin(box) && !isClearOf(e, from, to, tolerance);
        };
        m_tree.search(mayHold, take);
        sortAlong(from, to, tolerance, beside);
        for (const auto& [along, v] : beside) found.push_back(v);
    }

  private:
    const JWRawPoint& point(int v) const { return m_points[static_cast<std::size_t>(v)]; }

    /// The line through a and b passes the rectangle by more than the tolerance and any rounding: a
    /// long slanting edge visits what lies along it, not all of its rectangle.
    static bool isClearOf(const JWEnvelop& e, const JWRawPoint& a, const JWRawPoint& b,
                          double tolerance) {
        const JWRawPoint v = difference(b, a), middle = e.center();
        const double dx = std::fabs(v.x), dy = std::fabs(v.y);
        const double reachX = 0.5 * e.width() + tolerance + 1e-14 * (dx + std::fabs(a.x));
        const double reachY = 0.5 * e.height() + tolerance + 1e-14 * (dy + std::fabs(a.y));
        return std::fabs(cross(v, difference(middle, a))) > 1.001 * (dx * reachY + dy * reachX);
    }

    static bool isBeside(const JWRawPoint& p, const JWRawPoint& a, const JWRawPoint& b,
                         double tolerance) {
        return tolerance > 0 ? segmentDistance(p, a, b) <= tolerance
                             : orientationSign(a, b, p) == 0;
    }

    /// Points exactly on the edge are sorted by their coordinates, which is exact too.
    void sortAlong(const JWRawPoint& from, const JWRawPoint& to, double tolerance,
                   std::vector<Along>& beside) const {
        if (beside.size() < 2) return;
        std::sort(beside.begin(), beside.end(), [&](const auto& u, const auto& v) {
            if (tolerance > 0) return u < v;
            return from < to ? point(u.second) < point(v.second)
                             : point(v.second) < point(u.second);
        });
    }

    const std::vector<JWRawPoint>& m_points;
    PackedTree m_tree;
};

}  // namespace jws::detail

#endif  // JW_CONVERT_VERTEX_SEARCH_H
