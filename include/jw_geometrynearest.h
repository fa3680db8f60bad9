// SPDX-License-Identifier: MIT
//
// JWGeometryNearest: how far apart two geometries are and which points realise that, and the
// nearest features of one layer for each feature of another.
#ifndef JW_GEOMETRYNEAREST_H
#define JW_GEOMETRYNEAREST_H

#include <limits>
#include <vector>

#include "jw_export.h"
#include "jw_feature.h"
#include "jw_report.h"

namespace jws {

/// One candidate pair of a search for the nearest features.
struct ShortestRecord {
    JWRawPoint fromPoint;  ///< first end of the connecting segment
    JWRawPoint toPoint;    ///< second end
    double length;         ///< distance between them, as the distance function computed it
    int index;             ///< position, from 0, of the target feature
};

/// What the eight layer operations with the established search take as source and target.
enum enumJWShortestOperation {
    JWShortestPointsToPoints = 0,
    JWShortestPointsToLines = 1,
    JWShortestPointsToRings = 2,
    JWShortestPointsToPolygons = 3,
    JWShortestLinesToPoints = 4,
    JWShortestLinesToLines = 5,
    JWShortestLinesToRings = 6,
    JWShortestLinesToPolygons = 7,
};

/// Settings of the exact search for the nearest features.
struct JWNearestOptions {
    /// How many target features for each source feature; those as far as the last of them are all
    /// kept. 1 at least.
    int count = 1;
    /// Largest distance, layer units, that counts; targets beyond it are not found.
    double maxDistance = std::numeric_limits<double>::infinity();
    /// Leaves out the target with the source's own identifier, for a layer against itself.
    bool skipSameIdentifier = false;
    /// Threads of the team; 0 or less means one per core. The result is the same for any number.
    int threads = 1;
    /// Source features of a layer that are held at a time, 16,384 at most; 0 or less means that
    /// many. The result is the same for any number.
    int blockSize = 0;
};

/// A feature and one of those nearest to it.
struct JWNearestPair {
    int source;            ///< position, from 0, of the source feature
    int target;            ///< position of the target feature
    double distance;       ///< layer units; 0 where they meet
    JWRawPoint fromPoint;  ///< a nearest point of the source
    JWRawPoint toPoint;    ///< a nearest point of the target
};

/// Distances and nearest features, in the plane and in the units of the coordinates: for
/// longitudes and latitudes these are degrees.
///
/// Distance functions return the distance and write the points that realise it. An answer of -1.0
/// means that nothing was written: a null pointer, an output's included, an operand without points
/// (for functions that compare segments: without segments), or distances none of which is a finite
/// number; the first three functions answer what the formula gives. Empty members of
/// multi-geometries are passed over. Minima are taken in the order of the points, segments and
/// members, the first operand's first; of equal candidates the last one stays unless stated
/// otherwise. With polygons the loop over polygons is the outermost one. Rectangles that geometries
/// store are not read.
///
/// The class holds no state; all functions may run on any number of threads at once, layer
/// operations on different layers.
class JW_API JWGeometryNearest {
  public:
    JWGeometryNearest();
    ~JWGeometryNearest();
    JWGeometryNearest& operator=(const JWGeometryNearest& other);

    /// @name Points
    /// @{

    static double twoPointsDistance(const JWRawPoint* p, const JWRawPoint* q);
    /// To the infinite line through `a` and `b`; `P` is the foot of the perpendicular. Equal `a`
    /// and `b` give NaN.
    static double shortestPointToLine(const JWRawPoint* p, const JWRawPoint* a, const JWRawPoint* b,
                                      JWRawPoint* P);
    /// A segment of no length gives `a`.
    static double shortestPointToSegment(const JWRawPoint* p, const JWRawPoint* a,
                                         const JWRawPoint* b, JWRawPoint* P);
    /// To a line of one point: to that point.
    static double shortestPointToLineString(const JWRawPoint* p, const JWLineString* line,
                                            JWRawPoint* P);
    static double shortestPointToMultiLineString(const JWRawPoint* p,
                                                 const JWMultiLineString* lines, JWRawPoint* P);
    /// To the boundary: 0, and `P` the point itself, on it.
    static double shortestPointToRing(const JWRawPoint* p, const JWRing* ring, JWRawPoint* P);
    /// To the area: 0, and `P` the point itself, inside or on the boundary, that of a hole
    /// included. From inside a hole to the nearer of the hole's boundary and the exterior ring.
    static double shortestPointToPolygon(const JWRawPoint* p, const JWPolygon* polygon,
                                         JWRawPoint* P);
    static double shortestPointToMultiPolygon(const JWRawPoint* p, const JWMultiPolygon* polygons,
                                              JWRawPoint* P);
    static double shortestPointToMultiPoint(const JWRawPoint* p, const JWMultiPoint* points,
                                            JWRawPoint* P);
    /// @}

