// SPDX-License-Identifier: MIT
#include "buffer/buffer_shape.h"

#include <cmath>

namespace jws::detail {
namespace {

constexpr double kHalfPi = 1.5707963267948966;

/// Where a segment heads: the unit vector to its left and that vector's angle.
struct Left {
    double x;
    double y;
    double angle;
};

/// Horizontal and vertical segments have their sides exactly at the distance.
Left leftOf(const Shape& piece) {
    double dx = piece.to.x - piece.from.x;
    double dy = piece.to.y - piece.from.y;
    if (std::isinf(dx) || std::isinf(dy)) {  // ends at opposite ends of the number range
        dx = 0.5 * piece.to.x - 0.5 * piece.from.x;
        dy = 0.5 * piece.to.y - 0.5 * piece.from.y;
    }
    if (dx == 0) return dy > 0 ? Left{-1, 0, 2 * kHalfPi} : Left{1, 0, 0};
    if (dy == 0) return dx > 0 ? Left{0, 1, kHalfPi} : Left{0, -1, -kHalfPi};
    const double a = std::atan(dy / dx);
    if (dx > 0) return {-std::sin(a), std::cos(a), a + kHalfPi};
    return {std::sin(a), -std::cos(a), a - kHalfPi};
}

void writeCircle(const JWRawPoint& center, double radius, const ArcStyle& arcs,
                 JWRawPoint* corners) {
    for (int k = kCircleCorners; k > 0; --k) {
        const double a = arcs.circleAngle(k);
        *corners++ = {center.x + radius * std::cos(a), center.y + radius * std::sin(a)};
    }
}

}  // namespace

ArcStyle::ArcStyle(double circle, int corners, double step)
    : circleStep(circle), capCorners(corners), capStep(step), capTangent(std::tan(0.5 * step)) {
    for (int k = 0; k <= corners; ++k) capTurns[k] = {std::cos(k * step), std::sin(k * step)};
}

const ArcStyle kPlainArcs = {0.174532925199, 11, 0.261799387799};
const ArcStyle kFineArcs = {0, kMostCapCorners, 10.0 * 3.141592653589793 / 180.0};

Capsule::Capsule(const Shape& piece, double distance, const ArcStyle& style)
    : from(piece.from), to(piece.to), radius(std::fabs(distance)), arcs(style) {
    const Left side = leftOf(piece);
    left = {side.x, side.y};
    leftAngle = side.angle;
}

JWRawPoint Capsule::Cap::normal() const {
    const JWRawPoint& n = capsule.left;
    return isAtEnd ? n : JWRawPoint(-n.x, -n.y);
}

double Capsule::Cap::startAngle() const {
    return isAtEnd ? capsule.leftAngle : capsule.leftAngle - 2 * kHalfPi;
}

JWRawPoint Capsule::Cap::unit(int k) const {
    const JWRawPoint n = normal();
    if (k == 0) return n;
    if (k > capsule.arcs.capCorners) return {-n.x, -n.y};
    const JWRawPoint& turn = capsule.arcs.capTurns[k];
    return {n.x * turn.x + n.y * turn.y, n.y * turn.x - n.x * turn.y};
}

JWRawPoint Capsule::Cap::corner(int k) const {
    const JWRawPoint &c = center(), u = unit(k);
    return {c.x + capsule.radius * u.x, c.y + capsule.radius * u.y};
}

void writeCorners(const Shape& piece, double distance, const ArcStyle& arcs, JWRawPoint* corners) {
    if (piece.isCircle()) return writeCircle(piece.from, std::fabs(distance), arcs, corners);
    const Capsule capsule(piece, distance, arcs);
    const int last = arcs.capCorners + 1;
    *corners++ = capsule.capAtStart().corner(last);
    for (int k = 0; k <= last; ++k) *corners++ = capsule.capAtEnd().corner(k);
    for (int k = 0; k < last; ++k) *corners++ = capsule.capAtStart().corner(k);
}

void fillRing(const Shape& piece, double distance, const ArcStyle& arcs, JWRing& ring) {
    std::vector<JWRawPoint>& points = ring.getPointList();
    const int corners = cornerCount(piece, arcs);
    points.clear();
    points.reserve(static_cast<std::size_t>(corners) + 1);
    points.resize(static_cast<std::size_t>(corners));
    writeCorners(piece, distance, arcs, points.data());
    ring.closeRing();
    ring.updateEnvelop();
}

}  // namespace jws::detail
