// SPDX-License-Identifier: MIT
//
// What two edges do to each other: where one splits the other, and whether a bent edge may bring
// them together later. noding.cpp says what distances are for.
//
// Plain sums tell how far ends are off the other edge's line; only where that is little do exact
// predicates decide. Whatever is computed depends on the two edges alone, not on their order or
// direction.
#include <algorithm>
#include <cmath>

#include "foundation/pulse.h"
#include "gpc/crossing.h"
#include "gpc/noding.h"

namespace jws::gpc {
namespace {

constexpr double kShallow = 0x1p-7;

bool isWithin(const Point& p, const Point& a, const Point& b) {
    return p.x >= std::min(a.x, b.x) && p.x <= std::max(a.x, b.x) && p.y >= std::min(a.y, b.y) &&
           p.y <= std::max(a.y, b.y);
}

/// Tells whether ab is horizontal or vertical and p exactly on it.
bool isOnAxial(const Point& p, const Point& a, const Point& b) {
    return (a.x == b.x && p.x == a.x) || (a.y == b.y && p.y == a.y);
}

/// Tells whether two edges e and f that leave a point are further apart than `reach` at the end of
/// the shorter one, or leave to opposite sides.
bool opens(double ex, double ey, double fx, double fy, double reach) {
    if (ex * fx + ey * fy < 0) return true;
    const double longer = std::max(std::fabs(ex) + std::fabs(ey), std::fabs(fx) + std::fabs(fy));
    return std::fabs(ex * fy - ey * fx) > reach * longer;
}

}  // namespace

// Compares all unchecked edges with their surroundings; true if there is something to split.
bool Noder::check() {
    m_splits.clear();
    m_firstSplit.fill(m_set->points.size(), 0);
    m_tree.build(*m_set, m_near.reach);
    m_treeIsFresh = true;
    detail::StepCounter pace;
    const auto visit = [this, &pace](std::uint32_t i, std::uint32_t ci, std::uint32_t j,
                                     std::uint32_t cj) {
        pace.step();
        if (m_splits.size() > m_most) return;  // too many to go on from
        if (j == i + 1 && ci == cj && isPlainCorner(m_set->points.data() + i)) return;
        meet(i, m_set->contours[ci], j, m_set->contours[cj]);
    };
    m_tree.joinSelf(*m_set, visit);
    return !m_splits.empty();
}

void Noder::split(std::uint32_t edge, const Point& p, bool moved, std::uint32_t by) {
    m_splits.push({p, m_firstSplit[edge], by, moved});
    m_firstSplit[edge] = static_cast<std::uint32_t>(m_splits.size());
}

// Tells whether the edges p[0] p[1] and p[1] p[2] of a contour meet in nothing but p[1], and at an
// angle that bending does not close.
bool Noder::isPlainCorner(const Point* p) const {
    return opens(p[0].x - p[1].x, p[0].y - p[1].y, p[2].x - p[1].x, p[2].y - p[1].y, m_radius);
}

// The four sums are distances of ends from the other edge's line, times that edge's length.
void Noder::meet(std::uint32_t i, const Contour& ci, std::uint32_t j, const Contour& cj) {
    const std::uint32_t i1 = m_set->next(ci, i);
    const std::uint32_t j1 = m_set->next(cj, j);
    const Point* p = m_set->points.data();
    const Point a = p[i];
    const Point b = p[i1];
    const Point c = p[j];
    const Point d = p[j1];
    if (a == c) return meetAtEnd(i, j, i1, j1, i, j, false);
    if (b == d) return meetAtEnd(i1, j1, i, j, i, j, false);
    if (b == c) return meetAtEnd(i1, j, i, j1, i, j, i1 == j);
    if (a == d) return meetAtEnd(i, j1, i1, j, i, j, i == j1);
    const double ex = b.x - a.x;
    const double ey = b.y - a.y;
    const double fx = d.x - c.x;
    const double fy = d.y - c.y;
    const double gx = c.x - a.x;
    const double gy = c.y - a.y;
    const double turn = ex * fy - ey * fx;
    const double sumC = ex * gy - ey * gx;
    const double sumD = sumC + turn;
    const double sumA = fx * gy - fy * gx;
    const double sumB = sumA + turn;
    const double e = std::fabs(ex) + std::fabs(ey);
    const double f = std::fabs(fx) + std::fabs(fy);
    const double offC = std::fabs(sumC) / e;
    const double offD = std::fabs(sumD) / e;
    const double offA = std::fabs(sumA) / f;
    const double offB = std::fabs(sumB) / f;
    const double nearest = std::min(std::min(offA, offB), std::min(offC, offD));
    if (nearest <= m_radius) {
        suspect(i, j);
        if (nearest <= m_tight) {
            bool cut = offC <= m_tight && cutAt(i, i1, j, j);
            cut |= offD <= m_tight && cutAt(i, i1, j1, j);
            cut |= offA <= m_tight && cutAt(j, j1, i, i);
            cut |= offB <= m_tight && cutAt(j, j1, i1, i);
            if (!cut) crossClosely(i, i1, j, j1);
            return;
        }
    }
    if ((sumC > 0) == (sumD > 0) || (sumA > 0) == (sumB > 0)) return;
    if (std::fabs(turn) <= kShallow * e * f) suspect(i, j);
    cross(i, i1, j, j1);
}

// The same for edges of which one has an end hardly off the other's line and yet not on that edge.
void Noder::crossClosely(std::uint32_t i, std::uint32_t i1, std::uint32_t j, std::uint32_t j1) {
    const Point* p = m_set->points.data();
    if (orientation(p[i], p[i1], p[j]) * orientation(p[i], p[i1], p[j1]) >= 0) return;
    if (orientation(p[j], p[j1], p[i]) * orientation(p[j], p[j1], p[i1]) >= 0) return;
    suspect(i, j);
    cross(i, i1, j, j1);
}

// Splits an edge at a vertex that it passes through or closely by.
bool Noder::cutAt(std::uint32_t edge, std::uint32_t end, std::uint32_t point, std::uint32_t by) {
    const Point& a = m_set->points[edge];
    const Point& b = m_set->points[end];
    const Point& p = m_set->points[point];
    const bool on = orientation(a, b, p) == 0;
    if (!(on ? isWithin(p, a, b) : isNear(p, a, b))) return false;
    touch(edge, point, !on, by);
    return true;
}

// Edges i and j share a point, `shared` of i and `sharedOther` of j; their other ends are farI and
// farJ. `neighbours` tells that the point is one and the same vertex of a contour.
void Noder::meetAtEnd(std::uint32_t shared, std::uint32_t sharedOther, std::uint32_t farI,
                      std::uint32_t farJ, std::uint32_t i, std::uint32_t j, bool neighbours) {
    if (!neighbours) {
        mark(shared);
        mark(sharedOther);
    }
    const Point s = m_set->points[shared];
    const Point u = m_set->points[farI];
    const Point w = m_set->points[farJ];
    const double ex = u.x - s.x;
    const double ey = u.y - s.y;
    const double fx = w.x - s.x;
    const double fy = w.y - s.y;
    if (opens(ex, ey, fx, fy, m_radius)) return;
    suspect(i, j);
    if (opens(ex, ey, fx, fy, m_tight)) return;
    if (u == w) {
        mark(farI);
        mark(farJ);
    } else if (orientation(s, u, w) != 0) {
        if (isNear(w, s, u)) {
            touch(i, farJ, true, j);
        } else if (isNear(u, s, w)) {
            touch(j, farI, true, i);
        } else {
            return;
        }
    } else if (isWithin(w, s, u)) {
        touch(i, farJ, false, j);
    } else if (isWithin(u, s, w)) {
        touch(j, farI, false, i);
    } else {
        return;  // collinear, but leaving the point in opposite directions
    }
    mark(shared);
    mark(sharedOther);
}

void Noder::cross(std::uint32_t i, std::uint32_t i1, std::uint32_t j, std::uint32_t j1) {
    const Point* p = m_set->points.data();
    const Point at = crossingPoint(p[i], p[i1], p[j], p[j1], m_grid);
    const bool moved = !isOnAxial(at, p[i], p[i1]) || !isOnAxial(at, p[j], p[j1]);
    if (at == p[i]) {
        mark(i);
    } else if (at == p[i1]) {
        mark(i1);
    } else {
        split(i, at, moved, j);
    }
    if (at == p[j]) {
        mark(j);
    } else if (at == p[j1]) {
        mark(j1);
    } else {
        split(j, at, moved, i);
    }
}

}  // namespace jws::gpc