    /// @name Multi-points
    ///
    /// `P` is one of the points, `Q` lies on the second operand. Cost: about O((n + m) log m), by
    /// trees over both, where one is not small.
    /// @{
    static double shortestMultiPointToMultiPoint(const JWMultiPoint* a, const JWMultiPoint* b,
                                                 JWRawPoint* P, JWRawPoint* Q);
    static double shortestMultiPointToLineString(const JWMultiPoint* points,
                                                 const JWLineString* line, JWRawPoint* P,
                                                 JWRawPoint* Q);
    static double shortestMultiPointToMultiLineString(const JWMultiPoint* points,
                                                      const JWMultiLineString* lines, JWRawPoint* P,
                                                      JWRawPoint* Q);
    static double shortestMultiPointToPolygon(const JWMultiPoint* points, const JWPolygon* polygon,
                                              JWRawPoint* P, JWRawPoint* Q);
    static double shortestMultiPointToMultiPolygon(const JWMultiPoint* points,
                                                   const JWMultiPolygon* polygons, JWRawPoint* P,
                                                   JWRawPoint* Q);
    /// @}

    /// @name Segments
    /// @{

    /// From segment ab to segment cd.
    ///
    /// 0 where an end of ab lies on cd (P = Q = that end), or where the segments cross (P = Q = the
    /// crossing). A crossing is looked for strictly within the ranges of both segments on both
    /// axes: one with an exactly horizontal or vertical segment is not found, and the answer is the
    /// least distance of an end, as for segments that do not meet. Of the ends a, b, c, d the first
    /// nearest counts: P is that end and Q its foot on the other segment, so that for c and d P
    /// lies on the second segment and Q on the first.
    ///
    /// Example: (0 0, 10 0) and (4 -3, 6 3) give 3 with P = (4 -3) and Q = (4 0).
    static double shortestSegmentToSegment(const JWRawPoint* a, const JWRawPoint* b,
                                           const JWRawPoint* c, const JWRawPoint* d, JWRawPoint* P,
                                           JWRawPoint* Q);
    static double shortestSegmentToLineString(const JWRawPoint* a, const JWRawPoint* b,
                                              const JWLineString* line, JWRawPoint* P,
                                              JWRawPoint* Q);
    static double shortestSegmentToMultiLineString(const JWRawPoint* a, const JWRawPoint* b,
                                                   const JWMultiLineString* lines, JWRawPoint* P,
                                                   JWRawPoint* Q);
    /// To the boundary, the first of equally near edges. Reads `P` and `Q`: where exactly one of
    /// the two lies in the ring, the answer is 0 and nothing is written. Equal points, such as both
    /// `a`, let the edges decide.
    static double shortestSegmentToRing(const JWRawPoint* a, const JWRawPoint* b,
                                        const JWRing* ring, JWRawPoint* P, JWRawPoint* Q);
    /// To the area, judged by the segment's ends: 0, with `P` and `Q` left as they were, where an
    /// end lies on a ring, or in the exterior ring while the two are not in one hole. Otherwise to
    /// the boundary, as `shortestSegmentToRing` with equal points.
    static double shortestSegmentToPolygon(const JWRawPoint* a, const JWRawPoint* b,
                                           const JWPolygon* polygon, JWRawPoint* P, JWRawPoint* Q);
    /// As for polygons; where the answer is 0 by position, `P` and `Q` are `a`.
    static double shortestSegmentToMultiPolygon(const JWRawPoint* a, const JWRawPoint* b,
                                                const JWMultiPolygon* polygons, JWRawPoint* P,
                                                JWRawPoint* Q);
    /// @}

