// SPDX-License-Identifier: MIT
//
// Whether an area's rings are plain, and which side of them is inside.
//
// Most areas in the world are plain, and proving that is much cheaper than computing what a tangled
// one means. The edges of a ring are gathered into runs that go one way along x or along y; edges
// of a run cannot meet. Two runs can meet only where their boxes overlap, and there few edges of
// either lie. What is left is decided edge against edge by exact orientations. A long ring goes
// through a tree over its edges instead.
//
// The answer "plain" is a proof. A doubt, such as an orientation that overflows, or too many edges
// in one place to compare, gives the other answer, and the clipping engine resolves the area.
#include "boolean/plain_area.h"

#include <algorithm>

#include "foundation/edge_tree.h"
#include "foundation/orientation.h"
#include "foundation/segment_math.h"

namespace jws::detail {
namespace {

constexpr int kShortRing = 256;           // edges: compared by runs
constexpr std::size_t kMostRings = 32;    // compared with one another
constexpr std::size_t kMostPairs = 4096;  // edges of two rings compared with one another

/// Closed segments, whose boxes meet, have a point in common, or may have one.
bool segmentsMeet(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint& c,
                  const JWRawPoint& d) {
    const int ca = orientationSign(a, b, c), da = orientationSign(a, b, d);
    if (ca == 2 || da == 2) return true;
    if (ca * da > 0) return false;
    const int ac = orientationSign(c, d, a), bc = orientationSign(c, d, b);
    return ac == 2 || bc == 2 || ac * bc <= 0;
}

/// b -> c runs back over a -> b.
bool foldsBack(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint& c) {
    const int turn = orientationSign(a, b, c);
    if (turn != 0) return turn == 2;
    const bool ahead = a.x != b.x ? (a.x < b.x) == (b.x < c.x) : (a.y < b.y) == (b.y < c.y);
    return !ahead;
}

/// The ways along the axes that an edge goes, one bit each.
unsigned waysOf(const JWRawPoint& a, const JWRawPoint& b) {
    return (a.x < b.x ? 1u : 0u) | (a.x > b.x ? 2u : 0u) | (a.y < b.y ? 4u : 0u) |
           (a.y > b.y ? 8u : 0u);
}

}  // namespace

bool PlainAreaTest::overlap(const Box& a, const Box& b) {
    return a.minX <= b.maxX && b.minX <= a.maxX && a.minY <= b.maxY && b.minY <= a.maxY;
}

PlainAreaTest::Box PlainAreaTest::common(const Box& a, const Box& b) {
    return {std::max(a.minX, b.minX), std::max(a.minY, b.minY), std::min(a.maxX, b.maxX),
            std::min(a.maxY, b.maxY)};
}

PlainArea PlainAreaTest::test(const RingViews& rings) {
    emptyKept(m_points);
    m_rings.clear();
    m_doubt = false;
    PlainArea answer;
    if (rings.size() > kMostRings) return answer;
    for (const RingView& ring : rings) {
        if (!takeRing(ring)) return answer;
    }
    for (const Ring& ring : m_rings) {
        if (!isSimple(ring)) return answer;
    }
    for (std::size_t i = 0; i < m_rings.size(); ++i) {
        bool inside = false;  // an odd number of other rings
        for (std::size_t j = 0; j < m_rings.size(); ++j) {
            if (i == j || !overlap(m_rings[i].box, m_rings[j].box)) continue;
            if (i < j && ringsMeet(m_rings[i], m_rings[j])) return answer;
            if (!isOutside(m_rings[j], m_points[m_rings[i].first])) inside = !inside;
        }
        if (isCounterClockwise(m_rings[i]) != inside) answer.interiorLeft |= 1u << i;
    }
    answer.plain = !m_doubt;
    return answer;
}

/// Copies a ring without repeated points, closed. False when nothing of three corners is left.
bool PlainAreaTest::takeRing(const RingView& ring) {
    Ring taken = {static_cast<int>(m_points.size()), 0, {}};
    Box box = {ring.points->x, ring.points->y, ring.points->x, ring.points->y};
    m_points.reserve(m_points.size() + static_cast<std::size_t>(ring.count) + 1);
    for (int i = 0; i < ring.count; ++i) {
        const JWRawPoint p = ring.points[i];
        if (i > 0 && p == m_points.back()) continue;
        m_points.push_back(p);
        box = {std::min(box.minX, p.x), std::min(box.minY, p.y), std::max(box.maxX, p.x),
               std::max(box.maxY, p.y)};
    }
    if (m_points.back() != m_points[taken.first]) m_points.push_back(m_points[taken.first]);
    taken.edges = static_cast<int>(m_points.size()) - 1 - taken.first;
    taken.box = box;
    m_rings.push_back(taken);
    return taken.edges >= 3;
}

bool PlainAreaTest::isSimple(const Ring& ring) {
    if (ring.edges <= kShortRing) return hasShortRunsOnly(ring);
    const EdgeTree tree(m_points.data() + ring.first, ring.edges);
    return !tree.visitPairs([&](int i, int j) { return edgesMeet(ring, i, j); });
}

bool PlainAreaTest::hasShortRunsOnly(const Ring& ring) {
    const JWRawPoint* p = m_points.data() + ring.first;
    m_runs.clear();
    unsigned ways = 0;
    for (int i = 0; i < ring.edges; ++i) {
        const JWRawPoint &a = p[i], &b = p[i + 1];
        const unsigned mine = waysOf(a, b);
        if ((ways & mine) == 0) {
            ways = mine;
            m_runs.push_back({i, i, {a.x, a.y, a.x, a.y}});
        }
        ways &= mine;
        Run& run = m_runs.back();
        run.end = i + 1;
        run.box = {std::min(run.box.minX, b.x), std::min(run.box.minY, b.y),
                   std::max(run.box.maxX, b.x), std::max(run.box.maxY, b.y)};
    }
    for (std::size_t i = 0; i < m_runs.size(); ++i) {
        for (std::size_t j = i + 1; j < m_runs.size(); ++j) {
            if (overlap(m_runs[i].box, m_runs[j].box) && runsMeet(ring, m_runs[i], m_runs[j])) {
                return false;
            }
        }
    }
    return true;
}

void PlainAreaTest::collect(int first, int end, const Box& window, std::vector<int>& edges) const {
    edges.clear();
    for (int i = first; i < end; ++i) {
        const JWRawPoint &a = m_points[i], &b = m_points[i + 1];
        if (std::min(a.x, b.x) <= window.maxX && std::max(a.x, b.x) >= window.minX &&
            std::min(a.y, b.y) <= window.maxY && std::max(a.y, b.y) >= window.minY) {
            edges.push_back(i);
        }
    }
}

bool PlainAreaTest::runsMeet(const Ring& ring, const Run& a, const Run& b) {
    const Box window = common(a.box, b.box);
    collect(ring.first + a.first, ring.first + a.end, window, m_edgesA);
    if (m_edgesA.empty()) return false;
    collect(ring.first + b.first, ring.first + b.end, window, m_edgesB);
    for (const int i : m_edgesA) {
        for (const int j : m_edgesB) {
            if (edgesMeet(ring, i - ring.first, j - ring.first)) return true;
        }
    }
    return false;
}

/// Two edges i < j of a ring have more in common than the corner between neighbours.
bool PlainAreaTest::edgesMeet(const Ring& ring, int i, int j) const {
    const JWRawPoint* p = m_points.data() + ring.first;
    if (j == i + 1) return foldsBack(p[i], p[j], p[j + 1]);
    if (i == 0 && j == ring.edges - 1) return foldsBack(p[j], p[0], p[1]);
    return segmentBoxesMeet(p[i], p[i + 1], p[j], p[j + 1]) &&
           segmentsMeet(p[i], p[i + 1], p[j], p[j + 1]);
}

bool PlainAreaTest::ringsMeet(const Ring& a, const Ring& b) {
    const Box window = common(a.box, b.box);
    collect(a.first, a.first + a.edges, window, m_edgesA);
    if (m_edgesA.empty()) return false;
    collect(b.first, b.first + b.edges, window, m_edgesB);
    if (m_edgesA.size() * m_edgesB.size() > kMostPairs) return true;
    for (const int i : m_edgesA) {
        for (const int j : m_edgesB) {
            if (segmentBoxesMeet(m_points[i], m_points[i + 1], m_points[j], m_points[j + 1]) &&
                segmentsMeet(m_points[i], m_points[i + 1], m_points[j], m_points[j + 1])) {
                return true;
            }
        }
    }
    return false;
}

/// For a point that is not on the ring: the edges on its right-hand side, exactly.
bool PlainAreaTest::isOutside(const Ring& outer, const JWRawPoint& p) {
    bool outside = true;
    const JWRawPoint* points = m_points.data() + outer.first;
    for (int i = 0; i < outer.edges; ++i) {
        const JWRawPoint &a = points[i], &b = points[i + 1];
        if ((a.y <= p.y) == (b.y <= p.y)) continue;
        const int side = orientationSign(a, b, p);
        if (side != 1 && side != -1) m_doubt = true;
        if ((side > 0) == (a.y < b.y)) outside = !outside;
    }
    return outside;
}

/// By the turn at the lowest corner, which is never straight in a simple ring.
bool PlainAreaTest::isCounterClockwise(const Ring& ring) {
    const JWRawPoint* p = m_points.data() + ring.first;
    const auto lowest = static_cast<int>(std::min_element(p, p + ring.edges) - p);
    const JWRawPoint& before = p[lowest == 0 ? ring.edges - 1 : lowest - 1];
    const int turn = orientationSign(before, p[lowest], p[lowest + 1]);
    if (turn != 1 && turn != -1) m_doubt = true;
    return turn > 0;
}

}  // namespace jws::detail
