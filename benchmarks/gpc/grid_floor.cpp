// SPDX-License-Identifier: MIT
//
// Less than any clipping can do: it counts the crossings of the edges of A with those of B, found
// with a grid of buckets, and makes nothing of them. Its time is a floor for the others, where
// operands are large and cross throughout. One that does not look at every edge in the same detail
// may well be faster.
#include <algorithm>
#include <cmath>

#include "gpc/clip_rival.h"

namespace bench {
namespace {

using jws::JWRawPoint;

struct Edge {
    JWRawPoint a, b;
};

struct Extent {
    double minX = HUGE_VAL, minY = HUGE_VAL, maxX = -HUGE_VAL, maxY = -HUGE_VAL;

    void include(const JWRawPoint& p) {
        minX = std::min(minX, p.x);
        minY = std::min(minY, p.y);
        maxX = std::max(maxX, p.x);
        maxY = std::max(maxY, p.y);
    }
};

Extent extentOf(const std::vector<Edge>& edges) {
    Extent e;
    for (const Edge& edge : edges) e.include(edge.a);
    return e;
}

double turn(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

bool cross(const Edge& e, const Edge& f) {
    return (turn(e.a, e.b, f.a) > 0) != (turn(e.a, e.b, f.b) > 0) &&
           (turn(f.a, f.b, e.a) > 0) != (turn(f.a, f.b, e.b) > 0);
}

/// Buckets over what both operands' rectangles have in common, about one for each edge.
class Grid {
  public:
    Grid(const Extent& a, const Extent& b, std::size_t edges)
        : m_minX(std::max(a.minX, b.minX)), m_minY(std::max(a.minY, b.minY)) {
        const double width = std::max(std::min(a.maxX, b.maxX) - m_minX, 0.0);
        const double height = std::max(std::min(a.maxY, b.maxY) - m_minY, 0.0);
        const double side = std::sqrt(width * height / static_cast<double>(edges));
        m_scale = side > 0 ? 1 / side : 0;
        m_columns = static_cast<int>(width * m_scale) + 1;
        m_rows = static_cast<int>(height * m_scale) + 1;
    }

    std::size_t count() const { return static_cast<std::size_t>(m_columns) * m_rows; }

    /// Calls `visit(bucket)` for the buckets of the edge's rectangle.
    template <class Visit>
    void forBuckets(const Edge& e, Visit&& visit) const {
        const double x0 = (std::min(e.a.x, e.b.x) - m_minX) * m_scale;
        const double x1 = (std::max(e.a.x, e.b.x) - m_minX) * m_scale;
        const double y0 = (std::min(e.a.y, e.b.y) - m_minY) * m_scale;
        const double y1 = (std::max(e.a.y, e.b.y) - m_minY) * m_scale;
        if (x1 < 0 || y1 < 0 || x0 >= m_columns || y0 >= m_rows) return;
        const int left = std::max(static_cast<int>(x0), 0);
        const int right = std::min(static_cast<int>(x1), m_columns - 1);
        const int top = std::min(static_cast<int>(y1), m_rows - 1);
        for (int row = std::max(static_cast<int>(y0), 0); row <= top; ++row) {
            for (int column = left; column <= right; ++column) {
                visit(static_cast<std::size_t>(row) * m_columns + column);
            }
        }
    }

  private:
    double m_minX, m_minY, m_scale;
    int m_columns, m_rows;
};

class GridFloor final : public ClipRival {
  public:
    void load(const std::vector<ClipOperands>& pairs) override {
        for (const ClipOperands& pair : pairs) {
            m_pairs.push_back({edgesOf(pair.a), edgesOf(pair.b)});
        }
    }

    void run(ClipOp) override {
        for (const Pair& pair : m_pairs) m_crossings += crossingsOf(pair.a, pair.b);
    }

    /// It has none; the count keeps the search from being left out.
    double area(ClipOp op) override {
        run(op);
        return static_cast<double>(m_crossings);
    }

  private:
    struct Pair {
        std::vector<Edge> a, b;
    };

    static std::vector<Edge> edgesOf(const ClipOperand& polygons) {
        std::vector<Edge> edges;
        const auto add = [&edges](const jwtest::Ring& ring) {
            for (std::size_t i = 0; i < ring.size(); ++i) {
                edges.push_back({ring[i], ring[i + 1 < ring.size() ? i + 1 : 0]});
            }
        };
        for (const ClipPolygon& polygon : polygons) {
            add(polygon.outer);
            for (const jwtest::Ring& hole : polygon.holes) add(hole);
        }
        return edges;
    }

    /// A crossing counts once for each bucket that both edges' rectangles share, as a rule one.
    static std::size_t crossingsOf(const std::vector<Edge>& a, const std::vector<Edge>& b) {
        const Grid grid(extentOf(a), extentOf(b), a.size());
        std::vector<std::uint32_t> ends(grid.count() + 1, 0);
        for (const Edge& e : a) grid.forBuckets(e, [&](std::size_t k) { ++ends[k + 1]; });
        for (std::size_t k = 1; k < ends.size(); ++k) ends[k] += ends[k - 1];
        std::vector<std::uint32_t> next(ends.begin(), ends.end() - 1), held(ends.back());
        for (std::uint32_t i = 0; i < a.size(); ++i) {
            grid.forBuckets(a[i], [&](std::size_t k) { held[next[k]++] = i; });
        }
        std::size_t crossings = 0;
        for (const Edge& f : b) {
            grid.forBuckets(f, [&](std::size_t k) {
                for (std::uint32_t i = ends[k]; i < ends[k + 1]; ++i) {
                    crossings += cross(a[held[i]], f);
                }
            });
        }
        return crossings;
    }

    std::vector<Pair> m_pairs;
    std::size_t m_crossings = 0;
};

}  // namespace

std::unique_ptr<ClipRival> makeGridFloor() { return std::make_unique<GridFloor>(); }

}  // namespace bench
