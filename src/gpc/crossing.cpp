// SPDX-License-Identifier: MIT
//
// Where two segments cross, rounded to a grid, right to the last place.
//
// Snap rounding is right only if every crossing goes to the very pixel that it lies in, the border
// between two included; and what is rounded right does not depend on the order or direction of the
// segments. Extended precision mostly tells, and sums of two doubles nearly always. Where they do
// not: the crossing lies at a + t e with t = (g x f) / (e x f), and which side of a border X it is
// on is the sign of (a - X) (e x f) + e (g x f), a sum of products of three differences, which is
// computed without rounding.
#include "gpc/crossing.h"

#include <algorithm>

#include "gpc/expansion.h"

namespace jws::gpc {
namespace {

constexpr double kIllConditioned = 0x1p-20;  // of a cross product, against its terms
constexpr double kUncertain = 0x1p-16;       // of a step, near a border

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

/// The pixel in extended precision; false where that is not certain.
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

/// Two segments that cross: e and f, from a to the first and from c to the second.
struct Crossing {
    Two ex, ey, fx, fy, gx, gy;
    Two t;
    double turn;

    Crossing(const Point& a, const Point& b, const Point& c, const Point& d)
        : ex(twoDiff(b.x, a.x)),
          ey(twoDiff(b.y, a.y)),
          fx(twoDiff(d.x, c.x)),
          fy(twoDiff(d.y, c.y)),
          gx(twoDiff(c.x, a.x)),
          gy(twoDiff(c.y, a.y)) {
        Two whole = cross(ex, ey, fx, fy);
        Two part = cross(gx, gy, fx, fy);
        const double size = std::fabs(ex.h * fy.h) + std::fabs(ey.h * fx.h);
        if (!(std::fabs(whole.h) >= kIllConditioned * size)) {
            whole = exactCross(ex, ey, fx, fy);
            part = exactCross(gx, gy, fx, fy);
        }
        turn = whole.h;
        t = divide(part, whole);
    }

    static Two exactCross(Two ax, Two ay, Two bx, Two by) {
        ExactSum sum;
        sum.addProduct(ax, by);
        sum.addProduct(negate(ay), bx);
        return sum.value();
    }

    /// The sign of x - (middle + offset), where the crossing's coordinate is x on an axis on which
    /// e is `along` and starts at `start`.
    int sideOf(double start, Two along, double middle, double offset) const {
        const Two from = twoDiff(start, middle);
        ExactSum sum;
        for (const double part : {from.l, -offset, from.h}) {
            sum.addProduct(ex, fy, part);
            sum.addProduct(negate(ey), fx, part);
        }
        for (const double part : {along.l, along.h}) {
            sum.addProduct(gx, fy, part);
            sum.addProduct(negate(gy), fx, part);
        }
        return turn > 0 ? sum.sign() : -sum.sign();
    }

    double pixelOn(double start, Two along, const CrossingGrid& grid) const {
        const Two x = add({start, 0}, multiply(t, along));
        const double middle = grid.round(x.h);
        const double rest = (x.h - middle) + x.l;
        const double border = std::copysign(grid.step / 2, rest);
        const double over = rest - border;
        const bool certain = std::fabs(over) > kUncertain * grid.step;
        const bool beyond = certain ? over > 0 : sideOf(start, along, middle, border) >= 0;
        if (border > 0) return middle + (beyond ? grid.step : 0);
        return middle - (beyond ? 0 : grid.step);
    }
};

double within(double v, double a, double b, double c, double d) {
    const double low = std::max(std::min(a, b), std::min(c, d));
    const double high = std::min(std::max(a, b), std::max(c, d));
    return std::min(std::max(v, low), high);
}

}  // namespace

Point crossingPixel(const Point& a, const Point& b, const Point& c, const Point& d,
                    const CrossingGrid& grid) {
    Point certain;
    if (crossingByFilter(a, b, c, d, grid, certain)) return certain;
    const Crossing at(a, b, c, d);
    return {at.pixelOn(a.x, at.ex, grid), at.pixelOn(a.y, at.ey, grid)};
}

Point crossingPoint(const Point& a, const Point& b, const Point& c, const Point& d,
                    const CrossingGrid& grid) {
    if (a.y == b.y && c.x == d.x) return {c.x, a.y};
    if (a.x == b.x && c.y == d.y) return {a.x, c.y};
    const Point at = crossingPixel(a, b, c, d, grid);
    return {within(at.x, a.x, b.x, c.x, d.x) + 0.0, within(at.y, a.y, b.y, c.y, d.y) + 0.0};
}

}  // namespace jws::gpc
