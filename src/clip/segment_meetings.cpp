// SPDX-License-Identifier: MIT
//
// Which edges meet a segment, and how, is decided by exact orientations alone: every edge crosses
// it, ends on it, passes through an end of it, lies on it, or misses it. Only where a crossing lies
// is rounded, and the order of two crossings that rounding cannot tell apart is of no account to
// the callers, who look at what has changed once they have passed both.
#include "clip/segment_meetings.h"

#include <algorithm>
#include <utility>

#include "foundation/orientation.h"
#include "foundation/segment_crossing.h"
#include "foundation/segment_math.h"

namespace jws::detail {
namespace {

/// Where a direction lies clockwise from another: quarter 1 to its right, 2 opposite, 3 to its
/// left, 4 on it.
struct Heading {
    const JWRawPoint& vertex;
    const JWRawPoint* zero;  ///< null: just above west

    int quarterOf(const JWRawPoint& p) const {
        const int side = zero != nullptr ? orientationSign(vertex, *zero, p)
                                         : (p.y < vertex.y) - (p.y > vertex.y);
        if (side != 0) return side < 0 ? 1 : 3;
        const bool same = zero != nullptr ? isSameWay(*zero, p) : p.x < vertex.x;
        return same ? 4 : 2;
    }
    /// p comes before q, clockwise.
    bool isBefore(const JWRawPoint& p, const JWRawPoint& q) const {
        const int ofP = quarterOf(p), ofQ = quarterOf(q);
        if (ofP != ofQ) return ofP < ofQ;
        return ofP % 2 == 1 && orientationSign(vertex, p, q) < 0;
    }
    /// For p and q on one line through the vertex.
    bool isSameWay(const JWRawPoint& p, const JWRawPoint& q) const {
        return p.x != vertex.x ? (p.x > vertex.x) == (q.x > vertex.x)
                               : (p.y > vertex.y) == (q.y > vertex.y);
    }
    bool isOn(const JWRawPoint& direction, const JWRawPoint& p) const {
        return orientationSign(vertex, direction, p) == 0 && isSameWay(direction, p);
    }
};

/// Four units in the last place of coordinates of at most a and b in size.
double nearness(double a, double b) { return 4 * 2.220446049250313e-16 * std::min(a, b); }

double largest(double a, double b) { return std::max(std::fabs(a), std::fabs(b)); }

}  // namespace

Spokes::Turn Spokes::turn(const JWRawPoint& vertex, const JWRawPoint* before,
                          const JWRawPoint& after) const {
    const Heading heading{vertex, before};
    Turn turn{false, false};
    for (const JWRawPoint& end : m_ends) {
        turn.oddUntil ^= heading.isBefore(end, after);
        turn.oddAlong ^= heading.isOn(after, end);
    }
    return turn;
}

Spokes::Cover Spokes::cover(const JWRawPoint& vertex, const JWRawPoint& before,
                            const JWRawPoint& after) const {
    const Heading heading{vertex, &before};
    Cover cover{false, false, false};
    for (const JWRawPoint& end : m_ends) {
        const bool backward = heading.isOn(before, end), forward = heading.isOn(after, end);
        cover.backward |= backward;
        cover.forward |= forward;
        cover.beside |= !backward && !forward;
    }
    return cover;
}

bool Spokes::hasBoundary(const JWRawPoint& vertex) {
    const Heading heading{vertex, nullptr};
    std::sort(m_ends.begin(), m_ends.end(),
              [&](const JWRawPoint& p, const JWRawPoint& q) { return heading.isBefore(p, q); });
    for (std::size_t i = 0; i < m_ends.size();) {
        const std::size_t first = i;
        while (i < m_ends.size() && heading.isOn(m_ends[first], m_ends[i])) ++i;
        if ((i - first) % 2 == 1) return true;
    }
    return false;
}

void SegmentMeetings::start(const JWRawPoint& a, const JWRawPoint& b) {
    m_a = a;
    m_b = b;
    m_box = boxOf(a, b);
    const JWEnvelop& around = m_edges.envelop();
    m_nearX = nearness(largest(a.x, b.x), largest(around.minX, around.maxX));
    m_nearY = nearness(largest(a.y, b.y), largest(around.minY, around.maxY));
}

void SegmentMeetings::find(const JWRawPoint& a, const JWRawPoint& b, Meetings&& found) {
    start(a, b);
    m_between = std::move(found.between);
    m_atStart = std::move(found.atStart);
}

void SegmentMeetings::find(const JWRawPoint& a, const JWRawPoint& b) {
    start(a, b);
    m_between.clear();
    m_atStart.clear();
    m_edges.visitNear(a, b, [this](int edge) { meet(m_edges.from(edge), m_edges.to(edge)); });
    if (m_between.size() < 2) return;
    std::sort(m_between.begin(), m_between.end(),
              [this](const Meeting& m, const Meeting& n) { return comesBefore(m.point, n.point); });
}

// By the axis that the segment has more of.
bool SegmentMeetings::comesBefore(const JWRawPoint& p, const JWRawPoint& q) const {
    const double ux = m_b.x - m_a.x, uy = m_b.y - m_a.y;
    const bool alongX = std::fabs(ux) >= std::fabs(uy);
    const bool xFirst = ux > 0 ? p.x < q.x : p.x > q.x, yFirst = uy > 0 ? p.y < q.y : p.y > q.y;
    if (alongX) return p.x != q.x ? xFirst : p.y != q.y && yFirst;
    return p.y != q.y ? yFirst : p.x != q.x && xFirst;
}

void SegmentMeetings::meet(const JWRawPoint& p, const JWRawPoint& q) {
    const int sideP = orientationSign(m_a, m_b, p), sideQ = orientationSign(m_a, m_b, q);
    if (sideP == 0 && sideQ == 0) return meetOnLine(p, q);
    if (sideP == sideQ) return;
    if (sideP == 0) return touch(p, q, sideQ);
    if (sideQ == 0) return touch(q, p, sideP);
    const int sideA = orientationSign(p, q, m_a), sideB = orientationSign(p, q, m_b);
    if (sideA * sideB < 0) {
        cross(p, q);
    } else if (sideA == 0) {
        m_atStart.add(p);
        m_atStart.add(q);
    }
}

// The edge lies on the segment's line.
void SegmentMeetings::meetOnLine(const JWRawPoint& p, const JWRawPoint& q) {
    if (boxOf(p, q).contains(m_a)) {
        if (p != m_a) m_atStart.add(p);
        if (q != m_a) m_atStart.add(q);
    }
    const auto end = [this](const JWRawPoint& at, const JWRawPoint& other) {
        if (at == m_a || at == m_b || !isWithin(at)) return;
        const bool forward = m_a.x != m_b.x ? (other.x > at.x) == (m_b.x > m_a.x)
                                            : (other.y > at.y) == (m_b.y > m_a.y);
        m_between.push_back({at, true, false, false, false, !forward, forward});
    };
    end(p, q);
    end(q, p);
}

// End p of an edge is on the segment's line, the other end on one side of it.
void SegmentMeetings::touch(const JWRawPoint& p, const JWRawPoint& other, int side) {
    if (p == m_a) return m_atStart.add(other);
    if (p == m_b || !isWithin(p)) return;
    m_between.push_back({p, true, side > 0, side < 0, true, false, false});
}

void SegmentMeetings::cross(const JWRawPoint& p, const JWRawPoint& q) {
    const JWRawPoint at = crossingOf(m_a, m_b, p, q);
    m_between.push_back({at, false, true, true, true, false, false});
}

}  // namespace jws::detail
