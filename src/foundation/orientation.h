// SPDX-License-Identifier: MIT
//
// The sign of the orientation of three points, exact.
//
// The determinant (a−c)×(b−c) is evaluated in floating point first. When its size exceeds the bound
// on its rounding error, its sign is right. Otherwise the six products of the expanded form
// a×b + b×c + c×a are split into exact pairs and summed as a non-overlapping expansion, whose last
// component carries the sign (J. R. Shewchuk, Adaptive Precision Floating-Point Arithmetic and Fast
// Robust Geometric Predicates, 1997). Exact as long as no product overflows or loses bits below the
// smallest normal number. Needs strict floating point: no contraction, no fast-math.
#ifndef JW_FOUNDATION_ORIENTATION_H
#define JW_FOUNDATION_ORIENTATION_H

#include <cmath>

#include "foundation/expansion.h"
#include "jw_envelop.h"

namespace jws {

namespace detail {

/// Sign of the determinant by an exact expansion of twelve components.
inline int orientationSignExact(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint& c) {
    Expansion<12> sum;
    const auto addProduct = [&](double x, double y) {
        const double product = x * y;
        sum.add(std::fma(x, y, -product));
        sum.add(product);
    };
    addProduct(a.x, b.y);
    addProduct(-a.y, b.x);
    addProduct(b.x, c.y);
    addProduct(-b.y, c.x);
    addProduct(c.x, a.y);
    addProduct(-c.y, a.x);
    const bool isFinite = sum.size() == 0 || std::isfinite(sum.part(sum.size() - 1));
    return isFinite ? sum.sign() : 2;
}

}  // namespace detail

/// 1 when c lies to the left of the line from a to b, −1 to the right, 0 on it. 2 when a coordinate
/// is NaN or a product overflows.
inline int orientationSign(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint& c) {
    const double ax = a.x - c.x, ay = a.y - c.y;
    const double bx = b.x - c.x, by = b.y - c.y;
    if ((ax == 0.0 || by == 0.0) && (ay == 0.0 || bx == 0.0)) return 0;
    const double left = ax * by;
    const double right = ay * bx;
    const double det = left - right;
    const double bound = 3.3306690738754716e-16 * (std::fabs(left) + std::fabs(right));
    if (det > bound) return 1;
    if (-det > bound) return -1;
    if (!std::isfinite(det)) return 2;
    return detail::orientationSignExact(a, b, c);
}

}  // namespace jws

#endif  // JW_FOUNDATION_ORIENTATION_H
