// SPDX-License-Identifier: MIT
#include "relation/segment_cut.h"

#include <cmath>

#include "foundation/expansion.h"
#include "foundation/orientation.h"

namespace jws::detail {
namespace {

using Cross = Expansion<16>;

/// (b − a) × (d − c).
Cross crossProduct(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint& c,
                   const JWRawPoint& d) {
    Cross sum;
    sum.addProduct(exactDifference(b.x, a.x), exactDifference(d.y, c.y));
    sum.addProduct(exactDifference(b.y, a.y), exactDifference(d.x, c.x), -1);
    return sum;
}

/// How far along ab the line of `other` crosses it, as a fraction with a positive denominator.
struct Fraction {
    Fraction(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint* other)
        : numerator(crossProduct(a, other[0], other[0], other[1])),
          denominator(crossProduct(a, b, other[0], other[1])) {
        if (denominator.sign() > 0) return;
        numerator = crossProduct(a, other[0], other[1], other[0]);
        denominator = crossProduct(a, b, other[1], other[0]);
    }
    Cross numerator;
    Cross denominator;
};

int compareCrossings(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint* x,
                     const JWRawPoint* y) {
    const Fraction f(a, b, x), g(a, b, y);
    Expansion<1024> difference;
    difference.addProduct(f.numerator, g.denominator);
    difference.addProduct(g.numerator, f.denominator, -1);
    return difference.sign();
}

/// −1 when the vertex comes before the crossing of ab by `other`.
int compareVertexToCrossing(const JWRawPoint& a, const JWRawPoint& vertex,
                            const JWRawPoint* other) {
    const int side = orientationSign(other[0], other[1], vertex);
    if (side == 0) return 0;
    return side == orientationSign(other[0], other[1], a) ? -1 : 1;
}

int compareVertices(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint& x,
                    const JWRawPoint& y) {
    if (x == y) return 0;
    const bool before = x.x != y.x ? (x.x < y.x) == (a.x < b.x) : (x.y < y.y) == (a.y < b.y);
    return before ? -1 : 1;
}

}  // namespace

SegmentCut vertexCut(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint* other,
                     const JWRawPoint* vertex) {
    const bool alongX = std::fabs(b.x - a.x) >= std::fabs(b.y - a.y);
    const double t = alongX ? (vertex->x - a.x) / (b.x - a.x) : (vertex->y - a.y) / (b.y - a.y);
    return {t, 1e-15, other, vertex};
}

SegmentCut crossingCut(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint* other) {
    const JWRawPoint &c = other[0], &d = other[1];
    const double left = (c.x - a.x) * (d.y - c.y), right = (c.y - a.y) * (d.x - c.x);
    const double down = (b.x - a.x) * (d.y - c.y), up = (b.y - a.y) * (d.x - c.x);
    const double slack = 5e-16;  // of each product; more than the rounding of either determinant
    const double denominator = down - up;
    const double t = (left - right) / denominator;
    const double error = slack * ((std::fabs(left) + std::fabs(right)) +
                                  std::fabs(t) * (std::fabs(down) + std::fabs(up)));
    const double rest = std::fabs(denominator) - slack * (std::fabs(down) + std::fabs(up));
    if (!(rest > 0)) return {0.5, 1, other, nullptr};
    return {t, 1e-15 + 1.01 * error / rest, other, nullptr};
}

int compareCuts(const JWRawPoint& a, const JWRawPoint& b, const SegmentCut& x,
                const SegmentCut& y) {
    const double apart = y.t - x.t;
    if (std::fabs(apart) > x.error + y.error) return apart > 0 ? -1 : 1;
    if (x.vertex != nullptr && y.vertex != nullptr)
        return compareVertices(a, b, *x.vertex, *y.vertex);
    if (x.vertex != nullptr) return compareVertexToCrossing(a, *x.vertex, y.other);
    if (y.vertex != nullptr) return -compareVertexToCrossing(a, *y.vertex, x.other);
    return compareCrossings(a, b, x.other, y.other);
}

}  // namespace jws::detail
