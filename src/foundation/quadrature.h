// SPDX-License-Identifier: MIT
//
// Lengths of curves: the integral of the speed by 8-point Gauss–Legendre quadrature, halving an
// interval until it agrees with its halves.
#ifndef JW_FOUNDATION_QUADRATURE_H
#define JW_FOUNDATION_QUADRATURE_H

#include <cmath>

namespace jws::detail {

template <class Speed>
double gauss8(const Speed& speed, double a, double b) {
    static constexpr double nodes[4] = {0.18343464249564980, 0.52553240991632899,
                                        0.79666647741362674, 0.96028985649753623};
    static constexpr double weights[4] = {0.36268378337836198, 0.31370664587788729,
                                          0.22238103445337447, 0.10122853629037626};
    const double middle = 0.5 * (a + b), half = 0.5 * (b - a);
    double sum = 0.0;
    for (int i = 0; i < 4; ++i) {
        sum += weights[i] * (speed(middle - half * nodes[i]) + speed(middle + half * nodes[i]));
    }
    return half * sum;
}

/// Halves [a, b] until whole and halves agree to `tolerance`. A NaN ends at once.
template <class Speed>
double adaptive(const Speed& speed, double a, double b, double whole, double tolerance, int depth) {
    const double middle = 0.5 * (a + b);
    const double left = gauss8(speed, a, middle), right = gauss8(speed, middle, b);
    if (depth == 0 || !(std::fabs(left + right - whole) > tolerance)) return left + right;
    return adaptive(speed, a, middle, left, tolerance, depth - 1) +
           adaptive(speed, middle, b, right, tolerance, depth - 1);
}

/// Integral of `speed` over [0, 1], started on `pieces` equal intervals. `scale` is a length that
/// the rounding of the speed is small against: asking for more than it would halve without end.
template <class Speed>
double integrate(const Speed& speed, int pieces, double scale) {
    double sum = 0.0;
    for (int i = 0; i < pieces; ++i) {
        const double a = double(i) / pieces, b = double(i + 1) / pieces;
        sum += adaptive(speed, a, b, gauss8(speed, a, b), 1e-14 * scale, 24);
    }
    return sum;
}

}  // namespace jws::detail

#endif  // JW_FOUNDATION_QUADRATURE_H
