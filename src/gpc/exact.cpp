// SPDX-License-Identifier: MIT
//
// Exact orientation and accurate crossing points on doubles.
//
// The sign of an orientation determinant is certain whenever the plain value exceeds its error
// bound. Otherwise the determinant is evaluated without error: differences and products are
// written as sums of two doubles (Dekker 1971), and where the differences are exact, which is
// the rule for coordinates of one magnitude, comparing two such products is enough. The rest goes
// through an exact sum of sixteen terms (Shewchuk 1997).
#include "gpc/exact.h"

#include <algorithm>
#include <utility>

#include "gpc/expansion.h"

namespace jws::gpc {
namespace {

/// Tells whether the line ab passes `p` within `reach`; rounding depends on the order of a and b.
inline bool passes(const Point& p, const Point& a, const Point& b, double reach) {
    const long double dx = static_cast<long double>(b.x) - a.x;
    const long double dy = static_cast<long double>(b.y) - a.y;
    const long double cross =
        dx * (static_cast<long double>(p.y) - a.y) - dy * (static_cast<long double>(p.x) - a.x);
    return std::fabs(cross) <= reach * (std::fabs(dx) + std::fabs(dy));
}

}  // namespace

int orientationExact(const Point& a, const Point& b, const Point& c) {
    const Two ax = twoDiff(a.x, c.x);
    const Two by = twoDiff(b.y, c.y);
    const Two ay = twoDiff(a.y, c.y);
    const Two bx = twoDiff(b.x, c.x);
    if (ax.l == 0 && by.l == 0 && ay.l == 0 && bx.l == 0) {
        if ((ax.h == 0 || by.h == 0) && (ay.h == 0 || bx.h == 0)) return 0;
        const Two left = twoProduct(ax.h, by.h);
        const Two right = twoProduct(ay.h, bx.h);
        return left.h != right.h ? sign(left.h - right.h) : sign(left.l - right.l);
    }
    ExactSum sum;
    sum.addProduct(ax, by);
    sum.addProduct(negate(ay), bx);
    return sum.sign();
}

// A long double holds differences of coordinates exactly and places the point within a thousandth
// of a unit. What lies between the ends hardly depends on the reach. Of two diagonal edges from one
// point, each may have the other's end beside it, as they are measured along different axes: then
// only the edge along x counts, lest the two be cut in turns. That there are such edges is not
// asked: a vertex that might be the end of one is not held, so that a sliver of some units may
// stay.
bool Nearness::holds(const Point& p, Point a, Point b) const {
    if (b < a) std::swap(a, b);
    const double low = std::min(a.y, b.y);
    const double high = std::max(a.y, b.y);
    const double beyond =
        std::max(std::max(a.x - p.x, p.x - b.x) * aspect, std::max(low - p.y, p.y - high));
    if (beyond <= 0) return p != a && p != b && passes(p, a, b, reach);
    const bool alongX = isAlongX(a, b);
    if (!(alongX ? p.x > a.x && p.x < b.x : p.y > low && p.y < high)) return false;
    if (beyond * 8 > (alongX ? (b.x - a.x) * aspect : high - low)) return false;
    if (!passes(p, a, b, reach)) return false;
    return alongX || !(isAlongXBy(a, p, b) || isAlongXBy(b, p, a));
}

// Tells whether the edge ap is measured along x and holds b.
bool Nearness::isAlongXBy(const Point& a, const Point& p, const Point& b) const {
    return isAlongX(a, p) && holds(b, a, p);
}

bool Nearness::holdsOnLine(const Point& p, Point a, Point b) const {
    if (b < a) std::swap(a, b);
    return passes(p, a, b, reach);
}

void CrossingGrid::fit(int exponent) {
    step = std::ldexp(1.0, exponent);
    limit = 0x1p52 * step;
}

WideArea wideArea(const Point* p, int n) {
    Two sum = {0, 0};
    for (int i = 2; i < n; ++i) {
        const Two ax = twoDiff(p[i - 1].x, p[0].x);
        const Two ay = twoDiff(p[i - 1].y, p[0].y);
        const Two bx = twoDiff(p[i].x, p[0].x);
        const Two by = twoDiff(p[i].y, p[0].y);
        sum = add(sum, cross(ax, ay, bx, by));
    }
    return {sum.h, sum.l};
}

}  // namespace jws::gpc
