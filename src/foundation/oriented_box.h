// SPDX-License-Identifier: MIT
//
// OrientedBox: a rectangle along the longest edge of a run of points, and the test that two of them
// are apart.
//
// Bundles of long, nearly parallel edges (hatching, spikes) have upright rectangles that all
// overlap although nothing meets. Rectangles along the edges tell them apart.
//
// The test is used to leave out pairs of segments for which `intersectSegments` could only answer
// that they do not meet, rounding included, so it wants a gap well above the rounding. Why the gap
// below is enough, for segments of size up to L and relative error e: an answer of "one point" puts
// a point of each within about e*L of the other's line. If these two points are r apart, the angle
// of the segments is at most about e*L/r, so both lie in a tube of width e*L*L/r. For r above
// sqrt(e)*L the tube is narrower than r: then the segments either overlap along the tube, and are
// closer than its width in every direction, or their upright rectangles are apart, which
// `intersectSegments` checks itself. So no answer but "apart" is left at a gap of some sqrt(e)*L,
// about 6e-8*L with the constants; the test wants 1e-6*L. Where squares or products could underflow
// or overflow it never says "apart".
#ifndef JW_FOUNDATION_ORIENTED_BOX_H
#define JW_FOUNDATION_ORIENTED_BOX_H

#include <algorithm>
#include <cmath>
#include <limits>

#include "jw_envelop.h"

namespace jws::detail {

struct OrientedBox {
    double cx, cy;              ///< centre, relative to the origin
    double ux, uy;              ///< unit vector along the box
    double halfLong, halfWide;  ///< half the size along u and across

    /// The box around the `count` points from `points` on, relative to `origin`.
    static OrientedBox around(const JWRawPoint* points, int count, const JWRawPoint& origin) {
        OrientedBox box{0, 0, 1, 0, 0, 0};
        double longest = 0;
        bool tiny = false;
        for (int i = 0; i + 1 < count; ++i) {
            const double dx = points[i + 1].x - points[i].x;
            const double dy = points[i + 1].y - points[i].y;
            const double size = std::max(std::fabs(dx), std::fabs(dy));
            tiny |= size > 0 && size < 1e-120;
            if (!(size > longest)) continue;
            longest = size;
            box.ux = dx / size;
            box.uy = dy / size;
        }
        const double norm = std::sqrt(box.ux * box.ux + box.uy * box.uy);
        box.ux /= norm;
        box.uy /= norm;
        box.fit(points, count, origin);
        if (tiny) box.halfLong = std::numeric_limits<double>::infinity();
        return box;
    }

    /// The boxes are apart by a clear gap. `extent` bounds the coordinates relative to the origin.
    bool clearlyApart(const OrientedBox& o, double extent) const {
        const double dx = o.cx - cx, dy = o.cy - cy;
        const double size =
            std::fabs(dx) + std::fabs(dy) + halfLong + halfWide + o.halfLong + o.halfWide;
        if (!(size > 1e-100 && extent < 1e150)) return false;
        const double gap = 1e-6 * size + 1e-13 * extent;
        const double c = std::fabs(ux * o.ux + uy * o.uy);
        const double s = std::fabs(ux * o.uy - uy * o.ux);
        return std::fabs(dx * ux + dy * uy) > halfLong + o.halfLong * c + o.halfWide * s + gap ||
               std::fabs(dy * ux - dx * uy) > halfWide + o.halfLong * s + o.halfWide * c + gap ||
               std::fabs(dx * o.ux + dy * o.uy) > o.halfLong + halfLong * c + halfWide * s + gap ||
               std::fabs(dy * o.ux - dx * o.uy) > o.halfWide + halfLong * s + halfWide * c + gap;
    }

  private:
    void fit(const JWRawPoint* points, int count, const JWRawPoint& origin) {
        constexpr double kInfinity = std::numeric_limits<double>::infinity();
        double minLong = kInfinity, maxLong = -kInfinity;
        double minWide = kInfinity, maxWide = -kInfinity;
        for (int i = 0; i < count; ++i) {
            const double x = points[i].x - origin.x, y = points[i].y - origin.y;
            const double along = x * ux + y * uy, across = y * ux - x * uy;
            if (along < minLong) minLong = along;
            if (along > maxLong) maxLong = along;
            if (across < minWide) minWide = across;
            if (across > maxWide) maxWide = across;
        }
        const double middleLong = (minLong + maxLong) / 2, middleWide = (minWide + maxWide) / 2;
        cx = middleLong * ux - middleWide * uy;
        cy = middleLong * uy + middleWide * ux;
        halfLong = (maxLong - minLong) / 2;
        halfWide = (maxWide - minWide) / 2;
    }
};

}  // namespace jws::detail

#endif  // JW_FOUNDATION_ORIENTED_BOX_H
