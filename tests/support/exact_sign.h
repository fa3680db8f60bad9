// SPDX-License-Identifier: MIT
//
// On which side of a line a point lies, decided exactly for any finite doubles: the judge of the
// judge. Nothing here is shared with the engine.
//
// First in long double, whose exponents neither overflow nor underflow here, with an error bound.
// Where that does not tell, the determinant is summed without rounding: the product of two doubles
// is exact in 113 bits, and six of them are added as a sum of non-overlapping parts (Shewchuk,
// Adaptive Precision Floating-Point Arithmetic, 1997), whose sign is that of the largest part.
#ifndef JW_TESTS_SUPPORT_EXACT_SIGN_H
#define JW_TESTS_SUPPORT_EXACT_SIGN_H

#include <cfloat>
#include <cmath>

#include "jw_envelop.h"

namespace jwtest {

static_assert(LDBL_MANT_DIG >= 64 && LDBL_MAX_EXP >= 16384, "the filter needs a wide long double");

#if LDBL_MANT_DIG >= 113
using Quad = long double;
#else
__extension__ typedef __float128 Quad;
#endif

namespace detail {

/// The sign of the exact sum of the six values; each has at most 106 bits.
inline int signOfSum(const Quad (&values)[6]) {
    Quad parts[6];
    int count = 0;
    for (Quad value : values) {
        int kept = 0;
        for (int i = 0; i < count; ++i) {  // adds `value` to the parts, smallest first
            const Quad sum = value + parts[i];
            const Quad back = sum - value;
            const Quad error = (value - (sum - back)) + (parts[i] - back);
            if (error != 0) parts[kept++] = error;
            value = sum;
        }
        parts[kept++] = value;
        count = kept;
    }
    const Quad largest = parts[count - 1];
    return (largest > 0) - (largest < 0);
}

}  // namespace detail

/// 1 if p, q, r turn to the left, -1 if to the right, 0 if they lie on one line.
inline int turnOf(const jws::JWRawPoint& p, const jws::JWRawPoint& q, const jws::JWRawPoint& r) {
    const long double px = p.x, py = p.y;
    const long double left = (q.x - px) * (r.y - py);
    const long double right = (q.y - py) * (r.x - px);
    const long double turn = left - right;
    if (std::fabs(turn) > (std::fabs(left) + std::fabs(right)) * 0x1p-60L) {
        return (turn > 0) - (turn < 0);
    }
    const auto product = [](double a, double b) { return static_cast<Quad>(a) * b; };
    return detail::signOfSum({product(p.x, q.y), -product(p.y, q.x), product(q.x, r.y),
                              -product(q.y, r.x), product(r.x, p.y), -product(r.y, p.x)});
}

}  // namespace jwtest

#endif  // JW_TESTS_SUPPORT_EXACT_SIGN_H
