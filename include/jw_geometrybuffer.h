// SPDX-License-Identifier: MIT
//
// JWGeometryBuffer: the area within a distance of a geometry.
#ifndef JW_GEOMETRYBUFFER_H
#define JW_GEOMETRYBUFFER_H

#include <string>
#include <vector>

#include "jw_export.h"
#include "jw_geometry.h"
#include "jw_report.h"

namespace jws {

class JWFeatureLayer;

/// Which part of the buffered area is handed out. Points and lines have one kind only and do not
/// look at it.
enum enumJWBufferType : int {
    /// Of a polygon: the polygon grown by the distance. Of a ring: its band without what the ring
    /// encloses.
    JWBufferFace = 1,
    /// Of a polygon: what the grown polygon has beyond the polygon, outside and in its holes. Of a
    /// ring: the whole band, both sides of the line.
    JWBufferEdge = 2,
};

/// What a buffer of a layer can be told.
struct JWBufferOptions {
    /// Layer units, greater than 0 and finite. With `distanceField` it serves the features whose
    /// field has no value; 0 for none.
    double distance = 0;
    /// Name of a field that holds each feature's own distance; empty for none.
    std::string distanceField;
    enumJWBufferType type = JWBufferFace;
    /// Unites all buffers to one feature without attributes.
    bool dissolve = false;
    /// Features held at a time; 0 or less means all in one block.
    int blockSize = 0;
    /// Threads of the team; 0 or less means one per core. The result is the same for any number.
    int threads = 1;
};

/// Buffers of geometries. All members are static, the class holds no state, and every function may
/// run on any number of threads at once.
///
/// A buffer is the union of two shapes, whose corners depend on nothing but the geometry and the
/// distance d:
/// - a circle around a point: 36 corners 10 degrees apart, clockwise, the first one due east;
/// - a capsule around a segment: 26 corners, clockwise: its left side, a half circle in steps of 15
///   degrees around the second end, the right side, and a half circle around the first end. A
///   segment whose ends are equal is a circle.
///
/// Corners lie on the true buffer's outline and edges inside it: a circle's area is short of pi d^2
/// by 0.5 %, a half circle's by 1.1 %. The steps are stored with twelve decimals, so that the first
/// corner of a circle is off due east by 1.6e-11 d.
///
/// Conventions:
/// - Distances are in layer units. A distance that is not greater than 0, or not finite, is no
///   distance: the answer is 0. Nothing ever shrinks.
/// - A ring set is a list of rings with a list of flags beside it, 0 for an outer ring, 1 for a
///   hole. The per-kind operations replace the contents of the lists by new rings that belong to
///   the caller; a ring that was in a list before is not deleted.
/// - The answer is 1 for success and 0 for: a null argument, an empty geometry, a ring of three
///   points or fewer, a coordinate that is not finite or becomes so, a distance so small that the
///   shape has no area in the coordinates' precision, an empty result, and a failure. Lists that
///   were not left alone are empty then. `JWReport::lastError` tells which.
/// - Nothing throws.
/// - Rings of more than three points that are not closed count as closed by a straight edge.
/// - Rings that are handed out are closed and their envelopes up to date. Rings of a union are
///   simple, do not cross one another and touch at points only.
/// - The `_mp` and `_mp1` forms work with the fixed team of eight threads and give the result of
///   the plain forms bit for bit. Shared out are groups of neighbouring segments and the members of
///   multipolygons; a ring that is grown from its one side (below) is the caller's thread's.
///
/// Cost: O((n + k) log n) for n segments as a rule, k being what meets among the outlines of
/// neighbouring groups of segments; what lies deep inside the buffer is never compared. Rings most
/// of whose segments are longer than 0.15 of the distance, and which nowhere come closer to
/// themselves than 0.01 of it, are grown from their one side. The result is the union of the shapes
/// all the same.
class JW_API JWGeometryBuffer {
  public:
    /// Buffers a point, line string, polygon, multipoint, multi line string or multipolygon; any
    /// other kind, a bare ring included, gives nothing.
    /// \param result  receives a new `JWPolygon` or, for two or more rings, `JWMultiPolygon`, owned
    ///     by the caller, its envelopes up to date; null when there is none
    /// \param type  of polygons and multipolygons; a value that is neither `JWBufferFace` nor
    ///     `JWBufferEdge` gives nothing there
    /// \return 1 when `*result` is not null, otherwise 0
    ///
    /// `POINT (0 0)` at distance 1 is a polygon of 36 corners and the area 3.12566...; for a valid
    /// polygon, the areas of `JWBufferEdge` and of the polygon add up to that of `JWBufferFace`.
    static int geometryBuffer(const JWGeometry* geometry, double distance, JWGeometry** result,
                              enumJWBufferType type);
    /// Same as `geometryBuffer`, on the team.
    static int geometryBuffer_mp(const JWGeometry* geometry, double distance, JWGeometry** result,
                                 enumJWBufferType type);

