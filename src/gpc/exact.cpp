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

/// Two products, one less the other, with a bound of the error of their difference in extended
/// precision, where the factors are differences of doubles.
struct Bounded {
    long double value;
    long double error;
};

inline Bounded crossBounded(long double ax, long double ay, long double bx, long double by) {
    const long double left = ax * by;
    const long double right = ay * bx;
    return {left - right, 0x1p-61L * (std::fabs(left) + std::fabs(right))};
}

/// The grid's nearest value to one that is known to within `error`; false when that leaves several.
inline bool roundSafely(long double v, long double error, const CrossingGrid& grid, double& out) {
    out = grid.round(static_cast<double>(v));
    return std::fabs(v - out) + error < 0.499L * grid.step;
}

double longestSide(const Point& a, const Point& b) {
    return std::max(std::fabs(b.x - a.x), std::fabs(b.y - a.y));
}

double within(double v, double a, double b, double c, double d) {
    const double low = std::max(std::min(a, b), std::min(c, d));
    const double high = std::min(std::max(a, b), std::max(c, d));
    return std::min(std::max(v, low), high);
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
// of a unit. What lies between the ends does not depend on the reach, so that a smaller reach finds
// nothing that a larger one would not.
bool Nearness::holds(const Point& p, Point a, Point b) const {
    if (b < a) std::swap(a, b);
    const double low = std::min(a.y, b.y);
    const double high = std::max(a.y, b.y);
    const double beyond =
        std::max(std::max(a.x - p.x, p.x - b.x) * aspect, std::max(low - p.y, p.y - high));
    if (beyond > 0) {
        const bool alongX = isAlongX(a, b);
        if (!(alongX ? p.x > a.x && p.x < b.x : p.y > low && p.y < high)) return false;
        if (beyond * 8 > (alongX ? (b.x - a.x) * aspect : high - low)) return false;
    } else if (p == a || p == b) {
        return false;
    }
    const long double dx = static_cast<long double>(b.x) - a.x;
    const long double dy = static_cast<long double>(b.y) - a.y;
    const long double cross =
        dx * (static_cast<long double>(p.y) - a.y) - dy * (static_cast<long double>(p.x) - a.x);
    return std::fabs(cross) <= reach * (dx + std::fabs(dy));
}

void CrossingGrid::fit(int exponent) {
    step = std::ldexp(1.0, exponent);
    limit = 0x1p52 * step;
}

bool crossingByFilter(const Point& a, const Point& b, const Point& c, const Point& d,
                      const CrossingGrid& grid, Point& out) {
    using Wide = long double;
    const Wide ex = static_cast<Wide>(b.x) - a.x, ey = static_cast<Wide>(b.y) - a.y;
    const Wide fx = static_cast<Wide>(d.x) - c.x, fy = static_cast<Wide>(d.y) - c.y;
    const Wide gx = static_cast<Wide>(c.x) - a.x, gy = static_cast<Wide>(c.y) - a.y;
    const Bounded over = crossBounded(gx, gy, fx, fy);
    const Bounded under = crossBounded(ex, ey, fx, fy);
    if (!(std::fabs(under.value) > 4 * under.error)) return false;
    const Wide t = over.value / under.value;
    const Wide error =
        2 * (over.error + std::fabs(t) * under.error) / std::fabs(under.value) + 0x1p-60L;
    return roundSafely(a.x + t * ex, error * std::fabs(ex) + 0x1p-62L * std::fabs(a.x), grid,
                       out.x) &&
           roundSafely(a.y + t * ey, error * std::fabs(ey) + 0x1p-62L * std::fabs(a.y), grid,
                       out.y);
}

Point crossingPoint(Point a, Point b, Point c, Point d, const CrossingGrid& grid) {
    if (a.y == b.y && c.x == d.x) return {c.x, a.y};
    if (a.x == b.x && c.y == d.y) return {a.x, c.y};
    if (b < a) std::swap(a, b);
    if (d < c) std::swap(c, d);
    const double lengthE = longestSide(a, b);
    const double lengthF = longestSide(c, d);
    if (lengthF < lengthE || (lengthF == lengthE && (c < a || (c == a && d < b)))) {
        std::swap(a, c);
        std::swap(b, d);
    }
    Point at;
    if (crossingByFilter(a, b, c, d, grid, at)) {
        return {within(at.x, a.x, b.x, c.x, d.x) + 0.0, within(at.y, a.y, b.y, c.y, d.y) + 0.0};
    }
    const Two ex = twoDiff(b.x, a.x);
    const Two ey = twoDiff(b.y, a.y);
    const Two fx = twoDiff(d.x, c.x);
    const Two fy = twoDiff(d.y, c.y);
    const Two gx = twoDiff(c.x, a.x);
    const Two gy = twoDiff(c.y, a.y);
    const Two t = divide(cross(gx, gy, fx, fy), cross(ex, ey, fx, fy));
    const Two x = add({a.x, 0}, multiply(t, ex));
    const Two y = add({a.y, 0}, multiply(t, ey));
    return {within(grid.round(x.h), a.x, b.x, c.x, d.x) + 0.0,
            within(grid.round(y.h), a.y, b.y, c.y, d.y) + 0.0};
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
