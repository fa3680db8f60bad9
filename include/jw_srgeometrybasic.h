// SPDX-License-Identifier: MIT
//
// JWSRGeometryBasic: integer-coded containment tests against rectangles and rings, and the closest
// point on a segment or line.
#ifndef JW_SRGEOMETRYBASIC_H
#define JW_SRGEOMETRYBASIC_H

#include "jw_export.h"
#include "jw_geometry.h"

namespace jws {

/// Static tests that relate points, segments, rectangles and rings; borders count as within.
///
/// Results are 1 for yes, 0 for no, 9999 for a null argument or unusable input. Each function takes
/// references; beside it stands the same with pointers, any of which may be null. No state, nothing
/// throws, every function may run on any number of threads at once. A comparison with a coordinate
/// that is not a number fails: the answer is 0.
class JW_API JWSRGeometryBasic {
  public:
    /// What the tests answer for a null argument or unusable input.
    static constexpr int kNoAnswer = 9999;

    JWSRGeometryBasic();
    JWSRGeometryBasic(const JWSRGeometryBasic& other);
    JWSRGeometryBasic& operator=(const JWSRGeometryBasic& other);
    virtual ~JWSRGeometryBasic();

    /// Tells whether `p` lies in the rectangle or on its border.
    static int isPointWithinEnvelop(const JWRawPoint& p, const JWEnvelop& envelop);
    static int isPointWithinEnvelop(const JWRawPoint* p, const JWEnvelop* envelop);
    /// Tells whether both ends, and so the whole segment, lie in the rectangle or on its border.
    static int isSegmentWithinEnvelop(const JWRawPoint& a, const JWRawPoint& b,
                                      const JWEnvelop& envelop);
    static int isSegmentWithinEnvelop(const JWRawPoint* a, const JWRawPoint* b,
                                      const JWEnvelop* envelop);
    /// Tells whether the minimum and the maximum corner of `inner` lie within `outer`.
    static int isEnvelopWithinEnvelop(const JWEnvelop& inner, const JWEnvelop& outer);
    static int isEnvelopWithinEnvelop(const JWEnvelop* inner, const JWEnvelop* outer);
    /// Tells whether `p` lies inside the ring or on its boundary. 0 outside the ring's stored
    /// envelope, which must be up to date. O(n).
    static int isPointWithinRing(const JWRawPoint& p, const JWRing& ring);
    static int isPointWithinRing(const JWRawPoint* p, const JWRing* ring);
    /// Tells whether every vertex of `inner` lies inside `outer` or on its boundary. Edges are not
    /// tested: an edge of `inner` may leave a concave `outer`. 0 if the stored envelope of `inner`
    /// is not within that of `outer`; 9999 also if either ring has fewer than 4 points.
    /// About O(n + m log n) for n points of `outer` and m of `inner`.
    static int isRingWithinRing(const JWRing* inner, const JWRing* outer);

    /// Returns the distance from `p` to the segment from `a` to `b` and stores the closest point in
    /// `q`. A segment of length 0 is its point.
    static double shortestPointToSegment(const JWRawPoint& p, const JWRawPoint& a,
                                         const JWRawPoint& b, JWRawPoint& q);
    /// The same with pointers; -1.0, and `q` unchanged, if one is null.
    static double shortestPointToSegment(const JWRawPoint* p, const JWRawPoint* a,
                                         const JWRawPoint* b, JWRawPoint* q);
    /// Returns the distance from `p` to the infinite line through `a` and `b` and stores the foot
    /// point in `q`. Both are NaN if `a` equals `b`.
    static double shortestPointToLine(const JWRawPoint& p, const JWRawPoint& a, const JWRawPoint& b,
                                      JWRawPoint& q);
    /// The same with pointers; -1.0, and `q` unchanged, if one is null.
    static double shortestPointToLine(const JWRawPoint* p, const JWRawPoint* a, const JWRawPoint* b,
                                      JWRawPoint* q);
};

}  // namespace jws

#endif  // JW_SRGEOMETRYBASIC_H
