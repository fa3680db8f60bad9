// SPDX-License-Identifier: MIT
//
// JWFEBufferBasic: buffers with finer arcs, as multipolygons.
#ifndef JW_FEBUFFERBASIC_H
#define JW_FEBUFFERBASIC_H

#include <vector>

#include "jw_export.h"
#include "jw_geometry.h"

namespace jws {

/// Buffers with half circles in steps of 10 degrees: a capsule has 38 corners, a circle 36. The
/// steps are computed from pi. Everything else is as with `JWGeometryBuffer`, save that results go
/// into a multipolygon.
///
/// The contents of `result` are replaced, envelopes are up to date, outer rings run clockwise and
/// holes counter-clockwise. The answer is 1 for success; for what `JWGeometryBuffer` answers with
/// 0, it is 0 and `result` is empty; an argument that is null and a distance that is not greater
/// than 0, or not finite, leave it as it was.
class JW_API JWFEBufferBasic {
  public:
    JWFEBufferBasic();
    JWFEBufferBasic(const JWFEBufferBasic& other);
    JWFEBufferBasic& operator=(const JWFEBufferBasic& other);
    virtual ~JWFEBufferBasic();

    /// Gives the circle around a point.
    static int pointBuffer(double x, double y, double distance, JWMultiPolygon* result);
    /// Returns the circle around a point as a new ring, owned by the caller; null where the other
    /// form answers 0.
    static JWRing* pointBuffer(const JWPoint* point, double distance);
    /// Unites the capsules of all segments; a line of one point is a circle.
    static int lineStringBuffer(const JWLineString* line, double distance, JWMultiPolygon* result);
    /// The same as a ring set: the lists are replaced by new rings, owned by the caller, and their
    /// flags, 0 for an outer ring and 1 for a hole.
    static int lineStringBuffer(const JWLineString* line, double distance,
                                std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Gives the band along a ring without what the ring encloses.
    static int ringBufferFace(const JWRing* ring, double distance, JWMultiPolygon* result);
    /// Gives the whole band along a ring.
    static int ringBufferEdge(const JWRing* ring, double distance, JWMultiPolygon* result);
    /// Gives a polygon grown by the distance.
    static int polygonBufferFace(const JWPolygon* polygon, double distance, JWMultiPolygon* result);
    /// Unites the circles of all points.
    static int multiPointBuffer(const JWMultiPoint* points, double distance,
                                JWMultiPolygon* result);
    /// Unites the capsules of all segments of all lines.
    static int multiLineStringBuffer(const JWMultiLineString* lines, double distance,
                                     JWMultiPolygon* result);
    /// Unites the grown members.
    static int multiPolygonBufferFace(const JWMultiPolygon* polygons, double distance,
                                      JWMultiPolygon* result);

  protected:
    /// Replaces the points of `ring` by the circle, of radius |distance|. Returns 1; 0 for null.
    static int __pointBuffer(double x, double y, double distance, JWRing* ring);
    /// Replaces the points of `ring` by the capsule, at |distance|. Returns 1; 0 for null, −1 when
    /// memory runs out.
    static int __segmentBuffer(double x1, double y1, double x2, double y2, double distance,
                               JWRing* ring);
};

}  // namespace jws

#endif  // JW_FEBUFFERBASIC_H
