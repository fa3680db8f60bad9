// SPDX-License-Identifier: MIT
//
// JWGeometryClip: lines, polygons and points cut by lines and areas; features, feature classes and
// layers clipped.
#ifndef JW_GEOMETRYCLIP_H
#define JW_GEOMETRYCLIP_H

#include <vector>

#include "jw_export.h"
#include "jw_geometry.h"
#include "jw_report.h"

namespace jws {

class JWFeature;
class JWFeatureClass;
class JWFeatureLayer;

/// What a clip of a layer can be told. The defaults keep what lies inside.
struct JWClipOptions {
    /// Keeps what lies outside of the cutting area instead.
    bool outside = false;
    /// Features held at a time; 0 or less means all in one block.
    int blockSize = 0;
    /// Threads of the team; 0 or less means one per core. The result is the same for any number.
    int threads = 1;
};

/// Clipping. All members are static, the class holds no state, and every function may run on any
/// number of threads at once.
///
/// Conventions:
/// - The answer is the number of pieces (of areas cut by lines, of their rings; of features and
///   layers, 1) for success and 0 for: a null argument, an empty geometry, a coordinate that is not
///   finite, a cutter that has no edge (rings of fewer than four points, lines of no length),
///   operands that `checkWeird` rejects, an empty result, and a failure. Nothing is added then, and
///   `JWReport::lastError` tells why. Nothing throws, and nothing is printed but what a team has to
///   say about its threads.
/// - Pieces are new objects and belong to the caller. They are appended; what the lists held
///   before stays. Their envelopes are up to date. Vertices keep their bits, only points where
///   boundaries cross are rounded; pieces that follow one another share their end point bit for
///   bit.
/// - Areas are read by the even-odd rule over all their rings, whatever their direction, order or
///   self-crossing. Rings that are not closed count as closed by a straight edge; rings of fewer
///   than four stored points are passed over.
/// - The boundary belongs to the area. A stretch of a line that runs along it is inside; so is a
///   point on it. One exception: a stretch that the line begins with has the marker of what
///   follows. A line that lies on the boundary altogether is inside.
/// - What lies on either side of a line is decided exactly, without a tolerance. Places that
///   rounding cannot tell apart, within four units in the last place of the coordinates, are one
///   place: two crossings there make no sliver.
/// - `checkWeird` asks for a validation first: `JWCPGeometryBasic::isLineStringWeird` of each line
///   and `isRingWeird` of each ring of both operands; one that is weird rejects the call. The rules
///   of these tests reject every closed ring, every closed line and every line of two points, so
///   that few calls pass; the default way is `false`, which answers for every finite input.
///   Clipping an area by an area does not look at it.
/// - `useRTree` chooses between candidates from a tree over the cutter's edges and the exhaustive
///   comparison of every pair of segments. The pieces are the same bit for bit.
/// - The length of the pieces of a line adds up to that of the line, the area of the pieces of a
///   polygon to that of the polygon, but for the rounding of crossing points.
///
/// Cost for a target of m and a cutter of n segments with k meetings: O(n + (m + k) log n) as a
/// rule with the tree, O(m n) without; polygons cut along lines O((m + n + k) log(m + n)).
class JW_API JWGeometryClip {
  public:
    /// Clips by the kinds of the operands:
    /// - a line string or multi line string by lines or areas: all pieces, those inside an area and
    ///   those outside, each a line string;
    /// - a polygon or multipolygon by an area: what the two have in common, one geometry, from
    ///   `JWGeometryOverlay2::polygonIntersectPolygon`;
    /// - a polygon or multipolygon by lines: the polygons that it is cut into, each a polygon;
    /// - a multipoint by an area: the points inside and the points outside, each a multipoint.
    ///
    /// Any other pair of kinds, rings, single points and bags included, gives no pieces.
    static int geometryClipByGeometry(JWGeometry* target, JWGeometry* cutter,
                                      std::vector<JWGeometry*>& pieces, bool checkWeird,
                                      bool useRTree);
    /// The same with a marker for each piece: 1 inside, 0 outside. What lines cut is inside.
    static int geometryClipByGeometry(JWGeometry* target, JWGeometry* cutter,
                                      std::vector<JWGeometry*>& pieces,
                                      std::vector<unsigned int>& inside, bool checkWeird,
                                      bool useRTree);

