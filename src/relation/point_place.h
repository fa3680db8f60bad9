// SPDX-License-Identifier: MIT
//
// Where a point lies in a line or polygon: for one point by a walk over the geometry without any
// memory, for many by an operand that is made once.
#ifndef JW_RELATION_POINT_PLACE_H
#define JW_RELATION_POINT_PLACE_H

#include <cmath>

#include "jw_geometry.h"
#include "relation/relate_operand.h"

namespace jws::detail {

struct PointPlace {
    Location location = kExterior;
    bool onExteriorRing = false;  ///< on an edge of a polygon's ring 0, whatever the location
};

/// The place of a point in a line string. `kExterior` for a line with a coordinate that is not
/// finite, as for an empty one.
PointPlace placeInLine(const JWRawPoint& p, const JWLineString& line);

/// The place of a point in a polygon, by the even-odd rule over all rings.
PointPlace placeInPolygon(const JWRawPoint& p, const JWPolygon& polygon);

/// Products of coordinates of this size are exact as they are; not so for NaN.
inline bool isPlain(const JWRawPoint& p) {
    const auto isPlainSize = [](double size) {
        return size == 0 || (size < 0x1p250 && size > 0x1p-215);
    };
    return isPlainSize(std::fabs(p.x)) && isPlainSize(std::fabs(p.y));
}

/// What one question asks of an operand that was read with the shift its range needs, or without
/// one where that is plain: `p` on the operand's scale.
///
/// Nothing for a point that is farther out than the whole geometry, or not finite. `isFine` says
/// that the point is so near to 0 that a plain operand does not tell it from neighbours: geometry
/// and point then have to be read together (`placeByOperand`).
struct ScaledPoint {
    bool isWithinReach = false;
    bool isFine = false;
    JWRawPoint point{0, 0};
};
ScaledPoint scaledTo(const RelateOperand::Range& range, const JWRawPoint& p);

/// The place of a point by reading geometry and point on one scale.
PointPlace placeByOperand(const JWRawPoint& p, const JWGeometry& geometry);

/// A polygon that is asked for the places of several points; it must stay in place and unchanged.
class PolygonPlaces {
  public:
    explicit PolygonPlaces(const JWPolygon& polygon);
    /// As `placeInPolygon`.
    PointPlace placeOf(const JWRawPoint& p) const;
    /// Tells whether a vertex of a line or ring lies on an edge of the exterior ring.
    bool isAnyOnExteriorRing(const JWPointSequence& vertices) const;

  private:
    const JWPolygon& m_polygon;
    RelateOperand m_area;
    RelateOperand m_exterior;
    RelateOperand::Range m_range;
    bool m_isUsable = false;
};

}  // namespace jws::detail

#endif  // JW_RELATION_POINT_PLACE_H
