// SPDX-License-Identifier: MIT
//
// Labels both sides of every stretch of boundary with the operands that lie there.
//
// Most vertices have one edge in and one out, and nothing changes there. So contours are cut into
// runs at meeting points only; all work below is per run, not per edge. Around each meeting point
// the run ends are sorted by angle, exactly. Walking round a point, what lies in a sector changes
// by the operands of the runs crossed; following runs carries sectors to the next point. Within a
// connected component everything is therefore known relative to one sector.
//
// That sector is the one west of the component's lexicographically smallest vertex. A ray from
// there towards smaller x never meets the component itself, so the number of edges left of it,
// per operand, tells what the sector is in. One ray per component: nothing is swept, and no ring
// is tested against another ring.
#include "gpc/arrangement.h"

#include <algorithm>
#include <cmath>

namespace jws::gpc {
namespace {

constexpr std::size_t kAhead = 8;

inline bool isRightward(const Point& origin, const Point& p) { return origin < p; }

}  // namespace

void Arrangement::build(Noder& noder, bool depth) {
    m_depth = depth;
    m_noder = &noder;
    m_set = &noder.result();
    makeRuns();
    gatherHalfEdges();
    for (std::uint32_t n = 0; n < m_nodes.size(); ++n) sortAround(n);
    for (std::uint32_t n = 0; n < m_nodes.size(); ++n) mergeEqual(n);
    m_visited.fill(m_nodes.size(), 0);
    m_offset.clear();
    for (std::uint32_t n = 0; n < m_nodes.size(); ++n) {
        if (!m_visited[n]) labelComponent(n, static_cast<std::uint32_t>(m_offset.size()), noder);
    }
    for (Run& r : m_runs) {
        if (r.from == kNone) {
            labelWhole(r, noder);
        } else if (!r.merged) {
            r.left = combine(r.left, m_offset[r.component - 1]);
        }
    }
}

void Arrangement::growTable(std::size_t size) {
    m_table.fill(size, 0);
    const std::size_t mask = size - 1;
    for (std::uint32_t n = 0; n < m_nodes.size(); ++n) {
        std::size_t i = hashOf(m_nodes[n].p) & mask;
        while (m_table[i] != 0) i = (i + 1) & mask;
        m_table[i] = n + 1;
    }
}

std::uint32_t Arrangement::nodeAt(const Point& p, std::uint64_t hash) {
    if (2 * (m_nodes.size() + 1) > m_table.size()) growTable(m_table.size() * 2);
    const std::size_t mask = m_table.size() - 1;
    std::size_t i = hash & mask;
    for (; m_table[i] != 0; i = (i + 1) & mask) {
        Point& q = m_nodes[m_table[i] - 1].p;
        if (q == p) {
            if (std::signbit(q.x) != std::signbit(p.x)) q.x = 0;
            if (std::signbit(q.y) != std::signbit(p.y)) q.y = 0;
            return m_table[i] - 1;
        }
    }
    m_nodes.push({p, 0, 0});
    m_table[i] = static_cast<std::uint32_t>(m_nodes.size());
    return m_table[i] - 1;
}

// Gives every meeting point its node. What lies at random places in memory is asked for in advance.
void Arrangement::makeNodes() {
    m_nodes.clear();
    m_meetings.clear();
    const ContourSet& set = *m_set;
    for (const Contour& c : set.contours) {
        for (std::uint32_t i = c.first; i < c.last; ++i) {
            if (set.flags[i] & kMeeting) m_meetings.push({hashOf(set.points[i]), i, kNone});
        }
    }
    std::size_t size = 64;
    while (size < m_meetings.size()) size *= 2;
    m_table.fill(size, 0);
    const std::size_t count = m_meetings.size();
    for (std::size_t k = 0; k < count; ++k) {
        const std::size_t mask = m_table.size() - 1;
        if (k + 2 * kAhead < count) prefetch(&m_table[m_meetings[k + 2 * kAhead].hash & mask]);
        if (k + kAhead < count) {
            const std::uint32_t node = m_table[m_meetings[k + kAhead].hash & mask];
            if (node != 0) prefetch(&m_nodes[node - 1]);
        }
        m_meetings[k].node = nodeAt(set.points[m_meetings[k].point], m_meetings[k].hash);
    }
}

void Arrangement::makeRuns() {
    makeNodes();
    const ContourSet& set = *m_set;
    const std::size_t count = m_meetings.size();
    m_runs.clear();
    m_runs.reserve(count + set.contours.size());
    std::size_t k = 0;
    for (std::uint32_t c = 0; c < set.contours.size(); ++c) {
        const Contour& contour = set.contours[c];
        const std::uint32_t n = contour.last - contour.first;
        if (k == count || m_meetings[k].point >= contour.last) {
            m_runs.push({kNone, kNone, c, contour.first, n, contour.operand, 0, 0, false, kNone});
            continue;
        }
        const Meeting& start = m_meetings[k];
        for (; k < count && m_meetings[k].point < contour.last; ++k) {
            const Meeting& at = m_meetings[k];
            const bool ends = k + 1 == count || m_meetings[k + 1].point >= contour.last;
            const Meeting& next = ends ? start : m_meetings[k + 1];
            const std::uint32_t inner = (ends ? n : 0) + next.point - at.point - 1;
            m_runs.push({at.node, next.node, c, set.next(contour, at.point), inner, contour.operand,
                         0, 0, false, kNone});
        }
    }
}

void Arrangement::gatherHalfEdges() {
    for (const Run& r : m_runs) {
        if (r.from == kNone) continue;
        ++m_nodes[r.from].count;
        ++m_nodes[r.to].count;
    }
    std::uint32_t total = 0;
    m_cursor.resize(m_nodes.size());
    for (std::uint32_t n = 0; n < m_nodes.size(); ++n) {
        m_nodes[n].first = m_cursor[n] = total;
        total += m_nodes[n].count;
    }
    m_around.resize(total);
    for (std::uint32_t r = 0; r < m_runs.size(); ++r) {
        if (m_runs[r].from == kNone) continue;
        m_around[m_cursor[m_runs[r].from]++] = 2 * r;
        m_around[m_cursor[m_runs[r].to]++] = 2 * r + 1;
    }
}

Point Arrangement::directionOf(HalfEdge h) const {
    const Run& r = m_runs[h >> 1];
    if (r.count == 0) return m_nodes[(h & 1) ? r.from : r.to].p;
    return pointOf(r, (h & 1) ? r.count - 1 : 0);
}

// Counter-clockwise from just after straight down.
bool Arrangement::before(const Point& origin, const Point& a, const Point& b) const {
    const bool rightA = isRightward(origin, a);
    const bool rightB = isRightward(origin, b);
    if (rightA != rightB) return rightA;
    if (a == b) return false;
    return orientation(origin, a, b) > 0;
}

void Arrangement::sortAround(std::uint32_t node) {
    const Node& n = m_nodes[node];
    HalfEdge* h = m_around.data() + n.first;
    m_directions.resize(n.count);
    Point* d = m_directions.data();
    if (n.count <= 16) {
        for (std::uint32_t i = 0; i < n.count; ++i) {
            const HalfEdge edge = h[i];
            const Point direction = directionOf(edge);
            std::uint32_t k = i;
            for (; k > 0 && before(n.p, direction, d[k - 1]); --k) {
                h[k] = h[k - 1];
                d[k] = d[k - 1];
            }
            h[k] = edge;
            d[k] = direction;
        }
        return;
    }
    std::sort(h, h + n.count, [this, &n](HalfEdge a, HalfEdge b) {
        const Point da = directionOf(a);
        const Point db = directionOf(b);
        if (before(n.p, da, db)) return true;
        return !before(n.p, db, da) && a < b;
    });
}

// Runs that lie on each other are single edges between the same two nodes. The first stands for
// all; the others leave the arrangement.
void Arrangement::mergeEqual(std::uint32_t node) {
    Node& n = m_nodes[node];
    HalfEdge* h = m_around.data() + n.first;
    std::uint32_t kept = 0;
    for (std::uint32_t i = 0; i < n.count; ++i) {
        Run& r = m_runs[h[i] >> 1];
        const std::uint32_t far = (h[i] & 1) ? r.from : r.to;
        bool equal = false;
        if (kept > 0 && r.count == 0) {
            const HalfEdge other = h[kept - 1];
            Run& s = m_runs[other >> 1];
            equal = s.count == 0 && ((other & 1) ? s.from : s.to) == far;
            if (equal && node < far) {
                const bool sameWay = ((h[i] ^ other) & 1) == 0;
                s.step = m_depth ? s.step + (sameWay ? r.step : -r.step) : s.step ^ r.step;
                r.merged = true;
                r.twin = s.twin;
                s.twin = h[i] >> 1;
            }
        }
        if (!equal) h[kept++] = h[i];
    }
    n.count = kept;
}

std::size_t Arrangement::bytes() const {
    return m_runs.bytes() + m_nodes.bytes() + m_meetings.bytes() + m_table.bytes() +
           m_around.bytes() + m_queue.bytes();
}

void Arrangement::release() {
    m_runs.release();
    m_nodes.release();
    m_meetings.release();
    m_table.release();
    m_around.release();
    m_directions.release();
    m_visited.release();
    m_queue.release();
    m_offset.release();
    m_cursor.release();
}

}  // namespace jws::gpc
