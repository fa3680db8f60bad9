// SPDX-License-Identifier: MIT
#ifndef JW_ANALYSIS_NEAREST_AREA_DISTANCE_H
#define JW_ANALYSIS_NEAREST_AREA_DISTANCE_H

#include <memory>
#include <vector>

#include "analysis/nearest/segment_lists.h"
#include "foundation/ring_position.h"
#include "jw_geometry.h"

namespace jws::detail {

/// Distances to one ring, which must stay in place and unchanged.
class RingDistance {
  public:
    /// `prepare` builds trees: for many questions.
    RingDistance(const JWRing& ring, bool prepare);

    /// On the boundary, without tolerance.
    bool isOn(const JWRawPoint& p) const;
    /// Strictly inside by the crossing number.
    bool isWithin(const JWRawPoint& p) const;
    /// From a point: 0 on the boundary, otherwise to the last of the nearest edges.
    LastLeast fromPoint(const JWRawPoint& p, double limit) const;
    /// From a segment to the first of the nearest edges.
    LastLeast fromSegment(const JWRawPoint& a, const JWRawPoint& b, double limit) const;

  private:
    struct Prepared {
        RingLocator locator;
        SegmentTree edges;
    };

    template <class Measure>
    LastLeast nearestEdge(const JWEnvelop& box, double limit, OfEqual keeps,
                          const Measure& measure) const;

    const JWRawPoint* m_points;
    int m_count;
    JWEnvelop m_envelop;
    std::unique_ptr<const Prepared> m_prepared;
};

/// Distances to a polygon as an area: 0 on the boundary and inside, to the nearer of a hole's and
/// the exterior ring from inside a hole.
///
/// All answers are those up to `limit`: where the distance is larger there may be none. There is
/// none either for a polygon without edges.
class AreaDistance {
  public:
    AreaDistance(const JWPolygon& polygon, bool prepare);

    LastLeast fromPoint(const JWRawPoint& p, double limit) const;
    /// `zero` is the answer where the distance is 0 by position alone.
    LastLeast fromSegment(const JWRawPoint& a, const JWRawPoint& b, double limit,
                          const Closest& zero) const;

  private:
    template <class IsOn, class IsInHole, class IsInside, class Measure>
    LastLeast from(const Closest& zero, const IsOn& isOn, const IsInHole& isInHole,
                   const IsInside& isInside, const Measure& measure) const;

    std::vector<RingDistance> m_rings;
};

}  // namespace jws::detail

#endif  // JW_ANALYSIS_NEAREST_AREA_DISTANCE_H