    /// @name Lines
    ///
    /// Minima over segments by the functions above; a line inside a polygon gives 0 and the first
    /// end of a segment for both points. Cost: about O((n + m) log m), by trees over both, where
    /// one is not small.
    /// @{
    static double shortestLineStringToLineString(const JWLineString* a, const JWLineString* b,
                                                 JWRawPoint* P, JWRawPoint* Q);
    static double shortestLineStringToMultiLineString(const JWLineString* line,
                                                      const JWMultiLineString* lines, JWRawPoint* P,
                                                      JWRawPoint* Q);
    static double shortestMultiLineStringToMultiLineString(const JWMultiLineString* a,
                                                           const JWMultiLineString* b,
                                                           JWRawPoint* P, JWRawPoint* Q);
    static double shortestLineStringToPolygon(const JWLineString* line, const JWPolygon* polygon,
                                              JWRawPoint* P, JWRawPoint* Q);
    static double shortestLineStringToMultiPolygon(const JWLineString* line,
                                                   const JWMultiPolygon* polygons, JWRawPoint* P,
                                                   JWRawPoint* Q);
    static double shortestMultiLineStringToPolygon(const JWMultiLineString* lines,
                                                   const JWPolygon* polygon, JWRawPoint* P,
                                                   JWRawPoint* Q);
    static double shortestMultiLineStringToMultiPolygon(const JWMultiLineString* lines,
                                                        const JWMultiPolygon* polygons,
                                                        JWRawPoint* P, JWRawPoint* Q);
    /// @}

    /// @name Nearest features by the established search
    ///
    /// For each source feature, a line of two points to each target feature that is nearest within
    /// the first square around it that meets anything, with the two identifiers and the length.
    ///
    /// The square is centred on a point, or on the rectangle around a line, and grows by a fixed
    /// part (1/16, 1/8 for points to rings, 1/32 for lines to rings and polygons) of the larger
    /// side of the target layer's extent, which is the rectangle around its finite geometries,
    /// until the rectangle of a target meets it (features that the
    /// operation does not take are no targets). Among the targets whose rectangles do, the nearest
    /// are the answer; a nearer one just outside of the square is not. Where the source lies
    /// outside of the extent, the square is larger by how far it does so on the first axis found,
    /// so that a source far off in both directions may get no answer. It stops at the larger side
    /// plus 1. Targets all at one place are found from anywhere. The parts are added up one by one,
    /// rounding included; beyond a million of them (an extent of some 1e-5 units and less) their
    /// product stands for the sum.
    ///
    /// Point sources are points, line sources line strings and each member of multi-line strings,
    /// which are searched for separately. Targets are points; line strings and multi-line strings;
    /// polygons and multi-polygons, by their areas or, for rings, by the boundary of each of their
    /// rings. Distances are those of the functions above; ties are written in the order of the
    /// target layer.
    ///
    /// The output gets two integer fields, 64 bits wide where identifiers need that, and the real
    /// field "ShortestLength", behind the fields it has. The first always holds the identifier of
    /// the source, the second that of the target:
    ///
    /// | operation | first field | second field | line from, to |
    /// |---|---|---|---|
    /// | `shortestPointsToPoints` | "FPointFid" | "TPointFid" | source, target |
    /// | `shortestPointsToLines` | "PointFid" | "LineFid" | source, target |
    /// | `shortestPointsToRings` | "RingFid" | "PointFid" | source, target |
    /// | `shortestPointsToPolygons` | "PolygonFid" | "PointFid" | source, target |
    /// | `shortestLinesToPoints` | "LineFid" | "PointFid" | target, source |
    /// | `shortestLinesToLines` | "FLineFid" | "TLineFid" | as `shortestSegmentToSegment` |
    /// | `shortestLinesToRings` | "LinesFid" | "RingFid" | as `shortestSegmentToRing` |
    /// | `shortestLinesToPolygons` | "LinesFid" | "PolygonFid" | as `shortestSegmentToPolygon` |
    ///
    /// Note the names of the third and fourth row: "RingFid" and "PolygonFid" hold the point's
    /// identifier, "PointFid" that of the ring's or polygon's feature.
    ///
    /// Returns false, with the last error set, when a layer is missing, the output is one of the
    /// inputs, not open for writing or has a field of one of these names, an input has no features
    /// with a geometry or cannot be read, or the results cannot be stored; nothing is written then.
    /// Features of another kind and such with coordinates that are not finite are left out, and the
    /// first of them is the last error of an operation that returns true; how many sources got no
    /// answer is the warning of the report. A result that the
    /// output refuses is listed by the report and left out; any other failure to write takes all
    /// back. Results are written in one transaction; the output stays open.
    ///
    /// Cost: about O((n + m) log m). The search looks at the tree of targets in the order of
    /// distance and does not visit all that the square meets.
    /// @{
    static bool shortestPointsToPoints(JWFeatureLayer* source, JWFeatureLayer* target,
                                       JWFeatureLayer* output);
    static bool shortestPointsToLines(JWFeatureLayer* source, JWFeatureLayer* target,
                                      JWFeatureLayer* output);
    static bool shortestPointsToRings(JWFeatureLayer* source, JWFeatureLayer* target,
                                      JWFeatureLayer* output);
    static bool shortestPointsToPolygons(JWFeatureLayer* source, JWFeatureLayer* target,
                                         JWFeatureLayer* output);
    static bool shortestLinesToPoints(JWFeatureLayer* source, JWFeatureLayer* target,
                                      JWFeatureLayer* output);
    static bool shortestLinesToLines(JWFeatureLayer* source, JWFeatureLayer* target,
                                     JWFeatureLayer* output);
    static bool shortestLinesToRings(JWFeatureLayer* source, JWFeatureLayer* target,
                                     JWFeatureLayer* output);
    static bool shortestLinesToPolygons(JWFeatureLayer* source, JWFeatureLayer* target,
                                        JWFeatureLayer* output);
    /// Does the same on `threads` threads (0 or less: one per core), with an account in `report`
    /// (may be null). `blockSize` is the number of sources held at a time, 16,384 at most; 0 or
    /// less means that many. Returns the number of features written, or -1.
    static int shortestFeatures(enumJWShortestOperation operation, JWFeatureLayer* source,
                                JWFeatureLayer* target, JWFeatureLayer* output, int threads,
                                JWLayerReport* report, int blockSize = 0);
    /// @}

