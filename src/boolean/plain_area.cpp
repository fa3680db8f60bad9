// SPDX-License-Identifier: MIT
//
// Whether an area's rings are plain, and which side of them is inside.
//
// Most areas in the world are plain, and proving that is much cheaper than computing what a tangled
// one means. Pairs of edges of a ring whose rectangles meet (edge_pairs.h) are decided by exact
// orientations.
//
// The answer "plain" is a proof. A doubt, such as an orientation that overflows, or too many edges
// in one place to compare, gives the other answer, and the clipping engine resolves the area.
#include "boolean/plain_area.h"

#include <algorithm>

#include "foundation/orientation.h"
#include "foundation/segment_math.h"

namespace jws::detail {
namespace {

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

}  // namespace

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
            if (i == j || !m_rings[i].box.meets(m_rings[j].box)) continue;
            if (i < j && ringsMeet(m_rings[i], m_rings[j])) return answer;
            if (!isOutside(m_rings[j], m_points[m_rings[i].first])) inside = !inside;
        }
        if (inside) answer.holes |= 1u << i;
        if (isCounterClockwise(m_rings[i]) != inside) answer.interiorLeft |= 1u << i;
    }
    answer.plain = !m_doubt;
    return answer;
}

/// Copies a ring without repeated points, closed. False when nothing of three corners is left.
bool PlainAreaTest::takeRing(const RingView& ring) {
    Ring taken = {static_cast<int>(m_points.size()), 0, {}};
    EdgeBox box = {ring.points->x, ring.points->y, ring.points->x, ring.points->y};
    m_points.reserve(m_points.size() + static_cast<std::size_t>(ring.count) + 1);
    for (int i = 0; i < ring.count; ++i) {
        const JWRawPoint p = ring.points[i];
        if (i > 0 && p == m_points.back()) continue;
        m_points.push_back(p);
        box.add(p);
    }
    if (m_points.back() != m_points[taken.first]) m_points.push_back(m_points[taken.first]);
    taken.edges = static_cast<int>(m_points.size()) - 1 - taken.first;
    taken.box = box;
    m_rings.push_back(taken);
    return taken.edges >= 3;
}

bool PlainAreaTest::isSimple(const Ring& ring) {
    return !m_pairs.search(m_points.data() + ring.first, ring.edges,
                           [&](int i, int j) { return edgesMeet(ring, i, j); });
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
    const EdgeBox window = a.box.common(b.box);
    m_edgesA.clear();
    collectEdges(m_points.data(), a.first, a.first + a.edges, window, m_edgesA);
    if (m_edgesA.empty()) return false;
    m_edgesB.clear();
    collectEdges(m_points.data(), b.first, b.first + b.edges, window, m_edgesB);
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