    /// @name Lines by areas
    /// Cut a line wherever it meets the boundary: where it goes in or out, and where it touches,
    /// from inside or outside; where it runs along, at both ends of that stretch and not at the
    /// ring's vertices in between. The line's own ends are not cut. Pieces are in the order of the
    /// line; `inside` receives for each of them 1 when it lies inside, 0 outside. A line that the
    /// area does not reach is one piece outside; one of no length is one piece, which lies where
    /// its point does.
    ///
    /// `LINESTRING (-5 5, 15 5)` by the square from 0 to 10: three pieces, marked 0, 1, 0;
    /// `LINESTRING (-5 5, 5 -5)`, through a corner from outside: two pieces, marked 0, 0.
    /// @{
    static int lineStringClipByRing(JWLineString* line, JWRing* ring,
                                    std::vector<JWLineString*>& pieces,
                                    std::vector<unsigned int>& inside, bool checkWeird);
    /// Does the same by comparing every pair of segments.
    static int lineStringClipByRingWithOutRTree(const JWLineString* line, JWRing* ring,
                                                std::vector<JWLineString*>& pieces,
                                                std::vector<unsigned int>& inside, bool checkWeird);
    /// Chooses between the two.
    static int lineStringClipByRing1(JWLineString* line, JWRing* ring,
                                     std::vector<JWLineString*>& pieces,
                                     std::vector<unsigned int>& inside, bool checkWeird,
                                     bool useRTree);
    static int lineStringClipByPolygon(JWLineString* line, JWPolygon* polygon,
                                       std::vector<JWLineString*>& pieces,
                                       std::vector<unsigned int>& inside, bool checkWeird,
                                       bool useRTree);
    /// By all rings of all members together, even-odd: where two members overlap is outside.
    static int lineStringClipByMultiPolygon(JWLineString* line, JWMultiPolygon* polygons,
                                            std::vector<JWLineString*>& pieces,
                                            std::vector<unsigned int>& inside, bool checkWeird,
                                            bool useRTree);
    /// Member by member.
    static int multiLineStringClipByPolygon(JWMultiLineString* lines, JWPolygon* polygon,
                                            std::vector<JWLineString*>& pieces,
                                            std::vector<unsigned int>& inside, bool checkWeird,
                                            bool useRTree);
    static int multiLineStringClipByMultiPolygon(JWMultiLineString* lines, JWMultiPolygon* polygons,
                                                 std::vector<JWLineString*>& pieces,
                                                 std::vector<unsigned int>& inside, bool checkWeird,
                                                 bool useRTree);
    /// @}

    /// @name Lines by lines
    /// Cut a line wherever the cutter crosses it or touches it between its ends; where the two run
    /// together, at the ends of each stretch that they share. Pieces are in the order of the line;
    /// a line that meets nothing is one piece. A line does not cut itself.
    ///
    /// `LINESTRING (0 0, 10 0)` by `LINESTRING (4 0, 4 5, 6 5, 6 -5)`: three pieces.
    /// @{
    static int lineStringClipByLineString(JWLineString* line, JWLineString* cutter,
                                          std::vector<JWLineString*>& pieces, bool checkWeird);
    /// Does the same by comparing every pair of segments.
    static int lineStringClipByLineStringWithOutRTree(JWLineString* line, JWLineString* cutter,
                                                      std::vector<JWLineString*>& pieces,
                                                      bool checkWeird);
    /// Chooses between the two.
    static int lineStringClipByLineString1(JWLineString* line, JWLineString* cutter,
                                           std::vector<JWLineString*>& pieces, bool checkWeird,
                                           bool useRTree);
    static int lineStringClipByMultiLineString(JWLineString* line, JWMultiLineString* cutter,
                                               std::vector<JWLineString*>& pieces, bool checkWeird,
                                               bool useRTree);
    static int multiLineStringClipBylineString(JWMultiLineString* lines, JWLineString* cutter,
                                               std::vector<JWLineString*>& pieces, bool checkWeird,
                                               bool useRTree);
    static int multiLineStringClipByMultiLineString(JWMultiLineString* lines,
                                                    JWMultiLineString* cutter,
                                                    std::vector<JWLineString*>& pieces,
                                                    bool checkWeird, bool useRTree);
    /// @}

    /// @name Areas by lines
    /// Cut an area into all the faces that its outline and the lines make, with the arrangement of
    /// the clipping engine: lines may cross each other and themselves, run along the outline and
    /// through holes. A part of a line that does not divide, such as an end inside the area or a
    /// tie from the outline to a hole, cuts nothing, though the outline may get a vertex where it
    /// meets it. An area that is not divided is handed out unchanged, ring for ring. Of several
    /// polygons each is cut for itself.
    ///
    /// Each face gives its outer ring (flag 0) and then its holes (flag 1), smaller faces first, so
    /// that `JWGeometryBuffer::polygonizeRing` puts every hole into its own face. Rings of faces
    /// that were cut run counter-clockwise, holes clockwise; they are simple and touch at points
    /// only.
    /// @{

