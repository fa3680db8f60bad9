// SPDX-License-Identifier: MIT
//
// A line cut where it meets itself. Pairs of edges that may meet come from a tree over the edges;
// exact orientations decide. Where an edge passes a vertex it is cut at the vertex's own bits, and
// where two edges run together, at the ends of what they share; only a plain crossing makes a new
// point, one for both edges. About O((n + k) log n) for n edges and k meetings.
#include "overlay/line_parts.h"

#include <algorithm>
#include <cmath>

#include "foundation/edge_tree.h"
#include "foundation/orientation.h"
#include "foundation/segment_crossing.h"
#include "foundation/segment_math.h"

namespace jws::detail {
namespace {

using Points = std::vector<JWRawPoint>;

class LineCutter {
  public:
    explicit LineCutter(const Points& points)
        : m_points(points), m_edges(static_cast<int>(points.size()) - 1) {}

    std::vector<Points> parts() {
        const EdgeTree tree(m_points.data(), m_edges);
        tree.visitPairs([this](int i, int j) {
            meet(i, j);
            return false;
        });
        return assemble();
    }

  private:
    struct Cut {
        int edge;  ///< in whose course it lies, its start included, its end not
        JWRawPoint point;
    };

    void meet(int i, int j) {
        const JWRawPoint &a = m_points[i], &b = m_points[i + 1];
        const JWRawPoint &c = m_points[j], &d = m_points[j + 1];
        if (!segmentBoxesMeet(a, b, c, d)) return;
        const int ca = orientationSign(a, b, c), da = orientationSign(a, b, d);
        const int ac = orientationSign(c, d, a), bc = orientationSign(c, d, b);
        const bool isNext = j == i + 1;
        const bool isRing = i == 0 && j == m_edges - 1 && a == d;
        if (ca == 0 && !isNext) touch(i, j, c);
        if (da == 0 && !isRing) touch(i, j, d);
        if (ac == 0 && !isRing) touch(j, i, a);
        if (bc == 0 && !isNext) touch(j, i, b);
        if (isNext && da == 0 && dot(difference(b, a), difference(d, c)) < 0) cut(j, c);
        if (ca * da == -1 && ac * bc == -1) {
            const JWRawPoint p = crossingOf(a, b, c, d);
            cut(i, p);
            cut(j, p);
        }
    }

    /// `p`, an end of edge `other`, is on the line of edge `edge`: both are cut if it is on the
    /// edge.
    void touch(int edge, int other, const JWRawPoint& p) {
        const JWRawPoint &a = m_points[edge], &b = m_points[edge + 1];
        if (!segmentBoxesMeet(a, b, p, p)) return;
        cut(edge, p);
        cut(other, p);
    }

    void cut(int edge, const JWRawPoint& p) {
        if (p == m_points[edge + 1]) ++edge;
        m_cuts.push_back({edge, p});
    }

    std::vector<Points> assemble() {
        std::sort(m_cuts.begin(), m_cuts.end(), [this](const Cut& s, const Cut& t) {
            if (s.edge != t.edge) return s.edge < t.edge;
            const JWRawPoint& from = m_points[s.edge];
            const double ds = pointDistance(from, s.point), dt = pointDistance(from, t.point);
            return ds != dt ? ds < dt : s.point < t.point;
        });
        std::vector<Points> parts(1);
        std::size_t next = 0;
        const auto add = [&parts](const JWRawPoint& p) {
            if (parts.back().empty() || parts.back().back() != p) parts.back().push_back(p);
        };
        for (int i = 0; i <= m_edges; ++i) {
            add(m_points[i]);
            for (; next < m_cuts.size() && m_cuts[next].edge == i; ++next) {
                const JWRawPoint& p = m_cuts[next].point;
                add(p);
                if (parts.back().size() > 1) parts.push_back({p});
            }
        }
        if (parts.back().size() < 2) parts.pop_back();
        return parts;
    }

    const Points& m_points;
    int m_edges;
    std::vector<Cut> m_cuts;
};

}  // namespace

std::vector<Points> simpleParts(const JWLineString& line) {
    Points points;
    for (int i = 0; i < line.getPointCount(); ++i) {
        const JWRawPoint p = line.getPointsPtr()[i];
        if (!std::isfinite(p.x) || !std::isfinite(p.y)) return {};
        if (points.empty() || p != points.back()) points.push_back(p);
    }
    if (points.size() < 2) return {};
    return LineCutter(points).parts();
}

}  // namespace jws::detail
