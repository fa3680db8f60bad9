// SPDX-License-Identifier: MIT
//
// The convex hull: Andrew's monotone chain (1979) with exact orientation, behind a filter.
//
// The line between the first and the last point by x and y parts the points into those of the lower
// and of the upper chain. Each part is sorted, and a chain is linear then, so sorting is what
// costs. Most points of large sets are far from the hull: the extremes of a sample in eight
// directions span an octagon, and what lies clearly inside it is dropped in one pass before
// anything is sorted (S. G. Akl, G. T. Toussaint, A fast convex hull algorithm, 1978). The filter
// may keep too much, never too little, so it needs no exactness. What remains is distributed into
// buckets by x, a monotone function even after rounding, and sorted within them; the corners of a
// convex ring come in order, or in a few stretches, which are merged instead.
//
// Turns are decided by the sign of the exact determinant. A plain one loses or invents corners
// among nearly collinear points and then pops the wrong ones, at projected offsets already for data
// in centimetres.
//
// Cost: O(n) for points in general position, O(n log n) at worst.
#include "analysis/hull.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "analysis/point_sort.h"
#include "jw_hull.h"

namespace jws::detail {

namespace {

constexpr std::size_t kFewPoints = 64;
constexpr double kEpsilon = 1.1102230246251565e-16;

/// Calls `body(point)` for about `size` points, spread evenly.
template <class Body>
void forEachOfSample(const PointRuns& points, std::size_t size, const Body& body) {
    const std::size_t stride = std::max<std::size_t>(1, points.count() / size);
    points.forEachRun([&](const JWRawPoint* begin, const JWRawPoint* end) {
        const std::size_t count = static_cast<std::size_t>(end - begin);
        for (std::size_t i = 0; i < count; i += stride) body(begin[i]);
    });
}

/// The octagon of a sample's extremes, and the test that a point is clearly inside it.
class InnerOctagon {
  public:
    explicit InnerOctagon(const PointRuns& points) {
        findExtremes(points);
        for (int i = 0; i < 8; ++i) addEdge(m_corners[i], m_corners[(i + 1) % 8]);
    }

    /// True only for points in the interior of the hull of the sample. A coordinate that is not
    /// finite fails the first comparisons.
    bool clearlyInside(const JWRawPoint& p) const {
        if (!(p.x > m_box.minX && p.x < m_box.maxX && p.y > m_box.minY && p.y < m_box.maxY)) {
            return false;
        }
        const double x = p.x - m_corners[0].x, y = p.y - m_corners[0].y;
        bool inside = true;
        for (int i = 0; i < m_edges; ++i) inside &= m_nx[i] * x + m_ny[i] * y > m_limit[i];
        return inside;
    }
    /// A good part of the points is clearly inside, by a sample of them.
    bool isUseful(const PointRuns& points) const {
        std::size_t inside = 0, all = 0;
        forEachOfSample(points, 1024, [&](const JWRawPoint& p) {
            ++all;
            if (clearlyInside(p)) ++inside;
        });
        return m_edges >= 3 && inside > all / 4;
    }

  private:
    /// The eight extremes, counter-clockwise from the lowest.
    void findExtremes(const PointRuns& points) {
        double best[8];
        bool any = false;
        const auto consider = [&](const JWRawPoint& p) {
            const double values[8] = {-p.y, p.x - p.y, p.x,  p.x + p.y,
                                      p.y,  p.y - p.x, -p.x, -p.x - p.y};
            if (!std::isfinite(values[3])) return;
            for (int i = 0; i < 8; ++i) {
                if (any && !(values[i] > best[i])) continue;
                best[i] = values[i];
                m_corners[i] = p;
            }
            any = true;
        };
        forEachOfSample(points, std::size_t{1} << 16, consider);
        if (!any) return;
        m_box = JWEnvelop(m_corners[6].x, m_corners[0].y, m_corners[2].x, m_corners[4].y);
    }

    /// Points left of the edge by more than the rounding of the test, for points in the box.
    void addEdge(const JWRawPoint& a, const JWRawPoint& b) {
        if (!m_box.isValid() || a == b) return;
        const double nx = a.y - b.y, ny = b.x - a.x;
        const double width = m_box.maxX - m_box.minX, height = m_box.maxY - m_box.minY;
        const double margin = 16 * kEpsilon * (std::fabs(nx) * width + std::fabs(ny) * height);
        m_nx[m_edges] = nx;
        m_ny[m_edges] = ny;
        m_limit[m_edges] = nx * (a.x - m_corners[0].x) + ny * (a.y - m_corners[0].y) + margin;
        ++m_edges;
    }

