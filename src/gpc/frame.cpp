// SPDX-License-Identifier: MIT
//
// The scale of a call.
//
// Crossings are rounded to the last place of the largest coordinate, for x and for y. To that end
// the axis of smaller magnitude is scaled up by a power of two, which changes no sign and no
// digit. Magnitudes far from one are brought near it as well, lest products overflow; and
// coordinates too small for exact products of three differences count as 0: that is far below the
// last place of the largest.
#include "gpc/frame.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace jws::gpc {
namespace {

/// Differences of larger numbers are multiples of 2^-352, products of three of 2^-1056.
constexpr double kLeast = 0x1p-300;

int exponentOf(double low, double high) {
    int exponent = 0;
    std::frexp(std::fmax(std::fabs(low), std::fabs(high)), &exponent);
    return exponent;
}

void fit(double up[2], double down[2], int shift) {
    up[0] = std::ldexp(1.0, shift / 2);
    up[1] = std::ldexp(1.0, shift - shift / 2);
    down[0] = std::ldexp(1.0, -(shift / 2));
    down[1] = std::ldexp(1.0, -(shift - shift / 2));
}

}  // namespace

Frame::Frame(const Box& box) {
    const int x = exponentOf(box.minX, box.maxX);
    const int y = exponentOf(box.minY, box.maxY);
    exponent = std::abs(x) < 200 && std::abs(y) < 200 ? std::max(x, y) : 0;
    fit(to.x, from.x, exponent - x);
    fit(to.y, from.y, exponent - y);
    to.least = kLeast;
    aspect = std::ldexp(1.0, std::clamp(x - y, -1000, 1000));
}

}  // namespace jws::gpc