    /// Cuts the area that a ring encloses. Of a face with holes, these follow its outer ring
    /// clockwise, so that the signed areas of the pieces add up.
    static int ringClipByLineString(JWRing* ring, JWLineString* line, std::vector<JWRing*>& pieces,
                                    bool checkWeird);
    static int polygonClipByLineString(JWPolygon* polygon, JWLineString* line,
                                       std::vector<JWRing*>& rings, std::vector<int>& holeFlags,
                                       bool checkWeird);
    /// Same as `polygonClipByLineString`.
    static int polygonClipByLineString1(JWPolygon* polygon, JWLineString* line,
                                        std::vector<JWRing*>& rings, std::vector<int>& holeFlags,
                                        bool checkWeird);
    static int polygonClipByMultiLineString(JWPolygon* polygon, JWMultiLineString* lines,
                                            std::vector<JWRing*>& rings,
                                            std::vector<int>& holeFlags, bool checkWeird);
    static int multiPolygonClipBylineString(JWMultiPolygon* polygons, JWLineString* line,
                                            std::vector<JWRing*>& rings,
                                            std::vector<int>& holeFlags, bool checkWeird);
    static int multiPolygonClipByMultiLineString(JWMultiPolygon* polygons, JWMultiLineString* lines,
                                                 std::vector<JWRing*>& rings,
                                                 std::vector<int>& holeFlags, bool checkWeird);
    /// @}

    /// @name Points by areas
    /// Give the points inside as one multipoint (marker 1), then those outside as another (marker
    /// 0), each in its order and only when it has a point.
    /// @{
    static int multiPointClipByRing(JWMultiPoint* points, JWRing* ring,
                                    std::vector<JWMultiPoint*>& pieces,
                                    std::vector<unsigned int>& inside, bool checkWeird);
    static int multiPointClipByPolygon(JWMultiPoint* points, JWPolygon* polygon,
                                       std::vector<JWMultiPoint*>& pieces,
                                       std::vector<unsigned int>& inside, bool checkWeird);
    static int multiPointClipByMultiPolygon(JWMultiPoint* points, JWMultiPolygon* polygons,
                                            std::vector<JWMultiPoint*>& pieces,
                                            std::vector<unsigned int>& inside, bool checkWeird);
    /// @}

    /// @name Features
    /// Results carry the identifier and the attributes of the feature that they are pieces of, and
    /// share its schema. `out` must be an object of its own.
    /// @{

    /// Makes a feature of each piece that `geometryClipByGeometry` gives for the geometries of two
    /// features. Features whose envelopes have no point in common give none.
    static int featureClipByfeature(JWFeature* target, JWFeature* cutter, JWFeatureClass& out,
                                    bool checkWeird, bool useRTree);
    /// Does so with each target and, for each, each cutter, in their orders. `out` takes the
    /// geometry type and spatial reference of `targets`; what it holds stays. Pairs that give
    /// nothing are passed over; the last error tells of the last that failed. Cost: the sum over
    /// the pairs whose rectangles meet; a cutter is read once, and a large one costs no more than
    /// what of it lies near each target, where areas then cross in the same points but for the last
    /// place.
    static int featureClassClipByfeatureClass(JWFeatureClass& targets, JWFeatureClass& cutters,
                                              JWFeatureClass& out, bool checkWeird, bool useRTree);
    /// Keeps what lies in a rectangle, borders included: points as they are; of multipoints,
    /// polygons and multipolygons what lies inside; of lines a multi line string of the pieces
    /// inside. Bags are clipped member by member. `out` takes the geometry type and spatial
    /// reference of `in`. A rectangle that is not valid or not finite gives 0, and so does one that
    /// nothing lies in. A rectangle without an area holds the points and points of multipoints that
    /// lie on it; of lines and polygons, also of lines along it, it holds nothing.
    static int featureClassClipByEnvelop(JWFeatureClass& in, JWFeatureClass& out,
                                         JWEnvelop& envelope);
    /// Does the same with a layer. `out` must be open for writing; it keeps the spatial reference
    /// that it was created with. Without features it takes the geometry type of `in`, as
    /// `JWFeatureLayer::setGeometryType` does, and it gets the fields of `in` unless it has fields
    /// already, which are then filled by position. Writing is one transaction.
    /// Identifiers are kept as far as `createFeature` can, where `out` had no features before;
    /// otherwise features get fresh ones. Reading moves the cursor of `in`. A feature that could
    /// not be clipped or written is left out and makes the last error.
    static int featureLayerClipByEnvelop(const JWFeatureLayer* in, JWFeatureLayer* out,
                                         JWEnvelop& envelope);
    /// @}

