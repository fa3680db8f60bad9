// SPDX-License-Identifier: MIT
//
// The two shapes that every buffer consists of: the circle around a point and the capsule around a
// segment, as polygons with a fixed number of corners. Both are convex and run clockwise.
#ifndef JW_BUFFER_BUFFER_SHAPE_H
#define JW_BUFFER_BUFFER_SHAPE_H

#include <vector>

#include "jw_geometry.h"

namespace jws::detail {

constexpr int kMostCapCorners = 17;

/// How arcs are drawn. Corners are the same to the last bit wherever a shape is made.
struct ArcStyle {
    ArcStyle(double circle, int corners, double step);

    double circleStep;  ///< radians; 0 for k × 10 degrees converted one by one
    int capCorners;     ///< of a half circle, its ends not counted
    double capStep;     ///< radians
    double capTangent;  ///< of half a step
    /// Unit vectors at the angles k × `capStep`, by which the sides' normals are turned to the
    /// corners of half circles.
    JWRawPoint capTurns[kMostCapCorners + 1];

    /// The angle of corner k of a circle.
    double circleAngle(int k) const {
        constexpr double pi = 3.141592653589793;
        return circleStep != 0 ? k * circleStep : k * 10.0 * pi / 180.0;
    }
    int capsuleCorners() const { return 4 + 2 * capCorners; }
};

/// Steps of 10 and 15 degrees, with twelve decimals.
extern const ArcStyle kPlainArcs;
/// Steps of 10 degrees throughout.
extern const ArcStyle kFineArcs;

constexpr int kCircleCorners = 36;

/// One shape: a circle when both ends are equal, otherwise a capsule.
struct Shape {
    JWRawPoint from;
    JWRawPoint to;

    bool isCircle() const { return from == to; }
};

inline int cornerCount(const Shape& piece, const ArcStyle& arcs) {
    return piece.isCircle() ? kCircleCorners : arcs.capsuleCorners();
}

/// Whether shapes can be reasoned about in doubles: the distance is well above the coordinates'
/// precision, and squares neither overflow nor underflow.
inline bool isAmple(double distance, double largestCoordinate) {
    constexpr double precision = 1e-8;
    return distance > precision * largestCoordinate && distance > 1e-100 &&
           largestCoordinate < 1e100;
}

/// Whether a shape is lost among coordinates of this size, which are no finer than that.
inline bool isTooSmall(double distance, double largestCoordinate) {
    return distance < 4 * 2.220446049250313e-16 * largestCoordinate;
}

/// A capsule, its corners one by one.
struct Capsule {
    Capsule(const Shape& piece, double distance, const ArcStyle& style);

    /// The half circle around an end, clockwise.
    struct Cap {
        const Capsule& capsule;
        bool isAtEnd;  ///< around `to`, from the left side to the right one; or around `from`

        const JWRawPoint& center() const { return isAtEnd ? capsule.to : capsule.from; }
        /// The unit vector to corner 0.
        JWRawPoint normal() const;
        /// The angle of corner 0.
        double startAngle() const;
        /// The unit vector to corner k.
        JWRawPoint unit(int k) const;
        /// Corner 0 ends one side, corner `capCorners` + 1 begins the other.
        JWRawPoint corner(int k) const;
    };
    Cap capAtEnd() const { return {*this, true}; }
    Cap capAtStart() const { return {*this, false}; }

    JWRawPoint from;
    JWRawPoint to;
    JWRawPoint left;  ///< unit vector
    double leftAngle;
    double radius;
    const ArcStyle& arcs;
};

/// Writes the corners of a shape of radius |distance| to `corners`, which has room for
/// `cornerCount` of them.
void writeCorners(const Shape& piece, double distance, const ArcStyle& arcs, JWRawPoint* corners);

/// Replaces the points of a ring by a shape; closed, its envelope up to date.
void fillRing(const Shape& piece, double distance, const ArcStyle& arcs, JWRing& ring);

}  // namespace jws::detail

#endif  // JW_BUFFER_BUFFER_SHAPE_H
