// SPDX-License-Identifier: MIT
//
// Places strictly between the ends of a segment at which something meets it, and their exact order.
//
// A place is a vertex of the other geometry that lies on the segment, or the point in which another
// segment crosses it, which in general no double holds. Its parameter along the segment is computed
// with a bound on the error; where two parameters are too close to tell, vertices are compared by
// their coordinates, a vertex with a crossing by the side of the crossing segment on which it lies,
// and two crossings as fractions without rounding.
#ifndef JW_RELATION_SEGMENT_CUT_H
#define JW_RELATION_SEGMENT_CUT_H

#include "jw_envelop.h"

namespace jws::detail {

struct SegmentCut {
    double t = 0;      ///< parameter from 0 at a to 1 at b
    double error = 0;  ///< bound on the error of t
    /// The segment of the other geometry, from point 0 to point 1.
    const JWRawPoint* other = nullptr;
    /// The vertex on the segment; null for a crossing in the middle of both.
    const JWRawPoint* vertex = nullptr;
};

/// The place of a vertex that lies on the segment ab.
SegmentCut vertexCut(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint* other,
                     const JWRawPoint* vertex);

/// The place where the segment from `other[0]` to `other[1]` crosses ab properly.
SegmentCut crossingCut(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint* other);

/// −1 when x comes before y on the way from a to b, 0 when they are one place, 1 otherwise.
int compareCuts(const JWRawPoint& a, const JWRawPoint& b, const SegmentCut& x, const SegmentCut& y);

}  // namespace jws::detail

#endif  // JW_RELATION_SEGMENT_CUT_H
