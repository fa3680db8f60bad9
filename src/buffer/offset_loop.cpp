// SPDX-License-Identifier: MIT
#include "buffer/offset_loop.h"

#include <algorithm>
#include <cmath>
#include <utility>

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
}

void OffsetLoop::add(const JWRawPoint& p) {
    if (m_ring.empty() || m_ring.back() != p) m_ring.push_back(p);
}

RingView OffsetLoop::ring() {
    while (m_ring.size() > 1 && m_ring.back() == m_ring.front()) m_ring.pop_back();
    return {m_ring.data(), static_cast<int>(m_ring.size()), 0};
}

void OffsetLoop::addCap(const Cap& cap) {
    for (int k = 0; k <= cap.capsule.arcs.capCorners + 1; ++k) add(cap.corner(k));
}

/// The corners of both half circles take turns, with a crossing between any two. All steps being
/// equal but for the last one, the crossing of two edges lies in the direction of the sum of the
/// unit vectors to the corners beside it, always by the same share of it.
void OffsetLoop::addArc(const Cap& in, const Cap& out, double turn) {
    const ArcStyle& arcs = in.capsule.arcs;
    const int last = arcs.capCorners + 1;
    const double lead = 0.5 * kFullTurn - turn;  // by which the second half circle begins earlier
    int k = std::clamp(static_cast<int>(std::ceil(lead / arcs.capStep)), 0, last);
    const double first = k < last ? k * arcs.capStep - lead : turn;
    add(in.corner(0));
    if (first < kSameCorner || first > arcs.capStep - kSameCorner) {
        if (first < kSameCorner) ++k;
        for (; k <= last; ++k) add(out.corner(k));
        return;
    }
    const JWRawPoint center = in.center();
    const double radius = in.capsule.radius;
    JWRawPoint a = in.unit(0), b = out.unit(k);
    const double share = radius / (1 + dot(a, b) + std::fabs(cross(a, b)) * arcs.capTangent);
    const auto addBetween = [&] { add(pointAlong(center, {a.x + b.x, a.y + b.y}, share)); };
    int i = 0;
    for (; k < last; ++i, ++k) {
        b = out.unit(k);
        addBetween();
        add(pointAlong(center, b, radius));
        a = in.unit(i + 1);
        if (k + 1 < last) {
            addBetween();
        } else {
            add(crossing(out.corner(k), out.corner(last), in.corner(i), in.corner(i + 1)));
        }
        add(pointAlong(center, a, radius));
    }
    add(crossing(in.corner(i), in.corner(i + 1), out.corner(last - 1), out.corner(last)));
    add(out.corner(last));
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
    const double turn = isOuter(in, out) ? turnBetween(in, out) : 0;
    if (turn > kSameCorner) return addArc(in, out, turn);
    addNotch(in, out, cut);
}

RingView OffsetLoop::around() {
    emptyKept(m_ring);
    const std::size_t n = m_capsules.size();
    for (std::size_t i = 0; i + 1 < n; ++i) {
        addCorner(m_capsules[i].capAtEnd(), m_capsules[i + 1].capAtStart(), Cut::Anywhere);
    }
    addCap(m_capsules.back().capAtEnd());
    for (std::size_t i = n; i-- > 1;) {
        addCorner(m_capsules[i].capAtStart(), m_capsules[i - 1].capAtEnd(), Cut::Anywhere);
    }
    addCap(m_capsules.front().capAtStart());
    return ring();
}

/// Whether the line turns away from the side between two capsules.
bool OffsetLoop::isOuter(const Cap& in, const Cap& out) {
    const JWRawPoint a = in.normal();
    const JWRawPoint b = {-out.normal().x, -out.normal().y};
    const double side = cross(a, b);
    // A line that turns right back has its arc on the left side.
    return side < 0 || (side == 0 && dot(a, b) < 0 && in.isAtEnd);
}

RingView OffsetLoop::side(bool left) {
    emptyKept(m_ring);
    const std::size_t n = m_capsules.size();
    const auto corner = [&](std::size_t i) -> std::pair<Cap, Cap> {
        const Capsule &here = m_capsules[left ? i : n - 1 - i],
                      &next = m_capsules[left ? (i + 1) % n : (2 * n - 2 - i) % n];
        if (left) return {here.capAtEnd(), next.capAtStart()};
        return {here.capAtStart(), next.capAtEnd()};
    };
    bool isAnyOuter = false;
    for (std::size_t i = 0; i < n && !isAnyOuter; ++i) {
        const auto [in, out] = corner(i);
        isAnyOuter = isOuter(in, out);
    }
    for (std::size_t i = 0; i < n; ++i) {
        const auto [in, out] = corner(i);
        addCorner(in, out, isAnyOuter || i > 0 ? Cut::WithinStrips : Cut::Never);
    }
    return ring();
}

}  // namespace jws::detail
