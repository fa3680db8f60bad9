// SPDX-License-Identifier: MIT
#include "buffer/offset_loop.h"

#include <algorithm>
#include <cmath>

#include "foundation/segment_math.h"

namespace jws::detail {
namespace {

// Of the distance. A corner of one half circle lies in the next capsule when the segment is longer
// than the sine of half a step, 0.1306 for 15 degrees.
constexpr double kShortest = 0.15;
// Radians. Corners that lie closer together, as where a right angle is made of six steps that are
// stored with twelve decimals, count as one.
constexpr double kSameCorner = 3e-12;
constexpr double kFullTurn = 6.283185307179586;

/// Where two edges that cross do so: a point of ab.
JWRawPoint crossing(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint& c,
                    const JWRawPoint& d) {
    const JWRawPoint u = difference(b, a), v = difference(d, c);
    const double t = cross(difference(c, a), v) / cross(u, v);
    return pointAlong(a, u, t >= 0 ? std::min(t, 1.0) : t < 0 ? 0.0 : 0.5);
}

/// How far the line turns clockwise from one cap to the next, up to half a turn.
double turnBetween(const Capsule::Cap& in, const Capsule::Cap& out) {
    // The cap behind begins half a turn before it comes to the side that leads on.
    const double turn = in.startAngle() - out.startAngle() + 0.5 * kFullTurn;
    const double once = turn - kFullTurn * std::floor(turn / kFullTurn);
    return once > 0.75 * kFullTurn ? 0 : once;
}

/// Goes along a half circle, corner by corner.
class ArcWalk {
  public:
    /// `place`: how far the half circle begins behind the start of the turn, in radians.
    ArcWalk(const Capsule::Cap& cap, double place)
        : m_cap(cap), m_end(cap.capsule.arcs.capCorners + 1), m_start(place) {}

    /// The place of the corner that comes next.
    double place() const {
        return m_start + (m_next < m_end ? m_next * m_cap.capsule.arcs.capStep : 0.5 * kFullTurn);
    }
    bool isAtEnd() const { return m_next == m_end; }
    JWRawPoint last() const { return m_cap.corner(m_next - 1); }
    JWRawPoint next() const { return m_cap.corner(m_next); }
    void pass() { ++m_next; }

  private:
    const Capsule::Cap& m_cap;
    int m_end;
    double m_start;
    int m_next = 1;
};

}  // namespace

bool isLongForLoop(const Shape& piece, double distance) {
    const JWRawPoint v = difference(piece.to, piece.from);
    const double least = kShortest * distance;
    return dot(v, v) >= least * least;
}

void OffsetLoop::take(const Shape* pieces, std::size_t count, double distance,
                      const ArcStyle& arcs) {
    emptyKept(m_capsules);
    m_capsules.reserve(count);
    for (std::size_t i = 0; i < count; ++i) m_capsules.emplace_back(pieces[i], distance, arcs);
    emptyKept(m_ring);
}

void OffsetLoop::add(const JWRawPoint& p) {
    if (m_ring.empty() || m_ring.back() != p) m_ring.push_back(p);
}

void OffsetLoop::endRing(RingSet& rings) {
    while (m_ring.size() > 1 && m_ring.back() == m_ring.front()) m_ring.pop_back();
    for (const JWRawPoint& p : m_ring) rings.addPoint(p);
    rings.endRing(0);
    m_ring.clear();
}

void OffsetLoop::addCap(const Cap& cap) {
    for (int k = 0; k <= cap.capsule.arcs.capCorners + 1; ++k) add(cap.corner(k));
}

/// The corners of both half circles in their order around the turn, a crossing wherever the other
/// one becomes the outer one.
void OffsetLoop::addArc(const Cap& in, const Cap& out, double turn) {
    ArcWalk a(in, 0), b(out, turn - 0.5 * kFullTurn);
    const auto addCrossing = [&] { add(crossing(a.last(), a.next(), b.last(), b.next())); };
    while (b.place() < -kSameCorner) b.pass();
    enum { OnA, OnB, OnBoth } on = OnA;
    if (!b.isAtEnd() && b.place() < kSameCorner) {
        on = OnBoth;
        b.pass();
    }
    add(a.last());
    for (;;) {
        const double ahead = a.place() - b.place();
        const bool same = std::fabs(ahead) <= kSameCorner;
        if (ahead < 0 && !same) {
            if (on == OnB) addCrossing();
            add(a.next());
            a.pass();
            on = OnA;
            continue;
        }
        if (on == OnA && !same) addCrossing();
        add(b.next());
        if (b.isAtEnd()) return;
        b.pass();
        if (same) a.pass();
        on = same ? OnBoth : OnB;
    }
}

/// Where the line turns towards the side: the crossing of the sides, or the way by the corner.
void OffsetLoop::addNotch(const Cap& in, const Cap& out, Cut cut) {
    const JWRawPoint a = in.normal();
    const JWRawPoint b = {-out.normal().x, -out.normal().y};
    const double radius = in.capsule.radius;
    const double whole = 1 + dot(a, b);
    const double across = radius * std::fabs(cross(a, b));
    const double least = cut == Cut::Anywhere ? across / whole : across;  // along either side
    const auto isLong = [&](const Capsule& capsule) {
        const JWRawPoint v = difference(capsule.to, capsule.from);
        return least * least <= dot(v, v);
    };
    const bool mayCut = cut == Cut::Anywhere ? whole > 1e-3 : cut != Cut::Never && whole >= 1;
    if (mayCut && isLong(in.capsule) && isLong(out.capsule)) {
        return add(pointAlong(in.center(), {a.x + b.x, a.y + b.y}, radius / whole));
    }
    add(in.corner(0));
    add(in.center());
    add(out.corner(out.capsule.arcs.capCorners + 1));
}

void OffsetLoop::addCorner(const Cap& in, const Cap& out, Cut cut) {
    const JWRawPoint a = in.normal();
    const JWRawPoint b = {-out.normal().x, -out.normal().y};
    const double side = cross(a, b);
    // A line that turns right back has its arc on the left side.
    const bool isOuter = side < 0 || (side == 0 && dot(a, b) < 0 && in.isAtEnd);
    const double turn = isOuter ? turnBetween(in, out) : 0;
    if (turn > kSameCorner) return addArc(in, out, turn);
    addNotch(in, out, cut);
}

void OffsetLoop::addAround(RingSet& rings) {
    const std::size_t n = m_capsules.size();
    for (std::size_t i = 0; i + 1 < n; ++i) {
        addCorner(m_capsules[i].capAtEnd(), m_capsules[i + 1].capAtStart(), Cut::Anywhere);
    }
    addCap(m_capsules.back().capAtEnd());
    for (std::size_t i = n; i-- > 1;) {
        addCorner(m_capsules[i].capAtStart(), m_capsules[i - 1].capAtEnd(), Cut::Anywhere);
    }
    addCap(m_capsules.front().capAtStart());
    endRing(rings);
}

void OffsetLoop::addSide(bool left, RingSet& rings) {
    const std::size_t n = m_capsules.size();
    for (std::size_t i = 0; i < n; ++i) {
        const Capsule &here = m_capsules[left ? i : n - 1 - i],
                      &next = m_capsules[left ? (i + 1) % n : (2 * n - 2 - i) % n];
        const Cut cut = i > 0 ? Cut::WithinStrips : Cut::Never;
        if (left) {
            addCorner(here.capAtEnd(), next.capAtStart(), cut);
        } else {
            addCorner(here.capAtStart(), next.capAtEnd(), cut);
        }
    }
    endRing(rings);
}

}  // namespace jws::detail
