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
Left leftOf(const Piece& piece) {
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

/// The corners of a half circle, clockwise from the angle `start`, its ends left out.
JWRawPoint* writeCap(const JWRawPoint& center, double radius, double start, const ArcStyle& arcs,
                     JWRawPoint* corners) {
    for (int k = 1; k <= arcs.capCorners; ++k) {
        const double a = start - k * arcs.capStep;
        *corners++ = {center.x + radius * std::cos(a), center.y + radius * std::sin(a)};
    }
    return corners;
}

}  // namespace

void writeCorners(const Piece& piece, double distance, const ArcStyle& arcs, JWRawPoint* corners) {
    const double radius = std::fabs(distance);
    if (piece.isCircle()) return writeCircle(piece.from, radius, arcs, corners);
    const Left left = leftOf(piece);
    const double x = radius * left.x;
    const double y = radius * left.y;
    *corners++ = {piece.from.x + x, piece.from.y + y};
    *corners++ = {piece.to.x + x, piece.to.y + y};
    corners = writeCap(piece.to, radius, left.angle, arcs, corners);
    *corners++ = {piece.to.x - x, piece.to.y - y};
    *corners++ = {piece.from.x - x, piece.from.y - y};
    writeCap(piece.from, radius, left.angle - 2 * kHalfPi, arcs, corners);
}

void fillRing(const Piece& piece, double distance, const ArcStyle& arcs, JWRing& ring) {
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
