// SPDX-License-Identifier: MIT
#ifndef JW_GPC_EXACT_H
#define JW_GPC_EXACT_H

#include <cmath>

namespace jws::gpc {

struct Point {
    double x;
    double y;
};

inline bool operator==(const Point& a, const Point& b) { return a.x == b.x && a.y == b.y; }
inline bool operator!=(const Point& a, const Point& b) { return !(a == b); }
/// Lexicographic order: by x, then by y.
inline bool operator<(const Point& a, const Point& b) {
    return a.x < b.x || (a.x == b.x && a.y < b.y);
}

/// `orientation` without the filter.
int orientationExact(const Point& a, const Point& b, const Point& c);

/// Tells on which side of the line from a to b the point c lies: 1 left, -1 right, 0 on it.
/// Exact for coordinates whose products neither overflow nor underflow.
inline int orientation(const Point& a, const Point& b, const Point& c) {
    const double left = (a.x - c.x) * (b.y - c.y);
    const double right = (a.y - c.y) * (b.x - c.x);
    const double det = left - right;
    const double bound = 3.3306690738754716e-16 * (std::fabs(left) + std::fabs(right));
    if (det > bound) return 1;
    if (det < -bound) return -1;
    return orientationExact(a, b, c);
}

/// A grid that crossing points are rounded to: the multiples of a power of two.
struct CrossingGrid {
    double step = 0;
    double shifter = 0;  ///< adding and subtracting it rounds to the grid
    double limit = 0;    ///< from this magnitude on every double is on the grid

    /// Sets the step to 2^exponent.
    void fit(int exponent);
    double round(double v) const { return std::fabs(v) < limit ? (v + shifter) - shifter : v; }
};

/// Computes the point where the segments ab and cd, which cross properly, meet: correctly to a
/// few units of the double-double format, then rounded to the grid and kept within both
/// segments' boxes. The order of the segments and their directions do not matter.
Point crossingPoint(Point a, Point b, Point c, Point d, const CrossingGrid& grid);

/// Twice the signed area of a closed contour, positive when counter-clockwise, in double-double.
struct WideArea {
    double high;
    double low;
};
WideArea wideArea(const Point* p, int n);

}  // namespace jws::gpc

#endif  // JW_GPC_EXACT_H