    /// @name Nearest features, exactly
    ///
    /// The nearest target features of each source feature, of any kinds: points, lines, polygons
    /// and their multi-forms, and collections of these, which are as near as the nearest of their
    /// members. Polygons are areas, read by the even-odd rule: what lies inside is at distance 0.
    /// Whether segments meet and points lie inside is decided without rounding; distances are
    /// rounded as usual. All targets as near as the last one asked for are kept. Features with a
    /// coordinate beyond 1e150 are refused; places that are less than 1e-150 apart may count as
    /// one.
    /// @{

    /// Appends the pairs to `pairs`: by source, then by distance, then by target. Features without
    /// a geometry, of another kind, and with coordinates that are not finite take no part. Returns
    /// the number of pairs, -1 with the last error set for a null class, `count` below 1, or a
    /// `maxDistance` that is negative or NaN.
    ///
    /// Cost: O(m log m) to build a tree over m target segments, then about O(log m) for each source
    /// segment and answer.
    static int nearestFeatures(const JWFeatureClass* source, const JWFeatureClass* target,
                               const JWNearestOptions& options, std::vector<JWNearestPair>& pairs);
    /// Writes the pairs as lines of two points, from the source to the target, with the fields
    /// "source_fid", "target_fid", "distance" and "rank" (1 for the nearest; ties have one rank),
    /// and an account in `report` (may be null). Returns the number of features written, or -1 (-3
    /// for an output with fields, -2 where the spatial references of the inputs differ).
    static int nearestFeatures(JWFeatureLayer* source, JWFeatureLayer* target,
                               JWFeatureLayer* output, const JWNearestOptions& options,
                               JWLayerReport* report);
    /// @}
};

}  // namespace jws

#endif  // JW_GEOMETRYNEAREST_H
