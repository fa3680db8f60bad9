// SPDX-License-Identifier: MIT
//
// Rings as plain lists of corners, and a few shapes that are the same every time.
#ifndef JW_TESTS_SUPPORT_RINGS_H
#define JW_TESTS_SUPPORT_RINGS_H

#include <cstddef>
#include <vector>

#include "jw_envelop.h"

namespace jwtest {

using Ring = std::vector<jws::JWRawPoint>;  // without the closing point
using Rings = std::vector<Ring>;            // read by the even-odd rule

/// Two operands.
struct RingPair {
    Rings a, b;
};

inline Ring rectangle(double x0, double y0, double x1, double y1) {
    return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}

/// A square on its corner, `reach` from the middle to each.
inline Ring diamond(double x, double y, double reach) {
    return {{x - reach, y}, {x, y - reach}, {x + reach, y}, {x, y + reach}};
}

/// The black fields of a board of side x side unit squares, its corner at (offset, offset).
inline Rings chessboard(int side, double offset) {
    Rings fields;
    for (int i = 0; i < side; ++i) {
        for (int k = i % 2; k < side; k += 2) {
            fields.push_back(rectangle(i + offset, k + offset, i + 1 + offset, k + 1 + offset));
        }
    }
    return fields;
}

/// A comb: a back of depth `back` below y = 0 and a tooth of width 1 every 2 units, as high as
/// `height(i)` says for tooth i.
template <class Height>
Ring comb(int teeth, double offset, double back, Height height) {
    Ring ring;
    for (int i = 0; i < teeth; ++i) {
        const double x = 2.0 * i + offset;
        const double h = height(i);
        for (const jws::JWRawPoint p : {jws::JWRawPoint(x, 0), jws::JWRawPoint(x, h),
                                        jws::JWRawPoint(x + 1, h), jws::JWRawPoint(x + 1, 0)}) {
            ring.push_back(p);
        }
    }
    ring.emplace_back(2.0 * teeth + offset, 0);
    ring.emplace_back(2.0 * teeth + offset, -back);
    ring.emplace_back(offset, -back);
    return ring;
}

inline std::size_t verticesOf(const Rings& rings) {
    std::size_t count = 0;
    for (const Ring& ring : rings) count += ring.size();
    return count;
}

/// The rings with `change(p)` in place of every point p.
template <class Change>
Rings mapped(Rings rings, Change change) {
    for (Ring& ring : rings) {
        for (jws::JWRawPoint& p : ring) p = change(p);
    }
    return rings;
}

/// Twice the signed area is the sum over the ring's triangles at its first point.
inline double signedArea(const Ring& ring) {
    long double sum = 0;
    for (std::size_t i = 1; i + 1 < ring.size(); ++i) {
        const long double ax = static_cast<long double>(ring[i].x) - ring[0].x;
        const long double ay = static_cast<long double>(ring[i].y) - ring[0].y;
        const long double bx = static_cast<long double>(ring[i + 1].x) - ring[0].x;
        const long double by = static_cast<long double>(ring[i + 1].y) - ring[0].y;
        sum += ax * by - ay * bx;
    }
    return static_cast<double>(sum / 2);
}

/// The sum of the signed areas, which is the area where holes run clockwise.
inline double signedArea(const Rings& rings) {
    double sum = 0;
    for (const Ring& ring : rings) sum += signedArea(ring);
    return sum;
}

}  // namespace jwtest

#endif  // JW_TESTS_SUPPORT_RINGS_H