    /// @name Layers
    /// Additions to the fixed names. Each feature of `in` gives at most one result: what of it lies
    /// in the area, or outside of it. Points, lines and areas may be mixed, multi-types stay what
    /// they are; lines become multi line strings, and one of no length lies where its point does. A
    /// stretch along the boundary is inside, also where a line begins. `out` must have no fields;
    /// it gets those of `in`. Features without a geometry are passed over; those with a coordinate
    /// that is not finite are rejected. `report` accounts for every feature and may be null.
    ///
    /// Return values: the number of features written, or −1 a layer is missing, cannot be read to
    /// its end or written, or the run was stopped; −2 the spatial references differ; −3 the output
    /// has fields already. The last error says which.
    /// @{

    /// Clips by the union of all areas of `cutters`. Cutters that are no areas are rejected.
    static int featureLayerClipByLayer(JWFeatureLayer* in, JWFeatureLayer* cutters,
                                       JWFeatureLayer* out, const JWClipOptions& options,
                                       JWLayerReport* report);
    /// Cuts each line and each area of `in` by all lines of `cutters` taken together: into the
    /// pieces that `geometryClipByGeometry` gives, each a feature with the attributes of what it is
    /// a piece of. What no line divides is handed on. Nothing is lost: lengths and areas of the
    /// pieces add up. Points are rejected, and cutters that are no lines; `outside` makes no sense
    /// here (−1). Cost: the tree of the lines once, then what lies near each feature.
    static int featureLayerCutByLayer(JWFeatureLayer* in, JWFeatureLayer* cutters,
                                      JWFeatureLayer* out, const JWClipOptions& options,
                                      JWLayerReport* report);
    /// Clips by a rectangle, which must be valid and finite (−1 otherwise). One without an area
    /// holds the points that lie on it, but nothing of lines and polygons.
    static int featureLayerClipByEnvelop(JWFeatureLayer* in, JWFeatureLayer* out,
                                         const JWEnvelop& envelope, const JWClipOptions& options,
                                         JWLayerReport* report);
    /// @}