    /// Gives the circle around a point.
    static int pointBuffer(const JWPoint* point, double distance, std::vector<JWRing*>& rings,
                           std::vector<int>& flags);
    /// Unites the capsules of all segments; a line of one point is a circle.
    static int lineStringBuffer1(const JWLineString* line, double distance,
                                 std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Gives the band along a ring, for `JWBufferFace` without what the ring encloses by the
    /// even-odd rule. Any other value of `type` than the two gives nothing.
    static int ringBuffer(const JWRing* ring, double distance, enumJWBufferType type,
                          std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Gives a polygon grown by the distance. Holes shrink by it, and one that is too narrow for
    /// that disappears; gaps that the band around a concave outline closes off become holes.
    static int polygonBufferFace1(const JWPolygon* polygon, double distance,
                                  std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Gives what `polygonBufferFace1` has beyond the polygon.
    static int polygonBuffer1(const JWPolygon* polygon, double distance,
                              std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Unites the circles of all points. Circles whose rectangles do not meet those of others,
    /// directly or through a chain, are not clipped.
    static int multiPointBuffer2(const JWMultiPoint* points, double distance,
                                 std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Unites the capsules of all segments of all lines; empty members are skipped.
    static int multiLineStringBuffer1(const JWMultiLineString* lines, double distance,
                                      std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Unites the results of `polygonBufferFace1` of all members. Members without an outer ring of
    /// four points are skipped; one with a coordinate that is not finite fails the call.
    static int multiPolygonBufferFace1(const JWMultiPolygon* polygons, double distance,
                                       std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Unites the results of `polygonBuffer1` of all members, as `multiPolygonBufferFace1` does. A
    /// member's band may cover another member.
    static int multiPolygonBuffer1(const JWMultiPolygon* polygons, double distance,
                                   std::vector<JWRing*>& rings, std::vector<int>& flags);

    /// Unites ring sets, each read by the even-odd rule. Rings that are null or without points and
    /// sets without rings are left out. A single set is handed on as it is; of several all rings
    /// come as results of unions do, outer rings clockwise.
    ///
    /// Takes over the rings of the groups: those not handed on are deleted, and both lists of
    /// groups are empty on return. A failure leaves `rings` and `flags` empty.
    /// \param groupFlags  beside each group the flags of its rings; missing ones count as 0
    /// \return 1, or 0 for a null list, no ring at all, an empty result or a failure
    static int reduceUnionRing(std::vector<std::vector<JWRing*>>* groups,
                               std::vector<std::vector<int>>* groupFlags,
                               std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `reduceUnionRing`. Both split the sets into clusters first, in which the rectangles
    /// of neighbours meet, borders included, directly or through a chain.
    static int reduceUnionRing2(std::vector<std::vector<JWRing*>>& groups,
                                std::vector<std::vector<int>>& groupFlags,
                                std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `reduceUnionRing`, on the team.
    static int reduceUnionRing_mp(std::vector<std::vector<JWRing*>>* groups,
                                  std::vector<std::vector<int>>* groupFlags,
                                  std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Makes a geometry of a ring set: of one ring a `JWPolygon`, whatever its flag; of more a
    /// `JWMultiPolygon`, one polygon for each outer ring, in order. A hole goes to the first outer
    /// ring that its first vertex lies strictly inside; a hole that lies in none is dropped.
    ///
    /// Takes the rings over; both lists are empty on return. Null rings and rings without points
    /// do not count.
    /// \param result  receives a new geometry, owned by the caller; null when there is no ring
    /// \return 1, or 0 for a null `result`, no ring or a failure
    static int polygonizeRing(std::vector<JWRing*>& rings, std::vector<int>& flags,
                              JWGeometry** result);

    /// Buffers each feature of a layer; an addition to the fixed names. Buffers are polygons and
    /// multipolygons with the attributes of their features, in the order of the layer, or united to
    /// one feature. `out` must have no fields.
    ///
    /// A distance that is not greater than 0 and finite is an error; where it comes from a field it
    /// has the feature rejected, and so do no value where no distance serves for it, a bag, a
    /// coordinate that is not finite and a buffer that is empty. Features without a geometry are
    /// passed over. `report` accounts for every feature and may be null. Buffers that are united
    /// are all held in memory; a distance below a few units in the last place of their largest
    /// coordinate is an error then.
    /// \return the number of features written, or −1 a layer or the field is missing, the options
    ///     make no sense, a layer cannot be read to its end or written, or the run was stopped; −3
    ///     the output has fields already; the last error says which
    static int bufferLayer(JWFeatureLayer* in, JWFeatureLayer* out, const JWBufferOptions& options,
                           JWLayerReport* report);

    /// \name Compatibility names
    /// @{

    /// Same as `lineStringBuffer1`.
    static int lineStringBuffer(const JWLineString* line, double distance,
                                std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `lineStringBuffer1`, on the team.
    static int lineStringBuffer_mp(const JWLineString* line, double distance,
                                   std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `lineStringBuffer1`, on the team.
    static int lineStringBuffer_mp1(const JWLineString* line, double distance,
                                    std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `ringBuffer`, on the team.
    static int ringBuffer_mp(const JWRing* ring, double distance, enumJWBufferType type,
                             std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `polygonBuffer1`.
    static int polygonBuffer(const JWPolygon* polygon, double distance, std::vector<JWRing*>& rings,
                             std::vector<int>& flags);
    /// Same as `polygonBuffer1`, on the team.
    static int polygonBuffer_mp(const JWPolygon* polygon, double distance,
                                std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `polygonBuffer1`, on the team.
    static int polygonBuffer_mp1(const JWPolygon* polygon, double distance,
                                 std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `polygonBufferFace1`.
    static int polygonBufferFace(const JWPolygon* polygon, double distance,
                                 std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `polygonBufferFace1`, on the team.
    static int polygonBufferFace_mp1(const JWPolygon* polygon, double distance,
                                     std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `multiPointBuffer2`.
    static int multiPointBuffer(const JWMultiPoint* points, double distance,
                                std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `multiPointBuffer2`.
    static int multiPointBuffer1(const JWMultiPoint* points, double distance,
                                 std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `multiPointBuffer2`, on the team.
    static int multiPointBuffer_mp(const JWMultiPoint* points, double distance,
                                   std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `multiPointBuffer2`, on the team.
    static int multiPointBuffer_mp1(const JWMultiPoint* points, double distance,
                                    std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `multiLineStringBuffer1`.
    static int multiLineStringBuffer(const JWMultiLineString* lines, double distance,
                                     std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `multiLineStringBuffer1`.
    static int multiLineStringBuffer2(const JWMultiLineString* lines, double distance,
                                      std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `multiLineStringBuffer1`, on the team.
    static int multiLineStringBuffer_mp(const JWMultiLineString* lines, double distance,
                                        std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `multiLineStringBuffer1`, on the team.
    static int multiLineStringBuffer_mp1(const JWMultiLineString* lines, double distance,
                                         std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `multiPolygonBuffer1`.
    static int multiPolygonBuffer(const JWMultiPolygon* polygons, double distance,
                                  std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `multiPolygonBuffer1`, on the team.
    static int multiPolygonBuffer_mp(const JWMultiPolygon* polygons, double distance,
                                     std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `multiPolygonBuffer1`, on the team.
    static int multiPolygonBuffer_mp1(const JWMultiPolygon* polygons, double distance,
                                      std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `multiPolygonBufferFace1`, on the team.
    static int multiPolygonBufferFace_mp1(const JWMultiPolygon* polygons, double distance,
                                          std::vector<JWRing*>& rings, std::vector<int>& flags);
    /// Same as `polygonizeRing`.
    static int polygonizeRing_mp(std::vector<JWRing*>& rings, std::vector<int>& flags,
                                 JWGeometry** result);
    /// @}

  private:
    static int __pointBuffer(double x, double y, double distance, JWRing* ring);
    static int __segmentBuffer(double x1, double y1, double x2, double y2, double distance,
                               JWRing* ring);
    static int __ringBuffer(const JWRing* ring, double distance, std::vector<JWRing*>& rings,
                            std::vector<int>& flags);
    static int __ringBufferface(const JWRing* ring, double distance, std::vector<JWRing*>& rings,
                                std::vector<int>& flags);
};

}  // namespace jws

#endif  // JW_GEOMETRYBUFFER_H
