// SPDX-License-Identifier: MIT
//
// Which pixel of a grid a point, a crossing or a segment lies in, exactly.
//
// Snap rounding is right if every crossing goes to the very pixel that it lies in and every segment
// to every pixel that it enters; a crossing on the border of two pixels, or a segment through the
// corner of one, must not be left to chance. So plain values decide only where their error bounds
// allow it. Otherwise: a crossing lies at a + t e with t = (g x f) / (e x f), and which side of a
// border X it is on is the sign of (a - X) (e x f) + e (g x f), a sum of products of three
// differences. A segment enters a square if their boxes meet and its line passes the middle within
// half a side, measured by the sum of its direction's components.
#include "gpc/pixel.h"

#include <algorithm>
#include <utility>

#include "gpc/expansion.h"

namespace jws::gpc {
namespace {

constexpr double kIllConditioned = 0x1p-20;  // of a cross product, against its terms
constexpr double kUncertain = 0x1p-16;       // of a step, near a border

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

double pixelOn(double v, const CrossingGrid& grid) {
    const double middle = grid.round(v);
    return middle + (v - middle == grid.step / 2 ? grid.step : 0);
}

/// Tells whether v < middle + offset.
bool isBefore(double v, double middle, double offset) {
    const Two from = twoDiff(v, middle);
    return from.h < offset || (from.h == offset && from.l < 0);
}

/// The same as `passesMiddle`, without rounding.
bool passesMiddleExactly(const Point& a, const Point& b, const Point& middle, double half) {
    const Two ex = twoDiff(b.x, a.x);
    const Two ey = twoDiff(b.y, a.y);
    ExactSum above;
    above.addProduct(ex, twoDiff(middle.y, a.y));
    above.addProduct(negate(ey), twoDiff(middle.x, a.x));
    ExactSum below = above;
    const double up = b.y > a.y ? half : -half;
    for (const double term : {half * ex.l, half * ex.h, up * ey.l, up * ey.h}) {
        above.add(-term);
        below.add(term);
    }
    // A falling line through the lower left corner has it.
    if (above.sign() == 0) return b.y < a.y;
    return above.sign() < 0 && below.sign() > 0;
}

/// Tells whether the line ab, neither horizontal nor vertical and rightward, enters the square.
bool passesMiddle(const Point& a, const Point& b, const Point& middle, double half) {
    const long double ex = static_cast<long double>(b.x) - a.x;
    const long double ey = static_cast<long double>(b.y) - a.y;
    const long double left = ex * (static_cast<long double>(middle.y) - a.y);
    const long double right = ey * (static_cast<long double>(middle.x) - a.x);
    const long double off = std::fabs(left - right);
    const long double most = half * (ex + std::fabs(ey));
    const long double error = 0x1p-60L * (std::fabs(left) + std::fabs(right) + most);
    if (off > most + error) return false;
    if (off < most - error) return true;
    return passesMiddleExactly(a, b, middle, half);
}

}  // namespace

Point pixelOf(const Point& p, const CrossingGrid& grid) {
    return {pixelOn(p.x, grid), pixelOn(p.y, grid)};
}

Point crossingPixel(const Point& a, const Point& b, const Point& c, const Point& d,
                    const CrossingGrid& grid) {
    Point certain;
    if (crossingByFilter(a, b, c, d, grid, certain)) return certain;
    const Crossing at(a, b, c, d);
    return {at.pixelOn(a.x, at.ex, grid), at.pixelOn(a.y, at.ey, grid)};
}

bool entersPixel(Point a, Point b, const Point& middle, double step) {
    if (b < a) std::swap(a, b);
    const double half = step / 2;
    const double low = std::min(a.y, b.y);
    const double high = std::max(a.y, b.y);
    if (!isBefore(a.x, middle.x, half) || isBefore(b.x, middle.x, -half)) return false;
    if (!isBefore(low, middle.y, half) || isBefore(high, middle.y, -half)) return false;
    if (a.x == b.x || a.y == b.y) return true;
    return passesMiddle(a, b, middle, half);
}

}  // namespace jws::gpc
