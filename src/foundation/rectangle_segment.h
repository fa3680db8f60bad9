// SPDX-License-Identifier: MIT
//
// A segment and an axis-parallel rectangle, exactly: both are convex, so they meet unless an axis
// separates them, which is x, y, or the normal of the segment.
#ifndef JW_FOUNDATION_RECTANGLE_SEGMENT_H
#define JW_FOUNDATION_RECTANGLE_SEGMENT_H

#include <algorithm>

#include "foundation/orientation.h"

namespace jws::detail {

/// How the corners lie to the line from a to b.
struct CornerSides {
    CornerSides(const JWRawPoint& a, const JWRawPoint& b, const JWEnvelop& r) {
        const JWRawPoint corners[] = {r.bottom_left(), r.bottom_right(), r.top_left(),
                                      r.top_right()};
        for (const JWRawPoint& corner : corners) {
            const int sign = orientationSign(a, b, corner);
            left += sign > 0;
            right += sign < 0;
        }
    }
    int left = 0;
    int right = 0;
};

/// True when the segment ab and the rectangle, both closed, have a point in common.
inline bool segmentMeetsRectangle(const JWRawPoint& a, const JWRawPoint& b, const JWEnvelop& r) {
    if (std::max(a.x, b.x) < r.minX || std::min(a.x, b.x) > r.maxX || std::max(a.y, b.y) < r.minY ||
        std::min(a.y, b.y) > r.maxY) {
        return false;
    }
    if (r.contains(a) || r.contains(b)) return true;
    const CornerSides sides(a, b, r);
    return sides.left < 4 && sides.right < 4;
}

}  // namespace jws::detail

#endif  // JW_FOUNDATION_RECTANGLE_SEGMENT_H
