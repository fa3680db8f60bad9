// SPDX-License-Identifier: MIT
//
// Which pixel of a grid a point or a segment lies in, exactly.
//
// Snap rounding is right only if every segment goes to every pixel that it enters; one through the
// corner of a pixel must not be left to chance. A segment enters a square if their boxes meet and
// its line passes the middle within half a side, measured by the sum of its direction's components.
// Extended precision decides where its error bound allows it, sums without rounding elsewhere.
#include "gpc/pixel.h"

#include <algorithm>
#include <utility>

#include "gpc/expansion.h"

namespace jws::gpc {
namespace {

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
