// SPDX-License-Identifier: MIT
#ifndef JW_GPC_EXACT_H
#define JW_GPC_EXACT_H

#include <cmath>
#include <cstdint>
#include <cstring>

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

inline std::uint64_t hashOf(const Point& p) {
    const double x = p.x + 0.0;  // -0 and 0 are one place
    const double y = p.y + 0.0;
    std::uint64_t a;
    std::uint64_t b;
    std::memcpy(&a, &x, sizeof a);
    std::memcpy(&b, &y, sizeof b);
    std::uint64_t h = (a ^ (a >> 32)) * 0x9E3779B97F4A7C15u;
    h = (h ^ (h >> 32) ^ b ^ (b >> 31)) * 0xC2B2AE3D27D4EB4Fu;
    return h ^ (h >> 32);
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

/// How closely an edge may pass a vertex.
struct Nearness {
    double reach = 0;   ///< in both x and y
    double aspect = 1;  ///< y in terms of x, as the caller's coordinates have it

    /// Tells along which axis an edge is measured.
    bool isAlongX(const Point& a, const Point& b) const {
        return std::fabs(b.x - a.x) * aspect >= std::fabs(b.y - a.y);
    }
    /// Tells whether `p` lies beside the edge ab, between its ends, within the reach of it. The
    /// direction of the edge does not matter, nor does it below.
    bool holds(const Point& p, Point a, Point b) const;
    /// Tells whether the line ab passes `p` within the reach.
    bool holdsOnLine(const Point& p, Point a, Point b) const;
    Nearness within(double other) const { return {other, aspect}; }

  private:
    bool isAlongXBy(const Point& a, const Point& p, const Point& b) const;
};

/// A grid that crossing points are rounded to: the multiples of a power of two.
struct CrossingGrid {
    double step = 0;
    double limit = 0;  ///< from this magnitude on every double is on the grid

    /// Sets the step to 2^exponent.
    void fit(int exponent);
    double round(double v) const {
        if (std::fabs(v) >= limit) return v;
        const double shifter = std::copysign(limit, v);
        return (v + shifter) - shifter;
    }
};

/// Twice the signed area of a closed contour, positive when counter-clockwise, in double-double.
struct WideArea {
    double high;
    double low;
};
WideArea wideArea(const Point* p, int n);

}  // namespace jws::gpc

#endif  // JW_GPC_EXACT_H
