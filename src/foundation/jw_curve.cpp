// SPDX-License-Identifier: MIT
//
// The straight segment.
#include <cmath>
#include <limits>

#include "foundation/plane_map.h"
#include "foundation/segment_math.h"
#include "jw_geometry_curve.h"

namespace jws {

JWLine::JWLine() { JWLine::setEmpty(); }

bool JWLine::isEmpty() const {
    return std::isnan(fromPoint.x) && std::isnan(fromPoint.y) && std::isnan(toPoint.x) &&
           std::isnan(toPoint.y);
}

JWEnvelop JWLine::getEnvelop() const {
    const JWRawPoint ends[2] = {fromPoint, toPoint};
    return envelopOf(ends, 2);
}

void JWLine::setEmpty() {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    putCoords(nan, nan, nan, nan);
}

void JWLine::move(double dx, double dy) {
    fromPoint.move(dx, dy);
    toPoint.move(dx, dy);
}

void JWLine::scale(const JWRawPoint& center, double sx, double sy) {
    const Scaling map(center, sx, sy);
    putCoords(map(fromPoint), map(toPoint));
}

void JWLine::rotate(const JWRawPoint& center, double angle) {
    const Rotation map(center, angle);
    putCoords(map(fromPoint), map(toPoint));
}

double JWLine::getLength() const {
    return isEmpty() ? 0.0 : detail::pointDistance(fromPoint, toPoint);
}

}  // namespace jws