    JWRawPoint m_corners[8];
    JWEnvelop m_box = JWEnvelop::invalid();
    int m_edges = 0;
    double m_nx[8], m_ny[8], m_limit[8];
};

/// Adds a point to the chain that lies in a list from `base` to `end`, less the points before it
/// that are no corners then. Returns the new end.
template <class Turn>
std::size_t extend(std::vector<JWRawPoint>& chain, std::size_t base, std::size_t end, JWRawPoint p,
                   const Turn& turn) {
    while (end > base + 1 && turn(chain[end - 2], chain[end - 1], p) <= 0) --end;
    chain[end] = p;
    return end + 1;
}

/// The hull of finite points; `turn` is above 0 to the left. The chains replace the list.
template <class Before, class Turn>
void makeHull(std::vector<JWRawPoint>& points, const Before& before, const Turn& turn) {
    const auto [low, high] = std::minmax_element(points.begin(), points.end(), before);
    const JWRawPoint first = *low, last = *high;
    std::swap(*low, points.front());
    std::size_t end = 1;
    std::vector<JWRawPoint> upper;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const double side = turn(first, last, points[i]);
        if (side < 0) points[end++] = points[i];
        if (side > 0) upper.push_back(points[i]);
    }
    points.resize(end);
    sortPoints(points, before);
    sortPoints(upper, before);

    points.resize(points.size() + upper.size() + 2);
    const std::size_t lower = std::exchange(end, 1);
    for (std::size_t i = 1; i < lower; ++i) end = extend(points, 0, end, points[i], turn);
    end = extend(points, 0, end, last, turn);
    // The upper chain never drops the point where it starts, the last of the lower one.
    const std::size_t base = end - 1;
    for (auto p = upper.rbegin(); p != upper.rend(); ++p) {
        end = extend(points, base, end, *p, turn);
    }
    if (first != last) end = extend(points, base, end, first, turn);
    points.resize(end);
    if (points.capacity() > 2 * end) points.shrink_to_fit();
}

}  // namespace

double magnitude(const std::vector<JWRawPoint>& points) {
    double largest = 0, check = 0;
    for (const JWRawPoint& p : points) {
        const double size = std::max(std::fabs(p.x), std::fabs(p.y));
        if (size > largest) largest = size;
        check += (p.x - p.x) + (p.y - p.y);
    }
    return largest + check;
}

double safeScale(double magnitude) {
    if (magnitude == 0 || (magnitude < 0x1p+500 && magnitude > 0x1p-400)) return 1;
    return std::ldexp(1, -std::clamp(std::ilogb(magnitude), -1000, 1000));
}

std::vector<JWRawPoint> outerPoints(const PointRuns& points) {
    std::vector<JWRawPoint> outer;
    if (points.count() > kFewPoints) {
        const InnerOctagon octagon(points);
        if (octagon.isUseful(points)) {
            outer.push_back(points.first());
            bool isFirst = true;
            points.forEach([&](const JWRawPoint& p) {
                if (!isFirst && !octagon.clearlyInside(p)) outer.push_back(p);
                isFirst = false;
            });
            return outer;
        }
    }
    outer.reserve(points.count() + 1);  // the hull repeats a point
    points.forEachRun([&](const JWRawPoint* begin, const JWRawPoint* end) {
        outer.insert(outer.end(), begin, end);
    });
    return outer;
}

std::vector<JWRawPoint> convexHull(const PointRuns& points) {
    std::vector<JWRawPoint> hull = outerPoints(points);
    const double size = magnitude(hull);
    if (hull.empty() || !std::isfinite(size)) return {};
    const double scale = safeScale(size);
    const auto before = [](const auto& a, const auto& b) { return JWHull::cmpPoints(a, b) != 0; };
    const auto turn = [](const auto& a, const auto& b, const auto& c) {
        return JWHull::isLeft(a, b, c);
    };
    if (scale == 1) {
        makeHull(hull, before, turn);
        return hull;
    }
    const auto scaled = [scale](const JWRawPoint& p) {
        return JWRawPoint(p.x * scale, p.y * scale);
    };
    makeHull(hull, before, [&](const auto& a, const auto& b, const auto& c) {
        return turn(scaled(a), scaled(b), scaled(c));
    });
    return hull;
}

}  // namespace jws::detail
