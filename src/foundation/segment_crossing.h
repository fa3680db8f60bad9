// SPDX-License-Identifier: MIT
//
// The point where two segments cross that are known to do so, by exact orientations.
//
// Segments may cross properly and yet be so nearly parallel that the determinant of their
// directions is lost in rounding: the quotient is then noise, or no number at all. So where the
// determinant is not well above its rounding error, both of the quotient's determinants are
// computed without rounding.
#ifndef JW_FOUNDATION_SEGMENT_CROSSING_H
#define JW_FOUNDATION_SEGMENT_CROSSING_H

#include <algorithm>
#include <cmath>
#include <utility>

#include "foundation/expansion.h"
#include "jw_envelop.h"

namespace jws::detail {

/// (a1 − a0) × (p1 − p0), rounded once or twice.
inline double exactCross(const JWRawPoint& a0, const JWRawPoint& a1, const JWRawPoint& p0,
                         const JWRawPoint& p1) {
    Expansion<16> sum;
    sum.addProduct(exactDifference(a1.x, a0.x), exactDifference(p1.y, p0.y));
    sum.addProduct(exactDifference(a1.y, a0.y), exactDifference(p1.x, p0.x), -1);
    double value = 0;
    for (int i = 0; i < sum.size(); ++i) value += sum.part(i);
    return value;
}

/// How far along a0a1 it crosses p0p1, from 0 to 1.
inline double crossingShare(const JWRawPoint& a0, const JWRawPoint& a1, const JWRawPoint& p0,
                            const JWRawPoint& p1) {
    constexpr double enough = 1e-8;  // of the products: half of the digits are right
    const double left = (a1.x - a0.x) * (p1.y - p0.y), right = (a1.y - a0.y) * (p1.x - p0.x);
    const double whole = left - right;
    double t;
    if (std::fabs(whole) > enough * (std::fabs(left) + std::fabs(right))) {
        t = ((p0.x - a0.x) * (p1.y - p0.y) - (p0.y - a0.y) * (p1.x - p0.x)) / whole;
    } else {
        t = exactCross(a0, p0, p0, p1) / exactCross(a0, a1, p0, p1);
    }
    return t > 0 ? std::min(t, 1.0) : 0;  // NaN too
}

/// The point where ab, which crosses pq, does so: the same bits for either direction of either, in
/// the rectangle of the shorter one. It is taken along that one, whose digits are the finer ones.
inline JWRawPoint crossingOf(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint& p,
                             const JWRawPoint& q) {
    const JWRawPoint *a0 = &a, *a1 = &b, *p0 = &p, *p1 = &q;
    if (b < a) std::swap(a0, a1);
    if (q < p) std::swap(p0, p1);
    const double ofA = std::fabs(a1->x - a0->x) + std::fabs(a1->y - a0->y);
    const double ofP = std::fabs(p1->x - p0->x) + std::fabs(p1->y - p0->y);
    if (ofP < ofA) {
        std::swap(a0, p0);
        std::swap(a1, p1);
    }
    const double t = crossingShare(*a0, *a1, *p0, *p1);
    const double x = a0->x + t * (a1->x - a0->x), y = a0->y + t * (a1->y - a0->y);
    return {std::clamp(x, std::min(a0->x, a1->x), std::max(a0->x, a1->x)),
            std::clamp(y, std::min(a0->y, a1->y), std::max(a0->y, a1->y))};
}

}  // namespace jws::detail

#endif  // JW_FOUNDATION_SEGMENT_CROSSING_H