    /// @name Forms on a team
    /// Each is the same as the function without `_mp`, on the fixed team of eight threads: points,
    /// the segments of long lines, the members of multi line strings and multipolygons and the
    /// targets of feature classes are shared out. The pieces are the same bit for bit. A single
    /// polygon is cut by the caller's thread.
    /// @{
    static int geometryClipByGeometry_mp(JWGeometry* target, JWGeometry* cutter,
                                         std::vector<JWGeometry*>& pieces, bool checkWeird,
                                         bool useRTree);
    static int geometryClipByGeometry_mp(JWGeometry* target, JWGeometry* cutter,
                                         std::vector<JWGeometry*>& pieces,
                                         std::vector<unsigned int>& inside, bool checkWeird,
                                         bool useRTree);
    static int lineStringClipByRing_mp(JWLineString* line, JWRing* ring,
                                       std::vector<JWLineString*>& pieces,
                                       std::vector<unsigned int>& inside, bool checkWeird);
    static int lineStringClipByRingWithOutRTree_mp(const JWLineString* line, JWRing* ring,
                                                   std::vector<JWLineString*>& pieces,
                                                   std::vector<unsigned int>& inside,
                                                   bool checkWeird);
    static int lineStringClipByRing1_mp(JWLineString* line, JWRing* ring,
                                        std::vector<JWLineString*>& pieces,
                                        std::vector<unsigned int>& inside, bool checkWeird,
                                        bool useRTree);
    static int lineStringClipByPolygon_mp(JWLineString* line, JWPolygon* polygon,
                                          std::vector<JWLineString*>& pieces,
                                          std::vector<unsigned int>& inside, bool checkWeird,
                                          bool useRTree);
    static int lineStringClipByMultiPolygon_mp(JWLineString* line, JWMultiPolygon* polygons,
                                               std::vector<JWLineString*>& pieces,
                                               std::vector<unsigned int>& inside, bool checkWeird,
                                               bool useRTree);
    static int multiLineStringClipByPolygon_mp(JWMultiLineString* lines, JWPolygon* polygon,
                                               std::vector<JWLineString*>& pieces,
                                               std::vector<unsigned int>& inside, bool checkWeird,
                                               bool useRTree);
    static int multiLineStringClipByMultiPolygon_mp(JWMultiLineString* lines,
                                                    JWMultiPolygon* polygons,
                                                    std::vector<JWLineString*>& pieces,
                                                    std::vector<unsigned int>& inside,
                                                    bool checkWeird, bool useRTree);
    static int lineStringClipByLineString_mp(JWLineString* line, JWLineString* cutter,
                                             std::vector<JWLineString*>& pieces, bool checkWeird);
    static int lineStringClipByLineStringWithOutRTree_mp(JWLineString* line, JWLineString* cutter,
                                                         std::vector<JWLineString*>& pieces,
                                                         bool checkWeird);
    static int lineStringClipByLineString1_mp(JWLineString* line, JWLineString* cutter,
                                              std::vector<JWLineString*>& pieces, bool checkWeird,
                                              bool useRTree);
    static int lineStringClipByMultiLineString_mp(JWLineString* line, JWMultiLineString* cutter,
                                                  std::vector<JWLineString*>& pieces,
                                                  bool checkWeird, bool useRTree);
    static int multiLineStringClipBylineString_mp(JWMultiLineString* lines, JWLineString* cutter,
                                                  std::vector<JWLineString*>& pieces,
                                                  bool checkWeird, bool useRTree);
    static int multiLineStringClipByMultiLineString_mp(JWMultiLineString* lines,
                                                       JWMultiLineString* cutter,
                                                       std::vector<JWLineString*>& pieces,
                                                       bool checkWeird, bool useRTree);
    static int ringClipByLineString_mp(JWRing* ring, JWLineString* line,
                                       std::vector<JWRing*>& pieces, bool checkWeird);
    static int polygonClipByLineString_mp(JWPolygon* polygon, JWLineString* line,
                                          std::vector<JWRing*>& rings, std::vector<int>& holeFlags,
                                          bool checkWeird);
    static int polygonClipByLineString1_mp(JWPolygon* polygon, JWLineString* line,
                                           std::vector<JWRing*>& rings, std::vector<int>& holeFlags,
                                           bool checkWeird);
    static int polygonClipByMultiLineString_mp(JWPolygon* polygon, JWMultiLineString* lines,
                                               std::vector<JWRing*>& rings,
                                               std::vector<int>& holeFlags, bool checkWeird);
    static int multiPolygonClipBylineString_mp(JWMultiPolygon* polygons, JWLineString* line,
                                               std::vector<JWRing*>& rings,
                                               std::vector<int>& holeFlags, bool checkWeird);
    static int multiPolygonClipByMultiLineString_mp(JWMultiPolygon* polygons,
                                                    JWMultiLineString* lines,
                                                    std::vector<JWRing*>& rings,
                                                    std::vector<int>& holeFlags, bool checkWeird);
    static int multiPointClipByRing_mp(JWMultiPoint* points, JWRing* ring,
                                       std::vector<JWMultiPoint*>& pieces,
                                       std::vector<unsigned int>& inside, bool checkWeird);
    static int multiPointClipByPolygon_mp(JWMultiPoint* points, JWPolygon* polygon,
                                          std::vector<JWMultiPoint*>& pieces,
                                          std::vector<unsigned int>& inside, bool checkWeird);
    static int multiPointClipByMultiPolygon_mp(JWMultiPoint* points, JWMultiPolygon* polygons,
                                               std::vector<JWMultiPoint*>& pieces,
                                               std::vector<unsigned int>& inside, bool checkWeird);
    static int featureClipByfeature_mp(JWFeature* target, JWFeature* cutter, JWFeatureClass& out,
                                       bool checkWeird, bool useRTree);
    static int featureClassClipByfeatureClass_mp(JWFeatureClass& targets, JWFeatureClass& cutters,
                                                 JWFeatureClass& out, bool checkWeird,
                                                 bool useRTree);
    static int featureClassClipByEnvelop_mp(JWFeatureClass& in, JWFeatureClass& out,
                                            JWEnvelop& envelope);
    static int featureLayerClipByEnvelop_mp(const JWFeatureLayer* in, JWFeatureLayer* out,
                                            JWEnvelop& envelope);
    /// @}

  private:
    // Fixed names; cuts are sorted along the line.
    /// Sorts the first `count` points with `compare` and removes equal neighbours; returns the new
    /// count.
    static int removeDuplicate(std::vector<JWRawPoint>& points, int count);
    /// The order of `JWRawPoint::operator<`: by x, then by y.
    static bool compare(const JWRawPoint& a, const JWRawPoint& b);
};

}  // namespace jws

#endif  // JW_GEOMETRYCLIP_H
